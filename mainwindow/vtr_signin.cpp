#include "mainwindow/vtr_signin.h"

#include "common/vtr_plaintext.h"
#include "common/vtr_protocol.h"
#include "common/vtr_services.h"
#include "common/vtr_tablerows.h"
#include "dialogs/vtr_group.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setargument.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_accountpanel.h"
#include "mainwindow/vtr_accountsettings.h"
#include "mainwindow/vtr_contextmenus.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_requests.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_taskquestions.h"
#include "mainwindow/vtr_timers.h"
#include "mainwindow/vtr_tray.h"

#include <functional>
#include <utility>

VTSignIn::VTSignIn(const Dependencies& dependencies)
    : m_deps(dependencies)
{
}

void VTSignIn::HandleSignInAnswer(int nRet, const QVariantMap& mapAnswer)
{
    if (nRet != VTProtocol::Success)
        return;
    VTSession& session = m_deps.session;
    ClearSession(); // the last sign-out may still be closing its dialogs, and this sign-in comes from inside that
    session.Begin();
    m_deps.menus.Close(); // a menu of the earlier session must not act on the new one
    m_deps.form.RaiseOverlays();
    session.strLoginName = mapAnswer.value(VTProtocol::LoginName).toString();
    session.strUserName = mapAnswer.value(VTProtocol::UserName).toString();
    m_deps.accountPanel.ShowUser(session.strLoginName);

    const QString strToken = VTProtocol::Payload(mapAnswer).value(VTProtocol::Token).toString();
    const std::function<void()> lstStep[] = {
        [&] { m_deps.settings.Load(); },
        [&] {
            session.strToken = strToken;
            m_deps.accountPanel.RequestUserInfo();
        },
        [&] {
            m_deps.accountPanel.StartPolling();
            m_deps.jobList.RequestPage(1);
        },
        [&] {
            VTTimers::StartOnce(m_deps.timers.pJobList);
            ReadServer();
        },
        [&] {
            m_deps.setParent.GetSettings(
                session.strServer, session.strToken, session.strLoginName, session.strUserName);
        },
        [&] {
            m_deps.tray.ShowServer(session.strServer);
            emit SignedIn(session.strServer, session.strLoginName, session.strToken, session.strUserName);
        },
        [&] {
            session.bSignedIn = true;
            m_deps.requests.Send(&VTCommunicationInterface::GetProjectList, m_deps.requests.New());
        },
        [&] {
            if (m_deps.services.pConfiguration)
                VTSetPlainText(m_deps.form.lblVersionV, m_deps.services.pConfiguration->GetVersion());
        },
    };
    const int nSession = session.nNumber;
    for (const std::function<void()>& step : lstStep) {
        if (session.nNumber != nSession)
            return;
        step();
    }
}

void VTSignIn::ReadServer()
{
    if (!m_deps.services.pSettings)
        return;
    const QVariant varServer
        = m_deps.services.pSettings->Value(QStringLiteral("vtr.web/currentserver"), QVariant());
    m_deps.session.strServer = varServer.toString();
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
    m_deps.session.End();
    m_bClearingDue = true;
    const int nSession = m_deps.session.nNumber;
    m_deps.setParent.EndSession();
    CloseDialogs(nSession);
    if (m_deps.session.nNumber == nSession)
        ClearSession();
}

/// Clears what the ended session has left behind, only once.
void VTSignIn::ClearSession()
{
    if (!std::exchange(m_bClearingDue, false))
        return;
    m_deps.uploadRetries.Forget();
    m_deps.lackedTextures.Forget();
    m_deps.jobList.EndSession();
    m_deps.pageBar.Reset();
    ClearLists();
}

/// Stops early when closing a form has begun the next session or destroyed the window.
void VTSignIn::CloseDialogs(int nSession)
{
    const std::function<void()> lstStep[] = {
        [&] { m_deps.form.pForm->close(); },
        [&] { m_deps.search.Close(); },
        [&] { m_deps.menus.Close(); },
        [&] { m_deps.setArgument.EndSession(); },
        [&] { m_deps.group.EndSession(); },
    };
    for (const std::function<void()>& step : lstStep) {
        if (m_deps.session.nNumber != nSession)
            return;
        step();
    }
}

void VTSignIn::ClearLists()
{
    for (QTableWidget* pTable : {m_deps.form.twtDownload, m_deps.form.twtLocalTask, m_deps.form.twtMyRender})
        VTTableRows::Clear(pTable);
    m_deps.pageBar.Show(VTList::Downloads, 0);
    m_deps.pageBar.Show(VTList::LocalTasks, 0);
}
