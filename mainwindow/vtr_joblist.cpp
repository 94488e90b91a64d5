#include "mainwindow/vtr_joblist.h"

#include "common/vtr_codetables.h"
#include "common/vtr_columns.h"
#include "common/vtr_prompts.h"
#include "common/vtr_protocol.h"
#include "common/vtr_services.h"
#include "common/vtr_tablecells.h"
#include "common/vtr_tablerows.h"
#include "dialogs/vtr_conditions.h"
#include "mainwindow/vtr_accountsettings.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_requests.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_tables.h"

#include <QCoreApplication>

#include <utility>

namespace {

constexpr int CandidatePageSize = 1000;

QVector<VTJobRecord> Records(const QVariantList& lstJob)
{
    QVector<VTJobRecord> lstRecord;
    lstRecord.reserve(lstJob.size());
    for (const QVariant& varJob : lstJob)
        lstRecord.append(VTJobRecord::FromMap(varJob.toMap()));
    return lstRecord;
}

/// Adds the order for the job that a row shows.
void AddOrder(QVariantMap& mapOrders, const QTableWidget* pTable, int nRow)
{
    const QTableWidgetItem* pSequence = pTable->item(nRow, VTJobColumn::Sequence);
    const QTableWidgetItem* pName = pTable->item(nRow, VTJobColumn::Name);
    if (!pSequence || !pName)
        return;
    mapOrders.insert(pSequence->data(Qt::UserRole).toString(),
        VTDownloadOrder(pName->data(Qt::UserRole).toString(), pSequence->text(), pName->text(), true));
}

} // namespace

VTJobList::VTJobList(const Dependencies& dependencies)
    : m_deps(dependencies)
{
}

void VTJobList::Send(int nPage, const QString& strConditions, int nFlag) const
{
    QVariantHash mapRequest = m_deps.requests.New();
    mapRequest.insert(VTProtocol::PageSize, nFlag != 0 ? CandidatePageSize : VTPageSize);
    mapRequest.insert(VTProtocol::Page, nPage);
    mapRequest.insert(VTProtocol::Identifier, nFlag);
    if (!strConditions.isEmpty())
        mapRequest.insert(VTProtocol::Conditions, strConditions);
    m_deps.requests.Send(&VTCommunicationInterface::GetJobList, mapRequest);
}

void VTJobList::Request(int nPage, const QString& strConditions, int nFlag)
{
    if (nFlag == 0) {
        m_bFillPending = true;
        m_nRefreshesPending = 0;
    }
    Send(nPage, strConditions, nFlag);
}

void VTJobList::RequestCurrentPage()
{
    RequestPage(m_deps.pageBar.CurrentPage(VTList::Jobs));
}

void VTJobList::Refresh()
{
    if (m_deps.form.tbwContainer->currentIndex() != VTList::Jobs)
        return;
    ++m_nRefreshesPending;
    Send(m_deps.pageBar.CurrentPage(VTList::Jobs), m_strConditions, 0);
}

/// @return whether the answer that has just arrived belongs to a refresh.
bool VTJobList::TakeRefreshed()
{
    if (m_bFillPending) {
        m_bFillPending = false;
        return false;
    }
    const bool bRefreshed = m_nRefreshesPending > 0;
    m_nRefreshesPending = qMax(0, m_nRefreshesPending - 1);
    return bRefreshed;
}

void VTJobList::Search(const QVariantMap& mapCondition)
{
    m_strConditions.clear();
    if (!mapCondition.isEmpty())
        m_strConditions = VTConditionText(mapCondition);
    m_deps.pageBar.State(VTList::Jobs).ResetPosition();
    RequestPage(1);
}

void VTJobList::HandleAnswer(int nRet, const QVariantMap& mapAnswer)
{
    if (!m_deps.session.bOpen)
        return;
    if (mapAnswer.value(VTProtocol::Identifier).toBool()) {
        if (nRet == VTProtocol::Success)
            emit CandidatesArrived(VTProtocol::Payload(mapAnswer).value(VTProtocol::List).toList());
        return;
    }
    const bool bRefreshed = TakeRefreshed();
    if (nRet != VTProtocol::Success) {
        m_deps.pageBar.ForgetClick();
        return;
    }
    // An answer replaces the waiting one, even if the menu has already closed and its entry is running a dialog.
    const bool bKeepsMarks = bRefreshed && (!m_heldAnswer || m_heldAnswer->bRefreshed);
    m_heldAnswer = HeldAnswer {mapAnswer, bKeepsMarks, m_deps.session.nNumber};
    ShowHeldAnswer();
}

void VTJobList::EndSession()
{
    m_setHandedOver.clear();
    m_heldAnswer.reset();
    m_bFillPending = false;
    m_nRefreshesPending = 0;
}

void VTJobList::ShowHeldAnswer()
{
    if (!m_heldAnswer || m_deps.tables.IsHeld(VTList::Jobs))
        return;
    const HeldAnswer answer = *m_heldAnswer;
    m_heldAnswer.reset();
    if (answer.nSession == m_deps.session.nNumber)
        ShowAnswer(answer.mapAnswer, answer.bRefreshed);
}

