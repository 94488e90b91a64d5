#include "mainwindow/vtr_qsclient_p.h"

#include "common/vtr_tablecells.h"
#include "mainwindow/vtr_concerns.h"
#include "mainwindow/vtr_dropfilter.h"
#include "mainwindow/vtr_wiring.h"

#include <QGuiApplication>
#include <QTextCodec>

#include <functional>
#include <utility>

VTQsClientPrivate::VTQsClientPrivate(QWidget* pParent)
    : QWidget(pParent)
    , m_timers(this)
{
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("utf-8"));
    setAcceptDrops(true);
}

VTQsClientPrivate::~VTQsClientPrivate()
{
    DropConcerns();
}

void VTQsClientPrivate::BuildInterface()
{
    const VTLiveConcerns::Call call(m_concerns);
    if (!m_concerns.Current() || !m_builtFor.SameServices(m_services)) {
        DropConcerns();
        m_concerns.Set(std::make_unique<VTConcerns>(this, m_services, m_codeTables, m_timers));
        ConnectConcerns();
        VTAllowFileDrops(this, m_services);
        m_builtFor = m_services;
    }
    m_concerns.Current()->services = m_services;
    m_wiring.Clear();
    VTWireWindow(m_wiring, this, *m_concerns.Current(), m_timers);
    UpdateSettings();
    ChangeSkin(m_services.Skin());
    ChangeLanguage(QString());
}

void VTQsClientPrivate::ReleaseServices()
{
    m_wiring.Clear();
    m_services = VTServices();
    if (VTConcerns* pConcerns = m_concerns.Current())
        pConcerns->ReleaseServices();
}

void VTQsClientPrivate::DropConcerns()
{
    disconnect(m_formDestroyed);
    m_wiring.Clear();
    m_timers.StopAll();
    m_builtFor = VTServices();
    m_concerns.Drop();
}

QVector<QPointer<QObject>> VTQsClientPrivate::Retire()
{
    m_services = VTServices();
    DropConcerns();
    return m_concerns.DeferredDeletions();
}

void VTQsClientPrivate::ConnectConcerns()
{
    const VTConcerns& concerns = *m_concerns.Current();
    // Without its main form the window returns to the state before it was built.
    m_formDestroyed
        = connect(concerns.form.pForm, &QObject::destroyed, this, &VTQsClientPrivate::DropConcerns);

    connect(&concerns.jobList, &VTJobList::OrdersReady, this, &VTQsClientPrivate::JobIdType);
    connect(&concerns.jobList, &VTJobList::CandidatesArrived, this, &VTQsClientPrivate::showParenList);
    connect(&concerns.signIn, &VTSignIn::SignedIn, this, &VTQsClientPrivate::login);
    connect(&concerns.pageKeys, &VTPageKeys::FirstPageWanted, this,
        [this] { Forward(&VTConcerns::tabs, &VTTabs::GoToFirstPage); });
    connect(&concerns.pageKeys, &VTPageKeys::LastPageWanted, this,
        [this] { Forward(&VTConcerns::tabs, &VTTabs::GoToLastPage); });
}

void VTQsClientPrivate::CacheSubmitTasks()
{
    const VTLiveConcerns::Call call(m_concerns);
    if (m_services.pRenderCore)
        m_lstSubmitTask = m_services.pRenderCore->GetSubmitTaskIds();
}

template <class Concern, class Operation, class... Arguments>
void VTQsClientPrivate::Forward(Concern VTConcerns::*pConcern, Operation operation, Arguments&&... arguments)
{
    if (!m_concerns.Current())
        return;
    const VTLiveConcerns::Call call(m_concerns);
    std::invoke(operation, m_concerns.Current()->*pConcern, std::forward<Arguments>(arguments)...);
}

void VTQsClientPrivate::ShowForm()
{
    Forward(&VTConcerns::chrome, &VTChrome::ShowForm);
}

void VTQsClientPrivate::ShowTrayIcon()
{
    Forward(&VTConcerns::tray, &VTTray::Show);
}

// ---- The contract's slots in their order; each forwards to the concern that acts. ----

void VTQsClientPrivate::ChangeSkin(QString strSkin)
{
    Forward(&VTConcerns::appearance, &VTAppearance::ChangeSkin, strSkin);
}

void VTQsClientPrivate::ChangeLanguage(QString /*strLanguage*/)
{
    Forward(&VTConcerns::appearance, &VTAppearance::ChangeLanguage);
}

void VTQsClientPrivate::Close()
{
    Forward(&VTConcerns::chrome, &VTChrome::AskToQuit);
}

void VTQsClientPrivate::ShowWindow(QString strKey)
{
    Forward(&VTConcerns::chrome, &VTChrome::ShowOnRequest, strKey);
}

