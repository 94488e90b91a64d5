#pragma once

#include "common/vtr_codetables.h"
#include "common/vtr_connections.h"
#include "common/vtr_services.h"
#include "mainwindow/vtr_liveconcerns.h"
#include "mainwindow/vtr_timers.h"
#include "vtr_parameters.h"

#include <QMetaObject>
#include <QModelIndex>
#include <QPoint>
#include <QPointer>
#include <QStringList>
#include <QSystemTrayIcon>
#include <QVariant>
#include <QVector>
#include <QWidget>

class QProgressBar;
class QTableWidgetItem;
struct VTConcerns;

/// The client's main window and private part of the service object.
///
/// It carries the contract with host and services: signals and slots in a fixed order. A slot forwards to the
/// concern that acts; the four that need no concern are complete here. Until `BuildInterface` has run there is neither
/// form nor concern, and every slot is harmless.
class VTQsClientPrivate : public QWidget
{
    Q_OBJECT

public:
    explicit VTQsClientPrivate(QWidget* pParent = nullptr);
    ~VTQsClientPrivate() override;

    /// The services attached so far; the service object fills them in.
    VTServices& Services() { return m_services; }

    /// Builds forms and concerns for the attached services, unless they are built for the same ones already; connects
    /// them, and applies the loader's skin and language.
    void BuildInterface();

    /// Disconnects everything from the services and forgets them. A built window stays; `BuildInterface` connects it
    /// again.
    void ReleaseServices();

    /// Ends the window: drops the concerns and closes the forms.
    /// @return dialog controllers and forms that are left to the event loop.
    QVector<QPointer<QObject>> Retire();

    /// Whether a call of a concern is running. Such a window must not be deleted, but left to DeleteWhenIdle().
    bool IsBusy() const { return m_concerns.IsBusy(); }
    /// Deletes the retired window at the end of the call that is running.
    void DeleteWhenIdle()
    {
        m_concerns.WhenIdle([this] { delete this; });
    }

    void ShowForm();
    void ShowTrayIcon();

    /// Stores the render core's current list of local tasks.
    void CacheSubmitTasks();

signals:
    void JobIdType(QVariantMap mapJobIdType);
    void showParenList(QVariantList lstData);
    void login(QString strServer, QString strUsername, QString strToken, QString strUserId);
    void windowSizeChanged();

public slots:
    void ChangeSkin(QString strSkin);
    void ChangeLanguage(QString strLanguage);
    void Close();
    void ShowWindow(QString strKey);
    void LoadGlobalSettings() { m_codeTables.Load(); }
    void ShowWindowMaximized();
    void ShowWindowNormal();
    void TriggerSignInResponse(int nRet, QVariantMap mapData);
    void TriggerSignOutResponse(int nRet, QVariantMap mapData);
    void TriggerJobListResponse(int nRet, QVariantMap mapData);
    void TriggerDeleteJobResponse(int nRet, QVariantMap mapData);
    void TriggerUserInfoResponse(int nRet, QVariantMap mapData);
    void TriggerRecoverJobsResponse(int nRet, QVariantMap mapData);
    void TriggerStopJobsResponse(int nRet, QVariantMap mapData);
    void TriggerRestartJobsResponse(int nRet, QVariantMap mapData);
    void TriggerFullRenderResponse(int nRet, QVariantMap mapData);
    void GetUserInfo();
    void PageButtonClicked();
    void ClickedCell(int nRows, int nCol);
    void JobListContextMenu(QPoint Pos);
    void DownloadListContextMenu(QPoint Pos);
    void DeleteJobs();
    void StopJobs();
    void RecoverJobs();
    void RestartJobs();
    void FullRender();
    void StopJobs(VTParameters parameters);
    void RecoverJobs(VTParameters parameters);
    void GetJobInfo(VTParameters parameters);
    void TriggerSubmitListChanged();
    void TriggerDownloadListChanged();
    void ChangeTab(int nIndex);
    void TriggerTreeViewClicked(QModelIndex index) { Q_UNUSED(index) } // contract: the tree has no entries
    void SignOut();
    void TriggerChangeLanguage();
    void TriggerActivated(QSystemTrayIcon::ActivationReason reason);
    void ShowDownloadTasks();
    void ShowSubmitList();
    void TriggerStateChanged(int nState);
    void UpdateSettings();
    void ManualDownload();
    bool eventFilter(QObject* obj, QEvent* event) override;
    void AdjustPageButtons();
    void RefreshJobList();
    void PopupFinish(QString strFile);
    void OpenFilePosition();
    void TriggerFailFile(QString strJobId, QStringList lstFailFile);
    void TriggerLackedTexture(QString strJobId, QStringList lstLackedTexture);
    void SubmitListContextMenu(QPoint Pos);
    void UploadRetryOption();
    void LackTextureOption();
    void TriggerSubmit();
    void Redownload();
    void SetItemAttribute(
        QTableWidgetItem* item, QVariant varData, QString strTip, bool bEnableChecked = false);
    QProgressBar* GetANewProgressBar(int nPercent);
    void SearchJob(QVariantMap& mapCondition);
    void CellDoubleClicked(int row, int column);
    void GetJobList(int nPage, QString strConditions = QString(), int nFlag = 0);
    void Condition(QString strCondition);

private:
    void DropConcerns();
    void ConnectConcerns();

    /// Hands a call to one of the concerns; does nothing while there are none.
    template <class Concern, class Operation, class... Arguments>
    void Forward(Concern VTConcerns::*pConcern, Operation operation, Arguments&&... arguments);

    VTServices m_services;
    /// The services for which the concerns were built.
    VTServices m_builtFor;
    VTCodeTables m_codeTables;
    VTTimers m_timers;
    QStringList m_lstSubmitTask; // contract: kept but never read
    QMetaObject::Connection m_formDestroyed;
    VTLiveConcerns m_concerns;
    VTConnections m_wiring;
};
