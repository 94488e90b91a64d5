#pragma once

#include <QString>
#include <QVariantMap>

/// One job as the farm describes it. A missing or unreadable key reads as an empty text or 0.
struct VTJobRecord
{
    QString strSequence;   ///< "job_increasement": running number within the account
    QString strId;         ///< "job_id": identity on the farm
    QString strType;       ///< "job_type": render type
    QString strName;       ///< "job_name"
    QString strSubmitTime; ///< "job_submit_time", as the farm formats it
    QString strCost;       ///< "job_cost" directly followed by "job_cost_unit"
    int nProgress = 0;     ///< "job_progress": percent
    int nStatus = 0;       ///< "job_status": see VTCodeTables

    static VTJobRecord FromMap(const QVariantMap& mapJob);

    bool operator==(const VTJobRecord& other) const;
};

/// An order to the render core to download the files of one job.
/// @param bManual true when the user ordered it, false for an automatic download.
QVariantMap VTDownloadOrder(
    const QString& strJobType, const QString& strSequence, const QString& strName, bool bManual);
