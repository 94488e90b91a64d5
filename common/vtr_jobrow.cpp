#include "common/vtr_jobrow.h"

#include "common/vtr_codetables.h"

#include <QObject>

VTJobRow VTMakeJobRow(const VTJobRecord& job, const QMap<int, QString>& mapStatus)
{
    const QString strStatus = VTCodeTables::JobStatusText(mapStatus, job.nStatus);
    VTJobRow row;
    row[VTJobColumn::Sequence] = {job.strSequence, job.strId, QString(), true};
    row[VTJobColumn::Name] = {job.strName, job.strType, job.strName};
    row[VTJobColumn::StartTime] = {job.strSubmitTime, job.strSubmitTime, job.strSubmitTime};
    row[VTJobColumn::Status] = {strStatus, job.nStatus, strStatus};
    row[VTJobColumn::Cost] = {job.strCost, job.strCost, job.strCost};
    return row;
}

QStringList VTJobHeaders()
{
    return {QObject::tr("Sequence"), QObject::tr("Name"), QObject::tr("Start Time"), QObject::tr("Progress"),
        QObject::tr("Status"), QObject::tr("Cost")};
}
