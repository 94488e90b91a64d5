#include "dialogs/vtr_conditions.h"

#include <qjson/serializer.h>

namespace {

void InsertRange(QVariantMap& mapCondition, const QString& strName, const std::optional<VTTimeRange>& range)
{
    if (!range)
        return;
    mapCondition.insert(strName + QLatin1String("_min_time"), range->strMin);
    mapCondition.insert(strName + QLatin1String("_max_time"), range->strMax);
}

} // namespace

QVariantMap VTSearchConditions(const VTSearchFields& fields)
{
    QVariantMap mapCondition;
    const auto Insert = [&mapCondition](const char* szKey, const QString& strValue) {
        if (!strValue.isEmpty())
            mapCondition.insert(QLatin1String(szKey), strValue);
    };
    Insert("job_increasement", fields.strSequence);
    Insert("job_name", fields.strName);
    Insert("job_type", fields.strType);
    Insert("status", fields.strStatus);
    Insert("pool_id", fields.strPool);
    Insert("job_business_type", fields.strBusinessType);
    InsertRange(mapCondition, QStringLiteral("start"), fields.startTime);
    InsertRange(mapCondition, QStringLiteral("end"), fields.endTime);
    return mapCondition;
}

QString VTConditionText(const QVariantMap& mapCondition)
{
    return QString::fromUtf8(QJson::Serializer().serialize(mapCondition));
}

QString VTStatusConditionText(int nStatus)
{
    return VTConditionText({{QStringLiteral("status"), nStatus}});
}

QString VTGroupConditionText(const QStringList& lstGuid)
{
    const QString strGuids = lstGuid.join(QLatin1Char(','));
    return VTConditionText(
        {{QStringLiteral("job_guid"), strGuids.isEmpty() ? QStringLiteral("abcdefg") : strGuids}});
}
