#include "farm/http/json_input.h"

#include "farm/base/errors.h"

#include <QJsonArray>

#include <algorithm>

namespace farm {

QString RequiredText(const QJsonObject& body, const char* key, int longest)
{
    const QJsonValue value = body.value(QLatin1String(key));
    if (!value.isString() || value.toString().size() > longest)
        throw InvalidInput(std::string(key) + " is missing, is not a text or is too long");
    return value.toString();
}

int RequiredInteger(const QJsonObject& body, const char* key, int least, int most)
{
    const QJsonValue value = body.value(QLatin1String(key));
    const double number = value.toDouble();
    if (!value.isDouble() || !(number >= least && number <= most) || number != int(number))
        throw InvalidInput(std::string(key) + " is missing, is not a whole number or is out of range");
    return int(number);
}

std::int64_t WholeNumber(
    const QByteArray& text, const char* key, std::int64_t otherwise, std::int64_t least, std::int64_t most)
{
    if (text.isEmpty())
        return otherwise;
    bool ok = false;
    const std::int64_t number = text.toLongLong(&ok);
    if (!ok)
        throw InvalidInput(std::string(key) + " must be a whole number");
    return std::clamp(number, least, most);
}

QStringList RequiredTexts(const QJsonObject& body, const char* key, int most)
{
    const QJsonValue value = body.value(QLatin1String(key));
    const QJsonArray list = value.toArray();
    if (!value.isArray() || list.size() > most)
        throw InvalidInput(std::string(key) + " is missing, is not a list or is too long");
    QStringList texts;
    for (const QJsonValue& text : list) {
        if (!text.isString())
            throw InvalidInput(std::string(key) + " must be a list of texts");
        texts.append(text.toString());
    }
    return texts;
}

} // namespace farm
