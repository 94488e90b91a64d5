#include "host/farmclient/sentences.h"

QString Sentence(const QString& text)
{
    static const QString ends = QStringLiteral(".!?\u2026\u3002\uff01\uff1f");
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || ends.contains(trimmed.back()))
        return trimmed;
    const QChar stop = trimmed.back().script() == QChar::Script_Han ? QChar(0x3002) : QChar(u'.');
    return trimmed + stop;
}

QString Sentences(const QStringList& texts)
{
    QStringList sentences;
    for (const QString& text : texts)
        sentences.append(Sentence(text));
    sentences.removeAll({});
    return sentences.join(QLatin1Char(' '));
}
