#pragma once

#include "common/vtr_jobrecord.h"

#include <QObject>
#include <QSet>
#include <QVariantList>
#include <QVector>

#include <optional>

class QTableWidget;
class VTAccountSettings;
class VTPageBar;
class VTPrompts;
class VTRequests;
class VTTables;
struct VTCodeTables;
struct VTMainForm;
struct VTServices;
struct VTSession;

/// The list of the farm's jobs: requests pages, shows the answers and orders downloads of finished or checked jobs.
class VTJobList : public QObject
{
    Q_OBJECT

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTSession& session;
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
    void Request(int nPage, const QString& strConditions, int nFlag);

    /// Requests a page with the current conditions.
    void RequestPage(int nPage) { Request(nPage, m_strConditions, 0); }
    void RequestCurrentPage();

    /// Requests the current page while the farm's jobs are in front. The rows of its answer keep the user's check marks.
    void Refresh();

    /// Filters by a map of conditions, empty for none, and requests page 1.
    void Search(const QVariantMap& mapCondition);
    void SetConditions(const QString& strConditions) { m_strConditions = strConditions; }

    /// Shows the jobs of an answer, or passes them on as candidates, and hands newly finished ones over for download. While
    /// a menu is open over the table, the latest answer waits. Without a session answers are dropped.
    void HandleAnswer(int nRet, const QVariantMap& mapAnswer);

    /// Shows the answer that waits, unless a menu is open over the table.
    void ShowHeldAnswer();

    void Retranslate() const;

    /// Orders the download of the checked jobs, or of the current row when none is checked.
    void OrderDownloads();

    /// Forgets the session's answers and which finished jobs were handed over, so that the next session hands them over
    /// again.
    void EndSession();

signals:
    /// Download orders by job id.
    void OrdersReady(QVariantMap mapJobIdType);
    /// Job records for the candidate list of the set-parent dialog.
    void CandidatesArrived(QVariantList lstData);

private:
    void Send(int nPage, const QString& strConditions, int nFlag) const;
    bool TakeRefreshed();
    void ShowAnswer(const QVariantMap& mapAnswer, bool bRefreshed);
    void ShowNoJobs();
    void Fill(QTableWidget* pTable, const QVector<VTJobRecord>& lstJob, bool bKeepChecks);
    void HandOverFinished(const QVector<VTJobRecord>& lstJob);
    QVariantMap CheckedOrders() const;

    Dependencies m_deps;
    QString m_strConditions;
    QSet<QString> m_setHandedOver;

    // Answers do not tell which request they belong to. The first one after a request that was no refresh belongs to
    // that request, the next ones to the refreshes sent since.
    bool m_bFillPending = false;
    int m_nRefreshesPending = 0;

    QVector<VTJobRecord> m_lstShown; ///< the jobs of the table's rows

    struct HeldAnswer
    {
        QVariantMap mapAnswer;
        bool bRefreshed;
        int nSession;
    };
    std::optional<HeldAnswer> m_heldAnswer; ///< waits for a menu to close
};
