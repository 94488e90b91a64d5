#include "farm/http/read_conditions.h"

#include "farm/base/errors.h"
#include "farm/base/local_time.h"
#include "json/read_object.h"

#include <cmath>

namespace farm {

namespace {

[[noreturn]] void Refuse(const char* key)
{
    throw InvalidInput(std::string("the condition ") + key + " cannot be read");
}

// Clients send codes as texts or as whole numbers; either is returned as a text.
QString TextOf(const QJsonObject& conditions, const char* key)
{
    const QJsonValue value = conditions.value(QLatin1String(key));
    if (value.isUndefined() || value.isNull())
        return {};
    if (value.isString())
        return value.toString().trimmed();
    constexpr double LargestExactDouble = 9007199254740992.0;
    const double number = value.toDouble(std::nan(""));
    if (!(std::abs(number) <= LargestExactDouble) || number != std::floor(number))
        Refuse(key);
    return QString::number(static_cast<qint64>(number));
}

std::optional<std::int64_t> NumberOf(const QJsonObject& conditions, const char* key)
{
    const QString text = TextOf(conditions, key);
    if (text.isEmpty())
        return std::nullopt;
    bool ok = false;
    const std::int64_t number = text.toLongLong(&ok);
    if (!ok)
        Refuse(key);
    return number;
}

std::optional<std::int64_t> TimeOf(const QJsonObject& conditions, const char* key)
{
    const QString text = TextOf(conditions, key);
    if (text.isEmpty())
        return std::nullopt;
    const auto time = TimeFromText(text);
    if (!time)
        Refuse(key);
    return time;
}

// A type is sent as "group@type@label" or as its bare name.
QString TypeOf(const QJsonObject& conditions)
{
    const QString text = TextOf(conditions, "job_type");
    const QStringList parts = text.split(QLatin1Char('@'));
    if (parts.size() == 1)
        return text;
    if (parts.size() != 3)
        Refuse("job_type");
    return parts.at(1);
}

std::optional<std::int64_t> BusinessOf(const QJsonObject& conditions)
{
    const auto business = NumberOf(conditions, "job_business_type");
    if (business && *business != 0 && *business != 1)
        Refuse("job_business_type");
    return business;
}

std::optional<QStringList> IdsOf(const QJsonObject& conditions)
{
    const QString text = TextOf(conditions, "job_guid");
    if (text.isEmpty())
        return std::nullopt;
    QStringList ids = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (QString& id : ids)
        id = id.trimmed();
    return ids;
}

} // namespace

JobConditions ReadJobConditions(const QByteArray& text)
{
    if (text.trimmed().isEmpty())
        return {};
    const JsonRead read = ReadJsonObject(text);
    if (read.fault)
        throw InvalidInput(std::string("the text of conditions ") + read.fault);
    const QJsonObject& object = read.object;
    JobConditions conditions;
    conditions.number = NumberOf(object, "job_increasement");
    conditions.nameContains = TextOf(object, "job_name");
    conditions.type = TypeOf(object);
    conditions.status = NumberOf(object, "status");
    conditions.pool = TextOf(object, "pool_id");
    conditions.business = BusinessOf(object);
    conditions.ids = IdsOf(object);
    conditions.submittedFrom = TimeOf(object, "start_min_time");
    conditions.submittedTo = TimeOf(object, "start_max_time");
    conditions.endedFrom = TimeOf(object, "end_min_time");
    conditions.endedTo = TimeOf(object, "end_max_time");
    return conditions;
}

} // namespace farm