void VTQsClientPrivate::ShowWindowMaximized()
{
    Forward(&VTConcerns::chrome, &VTChrome::Maximize);
}

void VTQsClientPrivate::ShowWindowNormal()
{
    Forward(&VTConcerns::chrome, &VTChrome::Restore);
}

void VTQsClientPrivate::TriggerSignInResponse(int nRet, QVariantMap mapData)
{
    Forward(&VTConcerns::signIn, &VTSignIn::HandleSignInAnswer, nRet, mapData);
}

void VTQsClientPrivate::TriggerSignOutResponse(int /*nRet*/, QVariantMap /*mapData*/)
{
    Forward(&VTConcerns::signIn, &VTSignIn::HandleSignOutAnswer);
}

void VTQsClientPrivate::TriggerJobListResponse(int nRet, QVariantMap mapData)
{
    Forward(&VTConcerns::jobList, &VTJobList::HandleAnswer, nRet, mapData);
}

void VTQsClientPrivate::TriggerDeleteJobResponse(int nRet, QVariantMap /*mapData*/)
{
    Forward(&VTConcerns::jobActions, &VTJobActions::HandleDeleteAnswer, nRet);
}

void VTQsClientPrivate::TriggerUserInfoResponse(int nRet, QVariantMap mapData)
{
    Forward(&VTConcerns::accountPanel, &VTAccountPanel::HandleUserInfoAnswer, nRet, mapData);
}

void VTQsClientPrivate::TriggerRecoverJobsResponse(int nRet, QVariantMap mapData)
{
    Forward(&VTConcerns::jobActions, &VTJobActions::HandleRecoverAnswer, nRet, mapData);
}

void VTQsClientPrivate::TriggerStopJobsResponse(int nRet, QVariantMap /*mapData*/)
{
    Forward(&VTConcerns::jobActions, &VTJobActions::HandleStopAnswer, nRet);
}

void VTQsClientPrivate::TriggerRestartJobsResponse(int nRet, QVariantMap mapData)
{
    Forward(&VTConcerns::jobActions, &VTJobActions::HandleRestartAnswer, nRet, mapData);
}

void VTQsClientPrivate::TriggerFullRenderResponse(int nRet, QVariantMap mapData)
{
    Forward(&VTConcerns::jobActions, &VTJobActions::HandleFullRenderAnswer, nRet, mapData);
}

void VTQsClientPrivate::GetUserInfo()
{
    Forward(&VTConcerns::accountPanel, &VTAccountPanel::RequestUserInfo);
}

void VTQsClientPrivate::PageButtonClicked()
{
    Forward(&VTConcerns::tabs, &VTTabs::HandlePageButton, sender());
}

void VTQsClientPrivate::ClickedCell(int nRows, int /*nCol*/)
{
    Forward(&VTConcerns::tables, &VTTables::Press, nRows);
}

void VTQsClientPrivate::JobListContextMenu(QPoint /*Pos*/)
{
    Forward(&VTConcerns::tabs, &VTTabs::RunMenu, VTList::Jobs);
}

void VTQsClientPrivate::DownloadListContextMenu(QPoint /*Pos*/)
{
    Forward(&VTConcerns::tabs, &VTTabs::RunMenu, VTList::Downloads);
}

void VTQsClientPrivate::DeleteJobs()
{
    Forward(&VTConcerns::jobActions, &VTJobActions::Delete);
}

void VTQsClientPrivate::StopJobs()
{
    Forward(&VTConcerns::jobActions, &VTJobActions::Stop);
}

void VTQsClientPrivate::RecoverJobs()
{
    Forward(&VTConcerns::jobActions, &VTJobActions::Recover);
}

void VTQsClientPrivate::RestartJobs()
{
    Forward(&VTConcerns::jobActions, &VTJobActions::Restart);
}

void VTQsClientPrivate::FullRender()
{
    Forward(&VTConcerns::jobActions, &VTJobActions::FullRender);
}

void VTQsClientPrivate::StopJobs(VTParameters parameters)
{
    Forward(&VTConcerns::requests, &VTRequests::Send, &VTCommunicationInterface::StopJobs, parameters);
}

void VTQsClientPrivate::RecoverJobs(VTParameters parameters)
{
    Forward(&VTConcerns::requests, &VTRequests::Send, &VTCommunicationInterface::RecoverJobs, parameters);
}

void VTQsClientPrivate::GetJobInfo(VTParameters parameters)
{
    Forward(&VTConcerns::requests, &VTRequests::Send, &VTCommunicationInterface::GetJobInfo, parameters);
}

void VTQsClientPrivate::TriggerSubmitListChanged()
{
    Forward(&VTConcerns::submitList, &VTSubmitList::HandleListChange);
}

void VTQsClientPrivate::TriggerDownloadListChanged()
{
    Forward(&VTConcerns::downloadList, &VTDownloadList::HandleListChange);
}

