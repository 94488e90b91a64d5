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
    if (m_pParts)
        m_pParts->chrome.AskToQuit();
}

void VTQsClientPrivate::TriggerSignInResponse(int nRet, QVariantMap mapData)
{
    if (m_pParts)
        m_pParts->signIn.TakeSignInAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerSignOutResponse(int /*nRet*/, QVariantMap /*mapData*/)
{
    if (m_pParts)
        m_pParts->signIn.TakeSignOutAnswer();
}

void VTQsClientPrivate::TriggerJobListResponse(int nRet, QVariantMap mapData)
{
    if (m_pParts)
        m_pParts->jobList.TakeAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerDeleteJobResponse(int nRet, QVariantMap /*mapData*/)
{
    if (m_pParts)
        m_pParts->jobActions.TakeDeleteAnswer(nRet);
}

void VTQsClientPrivate::TriggerUserInfoResponse(int nRet, QVariantMap mapData)
{
    if (m_pParts)
        m_pParts->account.TakeUserInfo(nRet, mapData);
}

void VTQsClientPrivate::TriggerRecoverJobsResponse(int nRet, QVariantMap mapData)
{
    if (m_pParts)
        m_pParts->jobActions.TakeRecoverAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerStopJobsResponse(int nRet, QVariantMap /*mapData*/)
{
    if (m_pParts)
        m_pParts->jobActions.TakeStopAnswer(nRet);
}

void VTQsClientPrivate::TriggerRestartJobsResponse(int nRet, QVariantMap mapData)
{
    if (m_pParts)
        m_pParts->jobActions.TakeRestartAnswer(nRet, mapData);
}

void VTQsClientPrivate::TriggerFullRenderResponse(int nRet, QVariantMap mapData)
{
    if (m_pParts)
        m_pParts->jobActions.TakeFullRenderAnswer(nRet, mapData);
}

void VTQsClientPrivate::GetUserInfo()
{
    if (m_pParts)
        m_pParts->account.RequestUserInfo();
}

void VTQsClientPrivate::ClickedCell(int nRows, int /*nCol*/)
{
    if (m_pParts)
        m_pParts->tables.Press(nRows);
}

void VTQsClientPrivate::JobListContextMenu(QPoint /*Pos*/)
{
    if (m_pParts)
        m_pParts->menus.RunJobMenu();
}

void VTQsClientPrivate::DownloadListContextMenu(QPoint /*Pos*/)
{
    if (m_pParts)
        m_pParts->menus.RunDownloadMenu();
}

void VTQsClientPrivate::DeleteJobs()
{
    if (m_pParts)
        m_pParts->jobActions.Delete();
}

void VTQsClientPrivate::StopJobs()
{
    if (m_pParts)
        m_pParts->jobActions.Stop();
}

void VTQsClientPrivate::RecoverJobs()
{
    if (m_pParts)
        m_pParts->jobActions.Recover();
}

void VTQsClientPrivate::RestartJobs()
{
    if (m_pParts)
        m_pParts->jobActions.Restart();
}

void VTQsClientPrivate::FullRender()
{
    if (m_pParts)
        m_pParts->jobActions.FullRender();
}

void VTQsClientPrivate::StopJobs(VTParameters parameters)
{
    if (m_pParts)
        m_pParts->requests.Send(&VTCommunicationInterface::StopJobs, parameters);
}

void VTQsClientPrivate::RecoverJobs(VTParameters parameters)
{
    if (m_pParts)
        m_pParts->requests.Send(&VTCommunicationInterface::RecoverJobs, parameters);
}

void VTQsClientPrivate::GetJobInfo(VTParameters parameters)
{
    if (m_pParts)
        m_pParts->requests.Send(&VTCommunicationInterface::GetJobInfo, parameters);
}

void VTQsClientPrivate::TriggerSubmitListChanged()
{
    if (m_pParts)
        m_pParts->submitList.ListChanged();
}

void VTQsClientPrivate::TriggerDownloadListChanged()
{
    if (m_pParts)
        m_pParts->downloadList.ListChanged();
}

void VTQsClientPrivate::ChangeTab(int nIndex)
{
    if (m_pParts)
        m_pParts->toolbar.ChangeTab(nIndex);
}

void VTQsClientPrivate::TriggerTreeViewClicked(QModelIndex /*index*/)
{
    // The group panel's own lists do the choosing; the tree has no entries.
}

void VTQsClientPrivate::SignOut()
{
    if (m_pParts)
        m_pParts->signIn.RequestSignOut();
}

void VTQsClientPrivate::TriggerChangeLanguage()
{
    if (m_pParts)
        m_pParts->chrome.ToggleLanguage();
}

void VTQsClientPrivate::TriggerActivated(QSystemTrayIcon::ActivationReason reason)
{
    if (m_pParts)
        m_pParts->tray.Activate(reason);
}

void VTQsClientPrivate::ShowDownloadTasks()
{
    if (m_pParts)
        m_pParts->downloadList.Refresh();
}

void VTQsClientPrivate::ShowSubmitList()
{
    if (m_pParts)
        m_pParts->submitList.Refresh();
}

void VTQsClientPrivate::TriggerStateChanged(int nState)
{
    if (m_pParts)
        m_pParts->tables.CheckAll(nState);
}

void VTQsClientPrivate::ManualDownload()
{
    if (m_pParts)
        m_pParts->jobList.OrderDownloads();
}

void VTQsClientPrivate::AdjustPageButtons()
{
    if (m_pParts)
        m_pParts->toolbar.Relayout();
}

void VTQsClientPrivate::PopupFinish(QString strFile)
{
    if (m_pParts)
        m_pParts->tray.ShowFinished(strFile);
}

void VTQsClientPrivate::OpenFilePosition()
{
    if (m_pParts)
        m_pParts->downloadList.RevealCurrentFile();
}

void VTQsClientPrivate::TriggerFailFile(QString strJobId, QStringList lstFailFile)
{
    if (m_pParts)
        m_pParts->uploadRetries.Add(strJobId, lstFailFile);
}

void VTQsClientPrivate::TriggerLackedTexture(QString strJobId, QStringList lstLackedTexture)
{
    if (m_pParts)
        m_pParts->lackedTextures.Add(strJobId, lstLackedTexture);
}

void VTQsClientPrivate::SubmitListContextMenu(QPoint /*Pos*/)
{
    if (m_pParts)
        m_pParts->menus.RunSubmitMenu(m_pParts->settings.SetArgument());
}

void VTQsClientPrivate::UploadRetryOption()
{
    if (m_pParts)
        m_pParts->uploadRetries.Tick();
}

void VTQsClientPrivate::LackTextureOption()
{
    if (m_pParts)
        m_pParts->lackedTextures.Tick();
}

void VTQsClientPrivate::TriggerSubmit()
{
    if (m_pParts)
        m_pParts->submitList.ContinueCurrent();
}

void VTQsClientPrivate::Redownload()
{
    if (m_pParts)
        m_pParts->downloadList.Redownload(m_pParts->tables.CheckedIds(VTList::Downloads));
}

void VTQsClientPrivate::SearchJob(QVariantMap& mapCondition)
{
    if (m_pParts)
        m_pParts->jobList.Search(mapCondition);
}

void VTQsClientPrivate::CellDoubleClicked(int row, int column)
{
    if (m_pParts)
        m_pParts->submitList.DoubleClicked(row, column);
}

void VTQsClientPrivate::GetJobList(int nPage, QString strConditions, int nFlag)
{
    if (m_pParts)
        m_pParts->jobList.Request(nPage, strConditions, nFlag);
}

void VTQsClientPrivate::Condition(QString strCondition)
{
    if (m_pParts)
        m_pParts->toolbar.ApplyCondition(strCondition);
}
