#include "farm/http/json_input.h"

#include "farm/base/errors.h"

#include <QJsonArray>

namespace farm {

QString RequiredText(const QJsonObject& body, const char* key, int longest)
{
    const QJsonValue value = body.value(QLatin1String(key));
    if (!value.isString() || value.toString().size() > longest)
        throw BadInput(std::string(key) + " is missing, no text or too long");
    return value.toString();
}

int RequiredInteger(const QJsonObject& body, const char* key, int least, int most)
{
    const QJsonValue value = body.value(QLatin1String(key));
    const double number = value.toDouble();
    if (!value.isDouble() || !(number >= least && number <= most) || number != int(number))
        throw BadInput(std::string(key) + " is missing, no whole number or out of range");
    return int(number);
}

QStringList RequiredTexts(const QJsonObject& body, const char* key, int most)
{
    const QJsonValue value = body.value(QLatin1String(key));
    const QJsonArray list = value.toArray();
    if (!value.isArray() || list.size() > most)
        throw BadInput(std::string(key) + " is missing, no list or too long");
    QStringList texts;
    for (const QJsonValue& text : list) {
        if (!text.isString())
            throw BadInput(std::string(key) + " are texts");
        texts.append(text.toString());
    }
    return texts;
}

} // namespace farm
