#include "common/vtr_jobrecord.h"

#include "common/vtr_protocol.h"

#include <tuple>

VTJobRecord VTJobRecord::FromMap(const QVariantMap& mapJob)
{
    const auto Text = [&mapJob](const QString& strKey) { return mapJob.value(strKey).toString(); };
    VTJobRecord job;
    job.strSequence = Text(QStringLiteral("job_increasement"));
    job.strId = Text(QStringLiteral("job_id"));
    job.strType = Text(QStringLiteral("job_type"));
    job.strName = Text(QStringLiteral("job_name"));
    job.strSubmitTime = Text(QStringLiteral("job_submit_time"));
    job.strCost = QString(Text(QStringLiteral("job_cost")) + Text(QStringLiteral("job_cost_unit")));
    job.nProgress = mapJob.value(QStringLiteral("job_progress")).toInt();
    job.nStatus = mapJob.value(QStringLiteral("job_status")).toInt();
    return job;
}

bool VTJobRecord::operator==(const VTJobRecord& other) const
{
    const auto Values = [](const VTJobRecord& job) {
        return std::tie(job.nProgress, job.nStatus, job.strId, job.strSequence, job.strType, job.strName,
            job.strSubmitTime, job.strCost);
    };
    return Values(*this) == Values(other);
}

QVariantMap VTDownloadOrder(
    const QString& strJobType, const QString& strSequence, const QString& strName, bool bManual)
{
    return {
        {VTProtocol::OrderJobType, strJobType},
        {VTProtocol::OrderSubDir, QString(strSequence + QLatin1Char('_') + strName)},
        {VTProtocol::OrderManual, bManual ? 1 : 0},
    };
}