void VTQsClientPrivate::ChangeTab(int nIndex)
{
    Forward(&VTConcerns::tabs, &VTTabs::HandleChange, nIndex);
}

void VTQsClientPrivate::SignOut()
{
    Forward(&VTConcerns::signIn, &VTSignIn::RequestSignOut);
}

void VTQsClientPrivate::TriggerChangeLanguage()
{
    Forward(&VTConcerns::appearance, &VTAppearance::ToggleLanguage);
}

void VTQsClientPrivate::TriggerActivated(QSystemTrayIcon::ActivationReason reason)
{
    Forward(&VTConcerns::tray, &VTTray::Activate, reason);
}

void VTQsClientPrivate::ShowDownloadTasks()
{
    Forward(&VTConcerns::downloadList, &VTDownloadList::Refresh);
}

void VTQsClientPrivate::ShowSubmitList()
{
    Forward(&VTConcerns::submitList, &VTSubmitList::Refresh);
}

void VTQsClientPrivate::TriggerStateChanged(int nState)
{
    Forward(&VTConcerns::tables, &VTTables::CheckAll, nState);
}

void VTQsClientPrivate::UpdateSettings()
{
    Forward(&VTConcerns::settings, &VTAccountSettings::Load);
}

void VTQsClientPrivate::ManualDownload()
{
    Forward(&VTConcerns::jobList, &VTJobList::OrderDownloads);
}

bool VTQsClientPrivate::eventFilter(QObject* obj, QEvent* event)
{
    const VTLiveConcerns::Call call(m_concerns);
    VTConcerns* pConcerns = m_concerns.Current();
    return (pConcerns && pConcerns->chrome.HandleEvent(obj, event)) || QWidget::eventFilter(obj, event);
}

void VTQsClientPrivate::AdjustPageButtons()
{
    Forward(&VTConcerns::tabs, &VTTabs::Relayout);
}

void VTQsClientPrivate::RefreshJobList()
{
    Forward(&VTConcerns::jobList, &VTJobList::Refresh);
}

void VTQsClientPrivate::PopupFinish(QString strFile)
{
    Forward(&VTConcerns::tray, &VTTray::ShowFinished, strFile);
}

void VTQsClientPrivate::OpenFilePosition()
{
    Forward(&VTConcerns::downloadList, &VTDownloadList::RevealCurrentFile);
}

void VTQsClientPrivate::TriggerFailFile(QString strJobId, QStringList lstFailFile)
{
    Forward(&VTConcerns::uploadRetries, &VTTaskQuestions::Add, strJobId, lstFailFile);
}

void VTQsClientPrivate::TriggerLackedTexture(QString strJobId, QStringList lstLackedTexture)
{
    Forward(&VTConcerns::lackedTextures, &VTTaskQuestions::Add, strJobId, lstLackedTexture);
}

void VTQsClientPrivate::SubmitListContextMenu(QPoint /*Pos*/)
{
    Forward(&VTConcerns::tabs, &VTTabs::RunMenu, VTList::LocalTasks);
}

void VTQsClientPrivate::UploadRetryOption()
{
    Forward(&VTConcerns::uploadRetries, &VTTaskQuestions::Tick);
}

void VTQsClientPrivate::LackTextureOption()
{
    Forward(&VTConcerns::lackedTextures, &VTTaskQuestions::Tick);
}

void VTQsClientPrivate::TriggerSubmit()
{
    Forward(&VTConcerns::submitList, &VTSubmitList::ContinueCurrent);
}

void VTQsClientPrivate::Redownload()
{
    Forward(&VTConcerns::downloadList, &VTDownloadList::RedownloadChecked);
}

void VTQsClientPrivate::SetItemAttribute(
    QTableWidgetItem* item, QVariant varData, QString strTip, bool bEnableChecked)
{
    VTTableCells::SetAttributes(item, varData, strTip, bEnableChecked);
}

QProgressBar* VTQsClientPrivate::GetANewProgressBar(int nPercent)
{
    return VTTableCells::NewProgressBar(nPercent, m_codeTables);
}

void VTQsClientPrivate::SearchJob(QVariantMap& mapCondition)
{
    Forward(&VTConcerns::jobList, &VTJobList::Search, mapCondition);
}

void VTQsClientPrivate::CellDoubleClicked(int row, int column)
{
    Forward(&VTConcerns::submitList, &VTSubmitList::HandleDoubleClick, row, column);
}

void VTQsClientPrivate::GetJobList(int nPage, QString strConditions, int nFlag)
{
    Forward(&VTConcerns::jobList, &VTJobList::Request, nPage, strConditions, nFlag);
}

void VTQsClientPrivate::Condition(QString strCondition)
{
    Forward(&VTConcerns::tabs, &VTTabs::FilterJobs, strCondition);
}
