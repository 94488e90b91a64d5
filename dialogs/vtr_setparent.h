#pragma once

#include "common/vtr_codetables.h"
#include "common/vtr_dialogform.h"
#include "dialogs/vtr_jobdependencies.h"
#include "vtr_parameters.h"

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

class QPushButton;
class QTableWidget;
class QTimer;
class VTBarsInView;
struct VTJobRecord;
struct VTServices;

/// Controller of the set-parent dialog: makes the jobs checked in the job table wait for others.
///
/// Waiting jobs are stopped and recorded in the account's dependency file. Once a second the farm is asked about the
/// parents of the next son group, and when all of them have finished, the group's jobs are recovered. Requests to the
/// farm are emitted as signals.
class VTSetParent : public QObject
{
    Q_OBJECT

public:
    /// @param pForm not owned, never null.
    /// @param pJobTable table of the account's jobs; not owned.
    VTSetParent(QWidget* pForm, QTableWidget* pJobTable, QMap<int, QString> progressStyles,
        QMap<int, QString> statusTexts);

    /// @param services must live until Retire().
    void SetServices(const VTServices& services) { m_pServices = &services; }

    /// Stops the poll, a fill and the use of the services, whose owner is deleted before this object.
    void Retire();

    /// Finds the form's widgets and connects them. To be called once, before anything else.
    void InitWidgets();

    /// Ends the session's work under way: the dialog closes, a fill of the candidates stops at the next row, and a poll
    /// or a recovery stops after the current request.
    void EndSession();

signals:
    void getJobList(int nPage, QString strCondition, int nFlage);
    void stopJobs(VTParameters parameters);
    void getJobInfo(VTParameters parameters);
    void recoverJobs(VTParameters parameters);

public slots:
    void ChangeSkin(QString strSkin);
    void ChangeLanguage();
    /// Runs the dialog for the jobs checked in the job table. Does nothing unless all of them are waiting or running.
    void SetJobParent();
    void TriggerSetParentOk();
    /// Fills the table of candidates. The dialog stays responsive meanwhile; a newer list replaces this one.
    void ShowParenList(QVariantList lstJobs);
    /// The checked candidates, each as "id&type".
    QStringList GetCheckedItem();
    /// Does one step of the poll: asks about the parents of the next son group.
    void GetJobInfo();
    /// Switches to the job dependencies of an account that has signed in.
    /// @param strUsername login name, part of the file name.
    /// @param strUserId user name, sent in the requests.
    void GetSettings(QString strServer, QString strToken, QString strUsername, QString strUserId);
    void TriggerJobInfoResponse(int nRet, QVariantMap mapData);

private:
    bool IsBound() const { return m_form.Form() && m_pCandidates; }
    QStringList WaitingSons() const;
    void AppendCandidates(const QVector<VTJobRecord>& lstJob);
    void WriteCandidate(int nRow, const VTJobRecord& job);
    VTParameters JobsRequest(const QStringList& lstJobId) const;
    VTParameters InfoRequest(const VTParentJob& parent) const;
    void ReportUnsaved(bool bNotify) const;

    VTDialogForm m_form;
    QPointer<QTableWidget> m_pJobTable;
    QTableWidget* m_pCandidates = nullptr;
    VTBarsInView* m_pBars = nullptr;
    QPushButton* m_pBtnClose = nullptr;
    QPushButton* m_pBtnOk = nullptr;
    const VTServices* m_pServices = nullptr;
    VTCodeTables m_codeTables;
    VTJobDependencies m_jobDependencies;
    QTimer* m_pPollTimer;
    QString m_strToken;
    QString m_strUserId;
    int m_nFill = 0;
    int m_nOpening = 0;
    int m_nSession = 0; ///< changes when a session begins or ends
};
