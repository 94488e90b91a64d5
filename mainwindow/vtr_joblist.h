#pragma once

#include "common/vtr_jobrecord.h"
#include "mainwindow/vtr_requests.h"

#include <QCoreApplication>
#include <QObject>
#include <QSet>
#include <QVariantList>
#include <QVector>

class QTableWidget;
class VTPageBar;
class VTPrompts;
class VTTables;
struct VTCodeTables;
struct VTMainForm;
struct VTServices;

/// The farm's jobs: asks for pages of them, shows the answers and hands newly finished jobs over for download.
class VTJobList : public QObject
{
    Q_OBJECT

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTCodeTables& codeTables;
        const VTRequests& requests;
        const VTPrompts& prompts;
        const VTTables& tables;
        VTPageBar& pageBar;
    };

    /// What the needs refer to must outlive this object.
    explicit VTJobList(const Dependencies& dependencies);

    /// @param nFlag 0 for the job table, any other for the set-parent dialog's list of up to 1000 jobs.
    void Request(int nPage, const QString& strConditions, int nFlag) const;

    /// Requests a page, or the current one, with the conditions in force.
    void RequestPage(int nPage) const { Request(nPage, m_strConditions, 0); }
    void RequestCurrentPage() const;

    /// Search: a map of conditions, empty for none. Starts at page 1.
    void Search(const QVariantMap& mapCondition);
    void SetConditions(const QString& strConditions) { m_strConditions = strConditions; }

    /// Takes the answer to a request.
    void HandleAnswer(int nRet, const QVariantMap& mapAnswer);

    /// Orders the download of the checked jobs, or of the current row when none is checked.
    void OrderDownloads();

    void SetAutoDownload(bool bOn) { m_bAutoDownload = bOn; }

    /// A new session may download finished jobs again.
    void ForgetHandedOver() { m_setHandedOver.clear(); }

signals:
    /// Download orders by job id.
    void OrdersReady(QVariantMap mapJobIdType);
    /// Job records for the set-parent dialog.
    void CandidatesArrived(QVariantList lstData);

private:
    void ShowNoJobs();
    void Fill(QTableWidget* pTable, const QVector<VTJobRecord>& lstJob);
    void HandOverFinished(const QVector<VTJobRecord>& lstJob);
    QVariantMap CheckedOrders() const;

    Dependencies m_deps;
    QString m_strConditions;
    QSet<QString> m_setHandedOver;
    bool m_bAutoDownload = false;
};
