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
#include "mainwindow/vtr_tables.h"

#include <QCoreApplication>
#include <QPointer>

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

void VTJobList::Request(int nPage, const QString& strConditions, int nFlag) const
{
    QVariantHash mapRequest = m_deps.requests.New();
    mapRequest.insert(VTProtocol::PageSize, nFlag != 0 ? CandidatePageSize : VTPageSize);
    mapRequest.insert(VTProtocol::Page, nPage);
    mapRequest.insert(VTProtocol::Identifier, nFlag);
    if (!strConditions.isEmpty())
        mapRequest.insert(VTProtocol::Conditions, strConditions);
    m_deps.requests.Send(&VTCommunicationInterface::GetJobList, mapRequest);
}

void VTJobList::RequestCurrentPage() const
{
    RequestPage(m_deps.pageBar.CurrentPage(VTList::Jobs));
}

void VTJobList::Refresh() const
{
    if (m_deps.form.tbwContainer->currentIndex() == VTList::Jobs)
        RequestCurrentPage();
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
    if (nRet != VTProtocol::Success)
        return;
    const QVariantMap mapData = VTProtocol::Payload(mapAnswer);
    const QVariantList lstJob = mapData.value(VTProtocol::List).toList();
    if (mapAnswer.value(VTProtocol::Identifier).toBool()) {
        emit CandidatesArrived(lstJob);
        return;
    }
    if (lstJob.isEmpty()) {
        ShowNoJobs();
        return;
    }
    if (m_deps.form.tbwContainer->currentIndex() == VTList::Jobs)
        m_deps.pageBar.Show(VTList::Jobs, mapData.value(VTProtocol::Total).toInt());
    const QVector<VTJobRecord> lstRecord = Records(lstJob);
    Fill(m_deps.form.twtMyRender, lstRecord);
    HandOverFinished(lstRecord);
}

void VTJobList::ShowNoJobs()
{
    VTPageState& state = m_deps.pageBar.State(VTList::Jobs);
    const bool bStepBack = state.nCurrentPage > 1;
    if (bStepBack)
        --state.nCurrentPage;
    if (m_deps.form.twtMyRender->rowCount() > 0) {
        VTTableRows::Clear(m_deps.form.twtMyRender);
        m_deps.pageBar.Show(VTList::Jobs, 0);
    }
    // The request comes last, because its answer may arrive before the call returns.
    if (bStepBack)
        RequestCurrentPage();
}

void VTJobList::Fill(QTableWidget* pTable, const QVector<VTJobRecord>& lstJob)
{
    const QString strCurrentId = VTTableRows::Id(pTable, pTable->currentRow());
    const int nCurrentColumn = pTable->currentColumn();
    int nCurrentRow = -1;

    pTable->setRowCount(lstJob.size());
    for (int nRow = 0; nRow < lstJob.size(); ++nRow) {
        const VTJobRecord& job = lstJob.at(nRow);
        VTTableCells::WriteJob(pTable, nRow, job, m_deps.codeTables);
        if (nCurrentRow < 0 && !job.strId.isEmpty() && job.strId == strCurrentId)
            nCurrentRow = nRow;
    }
    // The current row stays with its job.
    if (nCurrentRow != pTable->currentRow())
        pTable->setCurrentCell(nCurrentRow, nCurrentRow < 0 ? -1 : nCurrentColumn);
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
    const QPointer<VTJobList> pThis(this);
    emit OrdersReady(mapOrders);
    if (!pThis)
        return;
    m_deps.prompts.Notify(QCoreApplication::translate(
        "VTQsClientPrivate", "The checked items are already added to download list"));
    if (!pThis)
        return;
    VTTableRows::SetCheckStates(m_deps.form.twtMyRender, Qt::Unchecked);
    m_deps.tables.UncheckAll();
}
