#include "common/vtr_jobrecord.h"

#include "common/vtr_protocol.h"

#include <tuple>

VTJobRecord VTJobRecord::FromMap(const QVariantMap& mapJob)
{
    const auto Text = [&mapJob](const char* szKey) { return mapJob.value(QLatin1String(szKey)).toString(); };
    VTJobRecord job;
    job.strSequence = Text("job_increasement");
    job.strId = Text("job_id");
    job.strType = Text("job_type");
    job.strName = Text("job_name");
    job.strSubmitTime = Text("job_submit_time");
    job.strCost = QString(Text("job_cost") + Text("job_cost_unit"));
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
