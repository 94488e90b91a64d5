#include "host/ui/message_text.h"

#include <QTextDocument> // Qt::mightBeRichText

namespace {

constexpr int LabelLines = 8;
constexpr int LabelLength = 500;
constexpr int LabelWord = 40; // characters; longer words, such as paths, cannot be wrapped

bool HasLongWord(const QString& text)
{
    int length = 0;
    for (const QChar c : text) {
        length = c.isSpace() ? 0 : length + 1;
        if (length > LabelWord)
            return true;
    }
    return false;
}

bool FitsLabel(const QString& text)
{
    return text.size() <= LabelLength && text.count(QLatin1Char('\n')) < LabelLines && !HasLongWord(text);
}

} // namespace

MessageText ArrangeMessage(const QString& text, const QString& detail, bool list)
{
    if (text.isEmpty()) {
        const bool area = !FitsLabel(detail) || (list && detail.contains(QLatin1Char('\n')));
        return area ? MessageText {QString(), detail} : MessageText {detail, QString()};
    }
    if (FitsLabel(text))
        return {text, detail};
    return {QString(), detail.isEmpty() ? text : QString(text + QLatin1String("\n\n") + detail)};
}

QString PlainToolTip(const QString& text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}
