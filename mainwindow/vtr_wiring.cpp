#include "mainwindow/vtr_wiring.h"

#include "common/vtr_connections.h"
#include "dialogs/vtr_group.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setargument.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_concerns.h"
#include "mainwindow/vtr_timers.h"
#include "vtr_parameters.h"

#include <QApplication>

// The signatures are part of the contract with the services, so they are spelled here as the services declare them.
// clang-format off
namespace {

void WireForm(VTConnections& wiring, const QWidget* pWindow, const VTConcerns& concerns)
{
    const VTMainForm& form = concerns.form;
    wiring.Add({
        {form.btnSystemMin, SIGNAL(clicked()), form.pForm, SLOT(close())},
        {form.btnFullRender, SIGNAL(clicked()), pWindow, SLOT(FullRender())},
        {form.btnDelete, SIGNAL(clicked()), pWindow, SLOT(DeleteJobs())},
        {form.btnRecover, SIGNAL(clicked()), pWindow, SLOT(RecoverJobs())},
        {form.btnPause, SIGNAL(clicked()), pWindow, SLOT(StopJobs())},
        {form.btnRestart, SIGNAL(clicked()), pWindow, SLOT(RestartJobs())},
        {form.btnSettings, SIGNAL(clicked()), concerns.services.pConfiguration, SLOT(ShowConf())},
        {concerns.pSetArgument.data(), SIGNAL(setArgument(QString,QVariantList)), concerns.services.pRenderCore, SLOT(SetArgument(QString,QVariantList))},
        {concerns.pGroup.data(), SIGNAL(condition(QString)), pWindow, SLOT(Condition(QString))},
        {pWindow, SIGNAL(login(QString,QString,QString, QString)), concerns.pGroup.data(), SLOT(Login(QString,QString,QString, QString))},
        {pWindow, SIGNAL(windowSizeChanged()), pWindow, SLOT(AdjustPageButtons())},
        {pWindow, SIGNAL(windowSizeChanged()), concerns.pGroup.data(), SLOT(WindowSizeChanged())},
    });
    for (const QPushButton* btnPage : form.PageButtons())
        wiring.Add({{btnPage, SIGNAL(clicked()), pWindow, SLOT(PageButtonClicked())}});
}

void WireTitleBar(VTConnections& wiring, const QWidget* pWindow, const VTConcerns& concerns)
{
    const VTMainForm& form = concerns.form;
    wiring.Add({
        {concerns.services.pUiLoader, SIGNAL(SkinChanged(QString)), pWindow, SLOT(ChangeSkin(QString))},
        {concerns.services.pUiLoader, SIGNAL(LanguageChanged(QString)), pWindow, SLOT(ChangeLanguage(QString))},
        {form.btnSystemClose, SIGNAL(clicked()), pWindow, SLOT(Close())},
        {form.btnSystemMaxmax, SIGNAL(clicked()), pWindow, SLOT(ShowWindowNormal())},
        {form.btnSystemMaxnormal, SIGNAL(clicked()), pWindow, SLOT(ShowWindowMaximized())},
        {concerns.services.pUiLoader, SIGNAL(ShowWindow(QString)), pWindow, SLOT(ShowWindow(QString))},
    });
}

void WireCommunication(VTConnections& wiring, const QWidget* pWindow, const VTConcerns& concerns)
{
    const QObject* pCommunication = concerns.services.pCommunication;
    wiring.Add({
        {pCommunication, SIGNAL(SignInResponse(int, QVariantMap)), pWindow, SLOT(TriggerSignInResponse(int, QVariantMap))},
        {pCommunication, SIGNAL(JobListResponse(int,QVariantMap)), pWindow, SLOT(TriggerJobListResponse(int, QVariantMap))},
        {pCommunication, SIGNAL(DeleteJobResponse(int,QVariantMap)), pWindow, SLOT(TriggerDeleteJobResponse(int, QVariantMap))},
        {pCommunication, SIGNAL(UserInfoResponse(int, QVariantMap)), pWindow, SLOT(TriggerUserInfoResponse(int, QVariantMap))},
        {pCommunication, SIGNAL(SignOutResponse(int,QVariantMap)), pWindow, SLOT(TriggerSignOutResponse(int,QVariantMap))},
        {pCommunication, SIGNAL(RecoverJobResponse(int,QVariantMap)), pWindow, SLOT(TriggerRecoverJobsResponse(int,QVariantMap))},
        {pCommunication, SIGNAL(RestartJobResponse(int,QVariantMap)), pWindow, SLOT(TriggerRestartJobsResponse(int,QVariantMap))},
        {pCommunication, SIGNAL(StopJobResponse(int,QVariantMap)), pWindow, SLOT(TriggerStopJobsResponse(int,QVariantMap))},
        {pCommunication, SIGNAL(FullRenderResponse(int,QVariantMap)), pWindow, SLOT(TriggerFullRenderResponse(int,QVariantMap))},
        {pCommunication, SIGNAL(JobInfoResponse(int,QVariantMap)), concerns.pSetParent.data(), SLOT(TriggerJobInfoResponse(int,QVariantMap))},
        {pCommunication, SIGNAL(ProjectListResponse(int,QVariantMap)), concerns.pSearch.data(), SLOT(TriggerProjectListResponse(int,QVariantMap))},
    });
}

void WireListsAndTimers(VTConnections& wiring, const QWidget* pWindow, const VTConcerns& concerns, const VTTimers& timers)
{
    const VTMainForm& form = concerns.form;
    const QObject* pRenderCore = concerns.services.pRenderCore;
    wiring.Add({
        {form.chkAll, SIGNAL(stateChanged(int)), pWindow, SLOT(TriggerStateChanged(int))},
        {pRenderCore, SIGNAL(SubmitListChanged()), pWindow, SLOT(TriggerSubmitListChanged())},
        {pRenderCore, SIGNAL(DownloadListChanged()), pWindow, SLOT(TriggerDownloadListChanged())},
        {timers.pDownloadList, SIGNAL(timeout()), pWindow, SLOT(ShowDownloadTasks())},
        {pWindow, SIGNAL(JobIdType(QVariantMap)), pRenderCore, SLOT(TriggerJobIdType(QVariantMap))},
        {form.tbwContainer, SIGNAL(currentChanged(int)), pWindow, SLOT(ChangeTab(int))},
        {timers.pSubmitList, SIGNAL(timeout()), pWindow, SLOT(ShowSubmitList())},
        {form.btnLang, SIGNAL(clicked()), pWindow, SLOT(TriggerChangeLanguage())},
        {timers.pLackTexture, SIGNAL(timeout()), pWindow, SLOT(LackTextureOption())},
        {timers.pUploadRetry, SIGNAL(timeout()), pWindow, SLOT(UploadRetryOption())},
        {form.twtMyRender, SIGNAL(customContextMenuRequested(QPoint)), pWindow, SLOT(JobListContextMenu(QPoint))},
        {form.twtMyRender, SIGNAL(cellPressed(int,int)), pWindow, SLOT(ClickedCell(int,int))},
        {form.twtDownload, SIGNAL(customContextMenuRequested(QPoint)), pWindow, SLOT(DownloadListContextMenu(QPoint))},
        {form.twtDownload, SIGNAL(cellPressed(int,int)), pWindow, SLOT(ClickedCell(int,int))},
        {form.twtLocalTask, SIGNAL(cellPressed(int,int)), pWindow, SLOT(ClickedCell(int,int))},
        {form.twtLocalTask, SIGNAL(cellDoubleClicked(int,int)), pWindow, SLOT(CellDoubleClicked(int,int))},
        {form.twtLocalTask, SIGNAL(customContextMenuRequested(QPoint)), pWindow, SLOT(SubmitListContextMenu(QPoint))},
        {timers.pJobList, SIGNAL(timeout()), pWindow, SLOT(RefreshJobList())},
        {pRenderCore, SIGNAL(failFile(QString,QStringList)), pWindow, SLOT(TriggerFailFile(QString,QStringList))},
        {pRenderCore, SIGNAL(lackedTexture(QString,QStringList)), pWindow, SLOT(TriggerLackedTexture(QString,QStringList))},
        {concerns.pSearch.data(), SIGNAL(search(QVariantMap&)), pWindow, SLOT(SearchJob(QVariantMap&))},
        {form.btnSearch, SIGNAL(clicked()), concerns.pSearch.data(), SLOT(Show())},
    });
}

void WireMenus(VTConnections& wiring, const QWidget* pWindow, const VTConcerns& concerns)
{
    const VTContextMenus& menus = concerns.menus;
    const QObject* pSetParent = concerns.pSetParent.data();
    wiring.Add({
        {concerns.tray.QuitAction(), SIGNAL(triggered()), qApp, SLOT(quit())},
        {concerns.tray.Icon(), SIGNAL(activated(QSystemTrayIcon::ActivationReason)), pWindow, SLOT(TriggerActivated(QSystemTrayIcon::ActivationReason))},
        {menus.pSetParent, SIGNAL(triggered()), pSetParent, SLOT(SetJobParent())},
        {menus.pDownload, SIGNAL(triggered()), pWindow, SLOT(ManualDownload())},
        {pSetParent, SIGNAL(getJobList(int,QString,int)), pWindow, SLOT(GetJobList(int,QString,int))},
        {pSetParent, SIGNAL(getJobInfo(VTParameters)), pWindow, SLOT(GetJobInfo(VTParameters))},
        {pSetParent, SIGNAL(stopJobs(VTParameters)), pWindow, SLOT(StopJobs(VTParameters))},
        {pSetParent, SIGNAL(recoverJobs(VTParameters)), pWindow, SLOT(RecoverJobs(VTParameters))},
        {pWindow, SIGNAL(showParenList(QVariantList)), pSetParent, SLOT(ShowParenList(QVariantList))},
        {menus.pOpenFolder, SIGNAL(triggered()), pWindow, SLOT(OpenFilePosition())},
        {menus.pRedownload, SIGNAL(triggered()), pWindow, SLOT(Redownload())},
        {menus.pSubmit, SIGNAL(triggered()), pWindow, SLOT(TriggerSubmit())},
        {menus.pDeleteTasks, SIGNAL(triggered()), pWindow, SLOT(DeleteJobs())},
        {menus.pSetArgument, SIGNAL(triggered()), concerns.pSetArgument.data(), SLOT(TriggerSetArgument())},
    });
}

} // namespace
// clang-format on

void VTWireWindow(VTConnections& wiring, QWidget* pWindow, const VTConcerns& concerns, const VTTimers& timers)
{
    RegisterVTParameters();
    WireForm(wiring, pWindow, concerns);
    WireTitleBar(wiring, pWindow, concerns);
    WireCommunication(wiring, pWindow, concerns);
    WireListsAndTimers(wiring, pWindow, concerns, timers);
    WireMenus(wiring, pWindow, concerns);

    // The render core takes dropped scenes from the form's events. The window's filter, installed last, runs first.
    if (concerns.services.pRenderCore)
        concerns.form.pForm->installEventFilter(concerns.services.pRenderCore);
    concerns.form.pForm->installEventFilter(pWindow);
}
