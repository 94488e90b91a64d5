#pragma once

#include "common/vtr_jobrecord.h"

#include <QObject>
#include <QSet>
#include <QVariantList>
#include <QVector>

class QTableWidget;
class VTAccountSettings;
class VTPageBar;
class VTPrompts;
class VTRequests;
class VTTables;
struct VTCodeTables;
struct VTMainForm;
struct VTServices;

/// The list of the farm's jobs: requests pages, shows the answers and orders downloads of finished or checked jobs.
class VTJobList : public QObject
{
    Q_OBJECT

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTAccountSettings& settings;
        const VTCodeTables& codeTables;
        const VTRequests& requests;
        const VTPrompts& prompts;
        const VTTables& tables;
        VTPageBar& pageBar;
    };

    /// Everything in `dependencies` must outlive this object.
    explicit VTJobList(const Dependencies& dependencies);

    /// Requests a page with conditions; an empty text does not filter.
    /// @param nFlag 0 for the job table; any other value for the set-parent dialog's candidates, up to 1000 per page.
    void Request(int nPage, const QString& strConditions, int nFlag) const;

    /// Requests a page with the current conditions.
    void RequestPage(int nPage) const { Request(nPage, m_strConditions, 0); }
    void RequestCurrentPage() const;

    /// Requests the current page while the farm's jobs are in front.
    void Refresh() const;

    /// Filters by a map of conditions, empty for none, and requests page 1.
    void Search(const QVariantMap& mapCondition);
    void SetConditions(const QString& strConditions) { m_strConditions = strConditions; }

    /// Shows the jobs of an answer, or passes them on as candidates, and hands newly finished ones over for download.
    void HandleAnswer(int nRet, const QVariantMap& mapAnswer);

    /// Orders the download of the checked jobs, or of the current row when none is checked.
    void OrderDownloads();

    /// Forgets which finished jobs were handed over, so that the next session hands them over again.
    void ForgetHandedOver() { m_setHandedOver.clear(); }

signals:
    /// Download orders by job id.
    void OrdersReady(QVariantMap mapJobIdType);
    /// Job records for the candidate list of the set-parent dialog.
    void CandidatesArrived(QVariantList lstData);

private:
    void ShowNoJobs();
    void Fill(QTableWidget* pTable, const QVector<VTJobRecord>& lstJob);
    void HandOverFinished(const QVector<VTJobRecord>& lstJob);
    QVariantMap CheckedOrders() const;

    Dependencies m_deps;
    QString m_strConditions;
    QSet<QString> m_setHandedOver;
};
