#include "mainwindow/vtr_qsclient_p.h"

#include "common/vtr_ids.h"
#include "common/vtr_skin.h"
#include "common/vtr_tablecells.h"
#include "dialogs/vtr_group.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setargument.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_concerns.h"

// The slots that do nothing but hand their call to the concern that knows.

void VTQsClientPrivate::Close()
{
    if (m_pConcerns)
        m_pConcerns->chrome.AskToQuit();
}

void VTQsClientPrivate::TriggerSignInResponse(int nRet, QVariantMap mapData)
{
    if (m_pConcerns)
        m_pConcerns->signIn.HandleSignInAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerSignOutResponse(int /*nRet*/, QVariantMap /*mapData*/)
{
    if (m_pConcerns)
        m_pConcerns->signIn.HandleSignOutAnswer();
}

void VTQsClientPrivate::TriggerJobListResponse(int nRet, QVariantMap mapData)
{
    if (m_pConcerns)
        m_pConcerns->jobList.HandleAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerDeleteJobResponse(int nRet, QVariantMap /*mapData*/)
{
    if (m_pConcerns)
        m_pConcerns->jobActions.HandleDeleteAnswer(nRet);
}

void VTQsClientPrivate::TriggerUserInfoResponse(int nRet, QVariantMap mapData)
{
    if (m_pConcerns)
        m_pConcerns->account.HandleUserInfoAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerRecoverJobsResponse(int nRet, QVariantMap mapData)
{
    if (m_pConcerns)
        m_pConcerns->jobActions.HandleRecoverAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerStopJobsResponse(int nRet, QVariantMap /*mapData*/)
{
    if (m_pConcerns)
        m_pConcerns->jobActions.HandleStopAnswer(nRet);
}

void VTQsClientPrivate::TriggerRestartJobsResponse(int nRet, QVariantMap mapData)
{
    if (m_pConcerns)
        m_pConcerns->jobActions.HandleRestartAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerFullRenderResponse(int nRet, QVariantMap mapData)
{
    if (m_pConcerns)
        m_pConcerns->jobActions.HandleFullRenderAnswer(nRet, mapData);
}

void VTQsClientPrivate::GetUserInfo()
{
    if (m_pConcerns)
        m_pConcerns->account.RequestUserInfo();
}

void VTQsClientPrivate::ClickedCell(int nRows, int /*nCol*/)
{
    if (m_pConcerns)
        m_pConcerns->tables.Press(nRows);
}

void VTQsClientPrivate::JobListContextMenu(QPoint /*Pos*/)
{
    if (m_pConcerns)
        m_pConcerns->menus.RunJobMenu();
}

void VTQsClientPrivate::DownloadListContextMenu(QPoint /*Pos*/)
{
    if (m_pConcerns)
        m_pConcerns->menus.RunDownloadMenu();
}

void VTQsClientPrivate::DeleteJobs()
{
    if (m_pConcerns)
        m_pConcerns->jobActions.Delete();
}

void VTQsClientPrivate::StopJobs()
{
    if (m_pConcerns)
        m_pConcerns->jobActions.Stop();
}

void VTQsClientPrivate::RecoverJobs()
{
    if (m_pConcerns)
        m_pConcerns->jobActions.Recover();
}

void VTQsClientPrivate::RestartJobs()
{
    if (m_pConcerns)
        m_pConcerns->jobActions.Restart();
}

void VTQsClientPrivate::FullRender()
{
    if (m_pConcerns)
        m_pConcerns->jobActions.FullRender();
}

void VTQsClientPrivate::StopJobs(VTParameters parameters)
{
    if (m_pConcerns)
        m_pConcerns->requests.Send(&VTCommunicationInterface::StopJobs, parameters);
}

void VTQsClientPrivate::RecoverJobs(VTParameters parameters)
{
    if (m_pConcerns)
        m_pConcerns->requests.Send(&VTCommunicationInterface::RecoverJobs, parameters);
}

void VTQsClientPrivate::GetJobInfo(VTParameters parameters)
{
    if (m_pConcerns)
        m_pConcerns->requests.Send(&VTCommunicationInterface::GetJobInfo, parameters);
}

void VTQsClientPrivate::TriggerSubmitListChanged()
{
    if (m_pConcerns)
        m_pConcerns->submitList.ListChanged();
}

void VTQsClientPrivate::TriggerDownloadListChanged()
{
    if (m_pConcerns)
        m_pConcerns->downloadList.ListChanged();
}

void VTQsClientPrivate::ChangeTab(int nIndex)
{
    if (m_pConcerns)
        m_pConcerns->toolbar.ChangeTab(nIndex);
}

void VTQsClientPrivate::TriggerTreeViewClicked(QModelIndex /*index*/)
{
    // The group panel's own lists do the choosing; the tree has no entries.
}

void VTQsClientPrivate::SignOut()
{
    if (m_pConcerns)
        m_pConcerns->signIn.RequestSignOut();
}

void VTQsClientPrivate::TriggerChangeLanguage()
{
    if (m_pConcerns)
        m_pConcerns->chrome.ToggleLanguage();
}

void VTQsClientPrivate::TriggerActivated(QSystemTrayIcon::ActivationReason reason)
{
    if (m_pConcerns)
        m_pConcerns->tray.Activate(reason);
}

void VTQsClientPrivate::ShowDownloadTasks()
{
    if (m_pConcerns)
        m_pConcerns->downloadList.Refresh();
}

void VTQsClientPrivate::ShowSubmitList()
{
    if (m_pConcerns)
        m_pConcerns->submitList.Refresh();
}

void VTQsClientPrivate::TriggerStateChanged(int nState)
{
    if (m_pConcerns)
        m_pConcerns->tables.CheckAll(nState);
}

void VTQsClientPrivate::ManualDownload()
{
    if (m_pConcerns)
        m_pConcerns->jobList.OrderDownloads();
}

void VTQsClientPrivate::AdjustPageButtons()
{
    if (m_pConcerns)
        m_pConcerns->toolbar.Relayout();
}

void VTQsClientPrivate::PopupFinish(QString strFile)
{
    if (m_pConcerns)
        m_pConcerns->tray.ShowFinished(strFile);
}

void VTQsClientPrivate::OpenFilePosition()
{
    if (m_pConcerns)
        m_pConcerns->downloadList.RevealCurrentFile();
}

void VTQsClientPrivate::TriggerFailFile(QString strJobId, QStringList lstFailFile)
{
    if (m_pConcerns)
        m_pConcerns->uploadRetries.Add(strJobId, lstFailFile);
}

void VTQsClientPrivate::TriggerLackedTexture(QString strJobId, QStringList lstLackedTexture)
{
    if (m_pConcerns)
        m_pConcerns->lackedTextures.Add(strJobId, lstLackedTexture);
}

void VTQsClientPrivate::SubmitListContextMenu(QPoint /*Pos*/)
{
    if (m_pConcerns)
        m_pConcerns->menus.RunSubmitMenu(m_pConcerns->settings.SetArgument());
}

void VTQsClientPrivate::UploadRetryOption()
{
    if (m_pConcerns)
        m_pConcerns->uploadRetries.Tick();
}

void VTQsClientPrivate::LackTextureOption()
{
    if (m_pConcerns)
        m_pConcerns->lackedTextures.Tick();
}

void VTQsClientPrivate::TriggerSubmit()
{
    if (m_pConcerns)
        m_pConcerns->submitList.ContinueCurrent();
}

void VTQsClientPrivate::Redownload()
{
    if (m_pConcerns)
        m_pConcerns->downloadList.Redownload(m_pConcerns->tables.CheckedIds(VTList::Downloads));
}

void VTQsClientPrivate::SearchJob(QVariantMap& mapCondition)
{
    if (m_pConcerns)
        m_pConcerns->jobList.Search(mapCondition);
}

void VTQsClientPrivate::CellDoubleClicked(int row, int column)
{
    if (m_pConcerns)
        m_pConcerns->submitList.DoubleClicked(row, column);
}

void VTQsClientPrivate::GetJobList(int nPage, QString strConditions, int nFlag)
{
    if (m_pConcerns)
        m_pConcerns->jobList.Request(nPage, strConditions, nFlag);
}

void VTQsClientPrivate::Condition(QString strCondition)
{
    if (m_pConcerns)
        m_pConcerns->toolbar.ApplyCondition(strCondition);
}
