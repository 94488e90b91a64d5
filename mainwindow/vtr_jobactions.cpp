#include "mainwindow/vtr_jobactions.h"

#include "common/vtr_prompts.h"
#include "common/vtr_protocol.h"
#include "common/vtr_services.h"
#include "mainwindow/vtr_downloadlist.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_submitlist.h"
#include "mainwindow/vtr_tables.h"

VTJobActions::VTJobActions(const Dependencies& dependencies)
    : m_deps(dependencies)
{
}

int VTJobActions::CurrentTab() const
{
    return m_deps.form.tbwContainer->currentIndex();
}

void VTJobActions::Send(VTRequests::Operation operation, const QStringList& lstJobId) const
{
    QVariantHash mapRequest = m_deps.requests.New();
    VTProtocol::AddJobIds(mapRequest, lstJobId);
    m_deps.requests.Send(operation, mapRequest);
}

void VTJobActions::SendForJobs(VTRequests::Operation operation) const
{
    if (CurrentTab() == VTList::Jobs)
        Send(operation, m_deps.tables.CheckedIds(VTList::Jobs));
}

void VTJobActions::Delete()
{
    // The lists may be refilled while the question is open: the consent is for the rows over which it was asked, and
    // for their session.
    const int nTab = CurrentTab();
    const int nSession = m_deps.session.nNumber;
    const QStringList lstId = m_deps.tables.CheckedIds(nTab);
    const VTAnswer answer = m_deps.prompts.AskToConfirm(tr("Are you sure to delete these jobs?"));
    if (answer != VTAnswer::Agreed || m_deps.session.nNumber != nSession)
        return;
    m_deps.tables.UncheckAll();
    switch (nTab) {
    case VTList::Jobs:
        Send(&VTCommunicationInterface::DeleteJobs, lstId);
        break;
    case VTList::LocalTasks:
        m_deps.submitList.Delete(lstId);
        break;
    case VTList::Downloads:
        m_deps.downloadList.Delete(lstId);
        break;
    default:
        break;
    }
}

void VTJobActions::Stop() const
{
    if (CurrentTab() == VTList::LocalTasks && m_deps.services.pRenderCore)
        m_deps.services.pRenderCore->StopSubmitTasks();
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

void VTJobActions::HandleDeleteAnswer(int nRet) const
{
    HandleAnswer(nRet, tr("Delete jobs failed!"));
}

void VTJobActions::HandleStopAnswer(int nRet) const
{
    HandleAnswer(nRet, tr("Stop jobs failed!"));
}

void VTJobActions::HandleRecoverAnswer(int nRet, const QVariantMap& mapAnswer) const
{
    HandleAnswerOrRefusal(nRet, mapAnswer, tr("Recover jobs failed!"));
}

void VTJobActions::HandleRestartAnswer(int nRet, const QVariantMap& mapAnswer) const
{
    HandleAnswerOrRefusal(nRet, mapAnswer, tr("Restart jobs failed!"));
}

void VTJobActions::HandleFullRenderAnswer(int nRet, const QVariantMap& mapAnswer) const
{
    HandleAnswerOrRefusal(nRet, mapAnswer, tr("Full render jobs failed!"));
}

void VTJobActions::HandleAnswer(int nRet, const QString& strFailure) const
{
    if (nRet == VTProtocol::Success)
        m_deps.jobList.RequestCurrentPage();
    else
        m_deps.prompts.Notify(strFailure);
}

void VTJobActions::HandleAnswerOrRefusal(
    int nRet, const QVariantMap& mapAnswer, const QString& strFailure) const
{
    // The farm can refuse single jobs even where the answer as a whole reports success.
    if (!VTProtocol::Payload(mapAnswer).value(VTProtocol::NotAllowedJobs).toList().isEmpty())
        m_deps.prompts.Notify(tr("Amount Overdue!"));
    else
        HandleAnswer(nRet, strFailure);
}
