#include "mainwindow/vtr_signin.h"

#include "common/vtr_plaintext.h"
#include "common/vtr_protocol.h"
#include "common/vtr_services.h"
#include "common/vtr_tablerows.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_accountpanel.h"
#include "mainwindow/vtr_accountsettings.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_requests.h"
#include "mainwindow/vtr_session.h"
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
    VTSession& session = m_deps.session;
    m_deps.form.RaiseOverlays();
    session.strLoginName = mapAnswer.value(VTProtocol::LoginName).toString();
    session.strUserName = mapAnswer.value(VTProtocol::UserName).toString();
    m_deps.accountPanel.ShowUser(session.strLoginName);
    m_deps.settings.Load();
    session.strToken = VTProtocol::Payload(mapAnswer).value(VTProtocol::Token).toString();
    m_deps.accountPanel.StartPolling();
    m_deps.jobList.RequestPage(1);
    VTTimers::StartOnce(m_deps.timers.pJobList);
    AnnounceSession();
    session.bSignedIn = true;
    m_deps.requests.Send(&VTCommunicationInterface::GetProjectList, m_deps.requests.New());
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
    // The answer may arrive before the call returns: it clears the table, and the host may then delete the window.
    const QStringList lstTaskId = VTTableRows::AllIds(m_deps.form.twtLocalTask);
    const QPointer<VTRenderCoreInterface> pRenderCore = m_deps.services.pRenderCore;
    m_deps.requests.Send(&VTCommunicationInterface::SignOut, m_deps.requests.New());
    if (pRenderCore)
        pRenderCore->RemoveSubmitTasks(lstTaskId, false);
}

void VTSignIn::HandleSignOutAnswer()
{
    m_deps.timers.pJobList->stop();
    m_deps.accountPanel.StopPolling();
    m_deps.session.bSignedIn = false;
    m_deps.setParent.EndSession();
    m_deps.form.pForm->close();
    m_deps.search.Close();
    m_deps.jobList.ForgetHandedOver();
    m_deps.pageBar.Reset();
    ClearLists();
}

void VTSignIn::ClearLists()
{
    for (QTableWidget* pTable : {m_deps.form.twtDownload, m_deps.form.twtLocalTask, m_deps.form.twtMyRender})
        VTTableRows::Clear(pTable);
    m_deps.pageBar.Show(VTList::Downloads, 0);
    m_deps.pageBar.Show(VTList::LocalTasks, 0);
}
