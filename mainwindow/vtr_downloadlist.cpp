#include "mainwindow/vtr_downloadlist.h"

#include "common/vtr_codetables.h"
#include "common/vtr_columns.h"
#include "common/vtr_plaintext.h"
#include "common/vtr_services.h"
#include "common/vtr_tablecells.h"
#include "common/vtr_tablerows.h"
#include "mainwindow/vtr_filereveal.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_tables.h"
#include "mainwindow/vtr_timers.h"

#include <QFileInfo>

VTDownloadList::VTDownloadList(const Dependencies& dependencies)
    : m_deps(dependencies)
    , m_pTable(dependencies.form.twtDownload)
{
    if (m_deps.services.pRenderCore)
        m_pTasks = m_deps.services.pRenderCore->GetDownloadTasks();
}

QStringList VTDownloadList::Headers()
{
    return {tr("Name"), tr("Source"), tr("Dest"), tr("Progress"), tr("Status"), tr("Start Time")};
}

const QVariantMap* VTDownloadList::Tasks() const
{
    return m_deps.services.pRenderCore ? m_pTasks : nullptr;
}

void VTDownloadList::BuildCurrentPage()
{
    BuildPage(m_deps.pageBar.CurrentPage(VTList::Downloads), false);
}

void VTDownloadList::BuildPage(int nPage, bool bKeepMarks)
{
    m_bBuildHeld = m_deps.tables.IsHeld(VTList::Downloads);
    if (m_bBuildHeld)
        return;
    const VTTableRows::Marks marks(m_pTable);
    VTTableRows::Clear(m_pTable);
    m_lstShown.clear();
    AddRows((nPage - 1) * VTPageSize);
    if (bKeepMarks)
        marks.Restore(m_pTable);
}

void VTDownloadList::AddRows(int nFirst)
{
    const QVariantMap* pTasks = Tasks();
    if (!pTasks)
        return;
    auto itTask = TaskAt(*pTasks, nFirst);
    if (itTask == pTasks->constEnd())
        return;
    // All rows are added at once, because each change of their number lays out all existing progress bars again.
    m_pTable->setRowCount(qMin(VTPageSize, pTasks->size() - nFirst));
    m_lstShown.resize(m_pTable->rowCount());
    for (int nRow = 0; nRow < m_pTable->rowCount(); ++nRow, ++itTask)
        WriteRow(nRow, itTask.key(), itTask->toMap());
}

QVariantMap::const_iterator VTDownloadList::TaskAt(const QVariantMap& mapTasks, int nIndex)
{
    // A render core may know the order of its downloads, which saves counting the entries of a long map. The operation
    // that tells it is not part of the interface, so not every render core has it.
    VTRenderCoreInterface* pCore = m_deps.services.pRenderCore;
    QString strTaskId;
    if (pCore && pCore->metaObject()->indexOfMethod("DownloadTaskIdAt(int)") >= 0)
        QMetaObject::invokeMethod(pCore, "DownloadTaskIdAt", Qt::DirectConnection,
            Q_RETURN_ARG(QString, strTaskId), Q_ARG(int, nIndex));
    const auto itTask = strTaskId.isEmpty() ? mapTasks.constEnd() : mapTasks.constFind(strTaskId);
    return itTask != mapTasks.constEnd() ? itTask : m_place.At(mapTasks, nIndex);
}

void VTDownloadList::CatchUp()
{
    if (m_bBuildHeld)
        BuildPage(m_deps.pageBar.CurrentPage(VTList::Downloads), true);
}

void VTDownloadList::WriteRow(int nRow, const QString& strTaskId, const QVariantMap& mapTask)
{
    const QString strDest = mapTask.value(QStringLiteral("destFile")).toString();
    const auto SetText = [this, nRow](int nColumn, const QString& strText) {
        QTableWidgetItem* pItem = VTTableCells::ItemAt(m_pTable, nRow, nColumn);
        pItem->setText(strText);
        return pItem;
    };
    QTableWidgetItem* pName = SetText(VTDownloadColumn::Name, QFileInfo(strDest).fileName());
    pName->setData(Qt::UserRole, strTaskId);
    pName->setCheckState(Qt::Unchecked);
    SetText(VTDownloadColumn::Source, mapTask.value(QStringLiteral("srcFile")).toString())
        ->setData(Qt::UserRole, mapTask.value(QStringLiteral("jobId")).toString());
    SetText(VTDownloadColumn::Dest, strDest);
    SetText(VTDownloadColumn::StartTime, QString())->setData(Qt::UserRole, QString());
    WriteState(nRow, mapTask);
    for (const int nColumn : {VTDownloadColumn::Status, VTDownloadColumn::StartTime})
        m_pTable->item(nRow, nColumn)->setTextAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
}

