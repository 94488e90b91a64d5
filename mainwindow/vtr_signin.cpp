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

VTSignIn::VTSignIn(const Needs& needs)
    : m_needs(needs)
{
}

void VTSignIn::TakeSignInAnswer(int nRet, const QVariantMap& mapAnswer)
{
    if (nRet != VTProtocol::Success)
        return;
    m_needs.form.RaiseOverlays();
    m_needs.account.TakeNames(mapAnswer);
    emit UserKnown();
    m_needs.account.TakeToken(mapAnswer);
    m_needs.account.RequestUserInfo();
    m_needs.timers.pUserInfo->start(VTTimers::UserInfoInterval);
    emit UserInfoTimerStarted();
    m_needs.jobList.RequestPage(1);
    VTTimers::StartOnce(m_needs.timers.pJobList);
    AnnounceSession();
    m_needs.session.bSignedIn = true;
    m_needs.requests.Send(&VTCommunicationInterface::GetProjectList);
    if (m_needs.siblings.pConfiguration)
        VTSetPlainText(m_needs.form.lblVersionV, m_needs.siblings.pConfiguration->GetVersion());
}

void VTSignIn::AnnounceSession()
{
    VTSession& session = m_needs.session;
    if (m_needs.siblings.pSettings)
        session.strServer
            = m_needs.siblings.pSettings->Value(QStringLiteral("vtr.web/currentserver"), QVariant())
                  .toString();
    m_needs.setParent.GetSettings(
        session.strServer, session.strToken, session.strLoginName, session.strUserName);
    m_needs.tray.ShowServer(session.strServer);
    emit SignedIn(session.strServer, session.strLoginName, session.strToken, session.strUserName);
}

void VTSignIn::RequestSignOut() const
{
    // An answer that is here before the call returns clears the table, and the host may delete the window on it.
    const QStringList lstTaskId = VTTables::AllIds(m_needs.form.twtLocalTask);
    const QPointer<VTRenderCoreInterface> pRenderCore = m_needs.siblings.pRenderCore;
    m_needs.requests.Send(&VTCommunicationInterface::SignOut);
    if (pRenderCore)
        pRenderCore->RemoveSubmitTasks(lstTaskId, false);
}

void VTSignIn::TakeSignOutAnswer()
{
    m_needs.timers.pJobList->stop();
    m_needs.timers.pUserInfo->stop();
    m_needs.session.bSignedIn = false;
    m_needs.setParent.CancelFill();
    m_needs.form.pForm->close();
    m_needs.search.Close();
    m_needs.jobList.ForgetHandedOver();
    m_needs.pageBar.Reset();
    ClearLists();
}

void VTSignIn::ClearLists()
{
    for (QTableWidget* pTable :
        {m_needs.form.twtDownload, m_needs.form.twtLocalTask, m_needs.form.twtMyRender})
        VTTableCells::Clear(pTable);
    m_needs.pageBar.Show(VTList::Downloads, 0);
    m_needs.pageBar.Show(VTList::LocalTasks, 0);
}
