#include "mainwindow/vtr_signin.h"

#include "common/vtr_plaintext.h"
#include "common/vtr_services.h"
#include "common/vtr_tablecells.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_accountpanel.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_tables.h"
#include "mainwindow/vtr_timers.h"
#include "mainwindow/vtr_tray.h"

VTSignIn::VTSignIn(const Dependencies& dependencies)
    : m_deps(dependencies)
{
}

void VTSignIn::HandleSignInAnswer(int nRet, const QVariantMap& mapAnswer)
{
    if (nRet != VTProtocol::Success)
        return;
    m_deps.form.RaiseOverlays();
    m_deps.account.TakeNames(mapAnswer);
    emit UserKnown();
    m_deps.account.TakeToken(mapAnswer);
    m_deps.account.RequestUserInfo();
    m_deps.timers.pUserInfo->start(VTTimers::UserInfoInterval);
    emit UserInfoTimerStarted();
    m_deps.jobList.RequestPage(1);
    VTTimers::StartOnce(m_deps.timers.pJobList);
    AnnounceSession();
    m_deps.session.bSignedIn = true;
    m_deps.requests.Send(&VTCommunicationInterface::GetProjectList);
    if (m_deps.services.pConfiguration)
        VTSetPlainText(m_deps.form.lblVersionV, m_deps.services.pConfiguration->GetVersion());
}

void VTSignIn::AnnounceSession()
{
    VTSession& session = m_deps.session;
    if (m_deps.services.pSettings)
        session.strServer
            = m_deps.services.pSettings->Value(QStringLiteral("vtr.web/currentserver"), QVariant())
                  .toString();
    m_deps.setParent.GetSettings(
        session.strServer, session.strToken, session.strLoginName, session.strUserName);
    m_deps.tray.ShowServer(session.strServer);
    emit SignedIn(session.strServer, session.strLoginName, session.strToken, session.strUserName);
}

void VTSignIn::RequestSignOut() const
{
    // An answer that is here before the call returns clears the table, and the host may delete the window on it.
    const QStringList lstTaskId = VTTables::AllIds(m_deps.form.twtLocalTask);
    const QPointer<VTRenderCoreInterface> pRenderCore = m_deps.services.pRenderCore;
    m_deps.requests.Send(&VTCommunicationInterface::SignOut);
    if (pRenderCore)
        pRenderCore->RemoveSubmitTasks(lstTaskId, false);
}

void VTSignIn::HandleSignOutAnswer()
{
    m_deps.timers.pJobList->stop();
    m_deps.timers.pUserInfo->stop();
    m_deps.session.bSignedIn = false;
    m_deps.setParent.CancelFill();
    m_deps.form.pForm->close();
    m_deps.search.Close();
    m_deps.jobList.ForgetHandedOver();
    m_deps.pageBar.Reset();
    ClearLists();
}

void VTSignIn::ClearLists()
{
    for (QTableWidget* pTable : {m_deps.form.twtDownload, m_deps.form.twtLocalTask, m_deps.form.twtMyRender})
        VTTableCells::Clear(pTable);
    m_deps.pageBar.Show(VTList::Downloads, 0);
    m_deps.pageBar.Show(VTList::LocalTasks, 0);
}