void VTDownloadList::WriteState(int nRow, const QVariantMap& mapTask)
{
    VTTableCells::WriteProgress(m_pTable, nRow, VTDownloadColumn::Progress,
        mapTask.value(QStringLiteral("progress")).toInt(), m_deps.codeTables);

    const int nState = mapTask.value(QStringLiteral("status")).toInt();
    QTableWidgetItem* pStatus = VTTableCells::ItemAt(m_pTable, nRow, VTDownloadColumn::Status);
    pStatus->setText(StateText(nState));
    pStatus->setData(Qt::UserRole, nState);
    pStatus->setToolTip(VTPlainToolTip(mapTask.value(QStringLiteral("msg")).toString()));
}

QString VTDownloadList::StateText(int nState) const
{
    const QString strState = m_deps.codeTables.mapDownloadState.value(nState);
    return strState.isEmpty() ? tr("Unkown") : tr(qUtf8Printable(strState));
}

void VTDownloadList::HandleListChange()
{
    m_place.Forget();
    const QVariantMap* pTasks = Tasks();
    if (!pTasks)
        return;
    VTPageState& state = m_deps.pageBar.State(VTList::Downloads);
    state.nTotalRecords = pTasks->size();
    state.StepBackWhenBeyond(pTasks->size());
    if (m_deps.form.tbwContainer->currentIndex() == VTList::Downloads) {
        m_deps.pageBar.Show(VTList::Downloads, pTasks->size());
        if (m_pTable->rowCount() < VTPageSize)
            BuildPage(state.nCurrentPage, true);
    }
    VTTimers::StartOnce(m_deps.timers.pDownloadList);
}

void VTDownloadList::Refresh()
{
    const QVariantMap* pTasks = Tasks();
    m_lstShown.resize(m_pTable->rowCount());
    if (!pTasks)
        return;
    // The rows follow each other as the tasks do, so only the first one is searched for.
    auto itTask = pTasks->constEnd();
    for (int nRow = 0; nRow < m_pTable->rowCount(); ++nRow) {
        const QString strTaskId = VTTableRows::Id(m_pTable, nRow);
        if (itTask == pTasks->constEnd() || ++itTask == pTasks->constEnd() || itTask.key() != strTaskId)
            itTask = pTasks->constFind(strTaskId);
        if (itTask == pTasks->constEnd()) {
            m_place.Forget();
            continue;
        }
        // Comparing a map with a copy that shares its data takes no time.
        if (m_lstShown.at(nRow) == *itTask)
            continue;
        WriteState(nRow, itTask->toMap());
        m_lstShown[nRow] = *itTask;
    }
}

void VTDownloadList::Retranslate()
{
    // Rows whose task has gone stay until the page is built again.
    for (int nRow = 0; nRow < m_pTable->rowCount(); ++nRow) {
        QTableWidgetItem* pStatus = VTTableCells::ItemAt(m_pTable, nRow, VTDownloadColumn::Status);
        pStatus->setText(StateText(pStatus->data(Qt::UserRole).toInt()));
    }
    m_lstShown.fill(QVariant());
    Refresh();
}

void VTDownloadList::Delete(const QStringList& lstTaskId)
{
    if (!m_deps.services.pRenderCore)
        return;
    m_deps.services.pRenderCore->RemoveDownloadTasks(lstTaskId);
    m_place.Forget();
    const QVariantMap* pTasks = Tasks();
    m_deps.pageBar.State(VTList::Downloads).nTotalRecords = pTasks ? pTasks->size() : 0;
    BuildPage(m_deps.pageBar.CorrectAfterDeletion(VTList::Downloads), false);
}

void VTDownloadList::RedownloadChecked()
{
    m_place.Forget();
    if (m_deps.services.pRenderCore)
        m_deps.services.pRenderCore->RedownloadTasks(VTTableRows::CheckedIds(m_pTable));
}

void VTDownloadList::RevealCurrentFile() const
{
    const QTableWidgetItem* pDest = m_pTable->item(m_pTable->currentRow(), VTDownloadColumn::Dest);
    if (pDest)
        VTRevealFile(pDest->text().replace(QLatin1String("//"), QLatin1String("/")));
}
