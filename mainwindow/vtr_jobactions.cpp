#include "mainwindow/vtr_jobactions.h"

#include "common/vtr_prompts.h"
#include "common/vtr_services.h"
#include "mainwindow/vtr_downloadlist.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_submitlist.h"
#include "mainwindow/vtr_tables.h"

VTJobActions::VTJobActions(const Needs& needs)
    : m_needs(needs)
{
}

int VTJobActions::CurrentTab() const
{
    return m_needs.form.tbwContainer->currentIndex();
}

void VTJobActions::Send(VTRequests::Operation operation, const QStringList& lstJobId) const
{
    QVariantHash mapRequest = m_needs.requests.New();
    VTProtocol::AddJobIds(mapRequest, lstJobId);
    m_needs.requests.Send(operation, mapRequest);
}

void VTJobActions::SendForJobs(VTRequests::Operation operation) const
{
    if (CurrentTab() == VTList::Jobs)
        Send(operation, m_needs.rows.CheckedIds(VTList::Jobs));
}

void VTJobActions::Delete()
{
    const int nTab = CurrentTab();
    const bool bSignedIn = m_needs.session.bSignedIn;
    const QPointer<VTJobActions> pThis(this);
    const VTAnswer answer = m_needs.prompts.AskToConfirm(tr("Are you sure to delete these jobs?"));
    if (answer != VTAnswer::Agreed || !pThis)
        return;
    // The answer is about the rows that were in front, in the session that was on.
    if (CurrentTab() != nTab || m_needs.session.bSignedIn != bSignedIn)
        return;
    const QStringList lstId = m_needs.rows.CheckedIds(nTab);
    m_needs.rows.UncheckAll();
    switch (nTab) {
    case VTList::Jobs:
        Send(&VTCommunicationInterface::DeleteJobs, lstId);
        break;
    case VTList::LocalTasks:
        m_needs.submitList.Delete(lstId);
        break;
    case VTList::Downloads:
        m_needs.downloadList.Delete(lstId);
        break;
    default:
        break;
    }
}

void VTJobActions::Stop() const
{
    if (CurrentTab() == VTList::LocalTasks && m_needs.siblings.pRenderCore)
        m_needs.siblings.pRenderCore->StopSubmitTasks();
    else
        SendForJobs(&VTCommunicationInterface::StopJobs);
}

void VTJobActions::Recover() const
{
    SendForJobs(&VTCommunicationInterface::RecoverJobs);
}

void VTJobActions::Restart() const
{
    SendForJobs(&VTCommunicationInterface::RestartJobs);
}

void VTJobActions::FullRender() const
{
    SendForJobs(&VTCommunicationInterface::FullRender);
}

void VTJobActions::TakeDeleteAnswer(int nRet) const
{
    TakeAnswer(nRet, tr("Delete jobs failed!"));
}

void VTJobActions::TakeStopAnswer(int nRet) const
{
    TakeAnswer(nRet, tr("Stop jobs failed!"));
}

void VTJobActions::TakeRecoverAnswer(int nRet, const QVariantMap& mapAnswer) const
{
    TakeAnswerOrRefusal(nRet, mapAnswer, tr("Recover jobs failed!"));
}

void VTJobActions::TakeRestartAnswer(int nRet, const QVariantMap& mapAnswer) const
{
    TakeAnswerOrRefusal(nRet, mapAnswer, tr("Restart jobs failed!"));
}

void VTJobActions::TakeFullRenderAnswer(int nRet, const QVariantMap& mapAnswer) const
{
    TakeAnswerOrRefusal(nRet, mapAnswer, tr("Full render jobs failed!"));
}

void VTJobActions::TakeAnswer(int nRet, const QString& strFailure) const
{
    if (nRet == VTProtocol::Success)
        m_needs.jobList.RequestCurrentPage();
    else
        m_needs.prompts.Notify(strFailure);
}

void VTJobActions::TakeAnswerOrRefusal(
    int nRet, const QVariantMap& mapAnswer, const QString& strFailure) const
{
    // A refusal counts even where the answer as a whole succeeded.
    if (!VTProtocol::Payload(mapAnswer).value(VTProtocol::NotAllowedJobs).toList().isEmpty())
        m_needs.prompts.Notify(tr("Amount Overdue!"));
    else
        TakeAnswer(nRet, strFailure);
}