void VTJobList::ShowAnswer(const QVariantMap& mapAnswer, bool bRefreshed)
{
    const QVariantMap mapData = VTProtocol::Payload(mapAnswer);
    const QVector<VTJobRecord> lstRecord = Records(mapData.value(VTProtocol::List).toList());
    if (lstRecord.isEmpty()) {
        ShowNoJobs();
        return;
    }
    if (m_deps.form.tbwContainer->currentIndex() == VTList::Jobs)
        m_deps.pageBar.Show(VTList::Jobs, mapData.value(VTProtocol::Total).toInt());
    Fill(m_deps.form.twtMyRender, lstRecord, bRefreshed);
    HandOverFinished(lstRecord);
}

void VTJobList::Retranslate() const
{
    VTTableCells::RetranslateJobStatuses(m_deps.form.twtMyRender, m_deps.codeTables);
}

void VTJobList::ShowNoJobs()
{
    const bool bStepBack = m_deps.pageBar.State(VTList::Jobs).StepBack();
    if (m_deps.form.twtMyRender->rowCount() > 0) {
        VTTableRows::Clear(m_deps.form.twtMyRender);
        // An empty list has one group, whose number is shown until the answer for the previous page brings its own.
        VTPageState& state = m_deps.pageBar.State(VTList::Jobs);
        const int nGroup = std::exchange(state.nCurrentGroup, 1);
        m_deps.pageBar.Show(VTList::Jobs, 0);
        state.nCurrentGroup = nGroup;
    }
    // The request comes last, because its answer may arrive before the call returns.
    if (bStepBack)
        RequestCurrentPage();
}

void VTJobList::Fill(QTableWidget* pTable, const QVector<VTJobRecord>& lstJob, bool bKeepChecks)
{
    const VTTableRows::Marks marks(pTable);
    int nSame = 0;
    for (int nRow = 0; nRow < qMin(lstJob.size(), m_lstShown.size()); ++nRow)
        nSame += m_lstShown.at(nRow) == lstJob.at(nRow) ? 1 : 0;
    // Each changed cell asks to be painted. When most have changed, painting the whole table once costs less.
    const bool bHoldPainting = nSame < lstJob.size() / 2;
    if (bHoldPainting)
        pTable->viewport()->setUpdatesEnabled(false);
    pTable->setRowCount(lstJob.size());
    for (int nRow = 0; nRow < lstJob.size(); ++nRow) {
        const VTJobRecord& job = lstJob.at(nRow);
        const Qt::CheckState checkState = bKeepChecks ? marks.CheckState(job.strId) : Qt::Unchecked;
        QTableWidgetItem* pId = pTable->item(nRow, VTIdColumn);
        if (pId && nRow < m_lstShown.size() && m_lstShown.at(nRow) == job)
            pId->setCheckState(checkState);
        else
            VTTableCells::WriteJob(pTable, nRow, job, m_deps.codeTables, checkState);
    }
    m_lstShown = lstJob;
    marks.RestorePosition(pTable);
    if (bHoldPainting)
        pTable->viewport()->setUpdatesEnabled(true);
}

void VTJobList::HandOverFinished(const QVector<VTJobRecord>& lstJob)
{
    if (!m_deps.settings.AutoDownload())
        return;
    QVariantMap mapOrders;
    for (const VTJobRecord& job : lstJob) {
        if (job.nStatus != VTCodeTables::JobFinished || m_setHandedOver.contains(job.strId))
            continue;
        m_deps.services.LogDebug(QStringLiteral("auto download: %1").arg(job.strId));
        mapOrders.insert(job.strId, VTDownloadOrder(job.strType, job.strSequence, job.strName, false));
    }
    if (mapOrders.isEmpty())
        return;
    for (auto itOrder = mapOrders.cbegin(); itOrder != mapOrders.cend(); ++itOrder)
        m_setHandedOver.insert(itOrder.key());
    emit OrdersReady(mapOrders);
}

QVariantMap VTJobList::CheckedOrders() const
{
    const QTableWidget* pTable = m_deps.form.twtMyRender;
    QVariantMap mapOrders;
    const QList<int> lstRow = VTTableRows::Checked(pTable);
    for (const int nRow : lstRow)
        AddOrder(mapOrders, pTable, nRow);
    if (mapOrders.isEmpty() && pTable->currentRow() >= 0)
        AddOrder(mapOrders, pTable, pTable->currentRow());
    return mapOrders;
}

void VTJobList::OrderDownloads()
{
    const QVariantMap mapOrders = CheckedOrders();
    if (mapOrders.isEmpty())
        return;
    const int nSession = m_deps.session.nNumber;
    emit OrdersReady(mapOrders);
    m_deps.prompts.Notify(QCoreApplication::translate(
        "VTQsClientPrivate", "The checked items are already added to download list"));
    if (m_deps.session.nNumber != nSession)
        return;
    VTTableRows::SetCheckStates(m_deps.form.twtMyRender, Qt::Unchecked);
    m_deps.tables.UncheckAll();
}
