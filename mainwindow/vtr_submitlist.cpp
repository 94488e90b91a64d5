#include "mainwindow/vtr_submitlist.h"

#include "common/vtr_codetables.h"
#include "common/vtr_columns.h"
#include "common/vtr_plaintext.h"
#include "common/vtr_prompts.h"
#include "common/vtr_services.h"
#include "common/vtr_skin.h"
#include "common/vtr_tablecells.h"
#include "common/vtr_tablerows.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_tables.h"
#include "mainwindow/vtr_timers.h"

#include <QFileInfo>

#include <tuple>

namespace {

constexpr int StageChecksum = 3;
constexpr int StageCopySame = 4;
constexpr int StageUpload = 5;
constexpr int ErrorAwaitsUser = 9;

/// Sets a text only when it differs, because an item without a text treats even an empty one as a change.
void SetText(QTableWidgetItem* pItem, int nRole, const QString& strText)
{
    if (pItem->data(nRole).toString() != strText)
        pItem->setData(nRole, strText);
}

/// Clears an icon only when there is one: icons are never equal to each other, so setting one always repaints.
void ClearIcon(QTableWidgetItem* pItem)
{
    if (!pItem->icon().isNull())
        pItem->setIcon(QIcon());
}

} // namespace

VTSubmitList::VTSubmitList(const Dependencies& dependencies)
    : m_deps(dependencies)
    , m_pTable(dependencies.form.twtLocalTask)
{
}

QStringList VTSubmitList::Headers()
{
    return {tr("Name"), tr("Start Time"), tr("Status"), tr("Progress"), tr("SceneFile"), tr("Warn")};
}

bool VTSubmitList::Task::Uploads() const
{
    return nStage == StageUpload && nError == 0;
}

bool VTSubmitList::Task::LooksLike(const Task& other) const
{
    const auto Values = [](const Task& task) {
        return std::tie(
            task.nStage, task.nProgress, task.nError, task.strUploadText, task.strMessage, task.strStartTime);
    };
    return Values(*this) == Values(other);
}

void VTSubmitList::BuildCurrentPage()
{
    BuildPage(m_deps.pageBar.CurrentPage(VTList::LocalTasks), false);
}

void VTSubmitList::BuildPage(int nPage, bool bKeepMarks)
{
    m_bBuildHeld = m_deps.tables.IsHeld(VTList::LocalTasks);
    if (m_bBuildHeld)
        return;
    const int nBuild = ++m_nBuild;
    const int nSession = m_deps.session.nNumber;
    const QVector<Task> lstTask = ReadPage(nPage);
    if (nBuild != m_nBuild || nSession != m_deps.session.nNumber)
        return;
    const VTTableRows::Marks marks(m_pTable);
    VTTableRows::Clear(m_pTable);
    m_mapShown.clear();
    m_nFirstPlace = (nPage - 1) * VTPageSize;
    m_pTable->setRowCount(lstTask.size());
    for (int nRow = 0; nRow < lstTask.size(); ++nRow)
        WriteRow(nRow, lstTask.at(nRow));
    if (bKeepMarks)
        marks.Restore(m_pTable);
}

QVector<VTSubmitList::Task> VTSubmitList::ReadPage(int nPage)
{
    QVector<Task> lstTask;
    if (!m_deps.services.pRenderCore || nPage < 1)
        return lstTask;
    const QStringList lstOnPage
        = m_deps.services.pRenderCore->GetSubmitTaskIds().mid((nPage - 1) * VTPageSize, VTPageSize);
    for (const QString& strTaskId : lstOnPage) {
        if (m_deps.services.pRenderCore)
            lstTask.append(ReadForNewRow(strTaskId));
    }
    return lstTask;
}

VTSubmitList::Task VTSubmitList::ReadForNewRow(const QString& strTaskId) const
{
    VTRenderCoreInterface& renderCore = *m_deps.services.pRenderCore;
    Task task;
    task.strId = strTaskId;
    task.strSceneFile = renderCore.GetTaskSceneFile(strTaskId);
    task.nStage = renderCore.GetTaskStage(strTaskId);
    task.strStartTime = renderCore.GetTaskStartTime(strTaskId);
    task.nProgress = renderCore.GetTaskProgress(strTaskId);
    task.strMessage = renderCore.GetTaskMessage(strTaskId);
    return task;
}

void VTSubmitList::WriteRow(int nRow, const Task& task)
{
    const auto Put = [this, nRow](int nColumn, const QString& strText) {
        QTableWidgetItem* pItem = VTTableCells::ItemAt(m_pTable, nRow, nColumn);
        pItem->setText(strText);
        return pItem;
    };
    QTableWidgetItem* pName = Put(VTTaskColumn::Name, QFileInfo(task.strSceneFile).completeBaseName());
    pName->setData(Qt::UserRole, task.strId);
    pName->setCheckState(Qt::Unchecked);
    Put(VTTaskColumn::StartTime, task.strStartTime)->setData(Qt::UserRole, false);
    Put(VTTaskColumn::Status,
        m_deps.codeTables.mapTaskStage.contains(task.nStage) ? StageText(task.nStage) : tr("Unknown"))
        ->setData(Qt::UserRole, task.nStage);
    VTTableCells::WriteProgress(m_pTable, nRow, VTTaskColumn::Progress, task.nProgress, m_deps.codeTables);
    Put(VTTaskColumn::SceneFile, task.strSceneFile)->setToolTip(VTPlainToolTip(task.strSceneFile));
    Put(VTTaskColumn::Warn, tr(qUtf8Printable(task.strMessage)));
    for (const int nColumn : {VTTaskColumn::Status, VTTaskColumn::SceneFile, VTTaskColumn::Warn})
        m_pTable->item(nRow, nColumn)->setTextAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
}

void VTSubmitList::HandleListChange()
{
    if (!m_deps.services.pRenderCore)
        return;
    const int nCount = m_deps.services.pRenderCore->GetSubmitTaskCount();
    VTPageState& state = m_deps.pageBar.State(VTList::LocalTasks);
    state.nTotalRecords = nCount;
    state.StepBackWhenBeyond(nCount);
    m_deps.pageBar.Show(VTList::LocalTasks, nCount);
    if (m_pTable->rowCount() < VTPageSize)
        BuildPage(state.nCurrentPage, true);
    VTTimers::StartOnce(m_deps.timers.pSubmitList);
    m_deps.form.tbwContainer->setCurrentIndex(VTList::LocalTasks);
}

QVector<int> VTSubmitList::PlacesOfRows(const QStringList& lstId) const
{
    QVector<int> lstPlace(m_pTable->rowCount(), -1);
    QHash<QString, int> mapMoved;
    for (int nRow = 0; nRow < lstPlace.size(); ++nRow) {
        const QString strTaskId = VTTableRows::Id(m_pTable, nRow);
        const int nExpected = m_nFirstPlace + nRow;
        if (nExpected < lstId.size() && lstId.at(nExpected) == strTaskId)
            lstPlace[nRow] = nExpected;
        else
            mapMoved.insert(strTaskId, nRow);
    }
    // One search, outwards from the expected place, finds all tasks that have moved. Most have moved by a few places, so
    // it is short however long the list is; it covers the whole list only when a task has gone.
    const int nFarthest = qMax(m_nFirstPlace, lstId.size() - m_nFirstPlace);
    for (int nDistance = 0; nDistance <= nFarthest && !mapMoved.isEmpty(); ++nDistance) {
        for (const int nPlace : {m_nFirstPlace - nDistance, m_nFirstPlace + nDistance}) {
            if (nPlace >= 0 && nPlace < lstId.size() && mapMoved.contains(lstId.at(nPlace)))
                lstPlace[mapMoved.take(lstId.at(nPlace))] = nPlace;
        }
    }
    return lstPlace;
}

void VTSubmitList::Refresh()
{
    if (!m_deps.services.pRenderCore || m_deps.tables.IsHeld(VTList::LocalTasks))
        return;
    const QVector<int> lstPlace = PlacesOfRows(m_deps.services.pRenderCore->GetSubmitTaskIds());
    const int nBuild = m_nBuild;
    int nRows = lstPlace.size();
    // Reading a task and removing a row may call back, after which the rows may be others or the render core gone.
    const auto HasChanged
        = [&] { return nBuild != m_nBuild || nRows != m_pTable->rowCount() || !m_deps.services.pRenderCore; };
    int nRow = 0;
    for (const int nPlace : lstPlace) {
        if (HasChanged())
            return;
        if (nPlace < 0) {
            if (nRow == m_pTable->currentRow())
                m_pTable->setCurrentCell(-1, -1);
            if (HasChanged())
                return;
            --nRows;
            m_pTable->removeRow(nRow);
            continue;
        }
        if (nRow == 0)
            m_nFirstPlace = nPlace;
        const bool bArguments
            = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::StartTime)->data(Qt::UserRole).toBool();
        const Task task = ReadForRefresh(VTTableRows::Id(m_pTable, nRow), !bArguments);
        if (HasChanged())
            return;
        const auto itShown = m_mapShown.constFind(task.strId);
        if (task.bArguments || itShown == m_mapShown.constEnd() || !itShown->LooksLike(task)) {
            RefreshRow(nRow, task);
            m_mapShown.insert(task.strId, task);
        }
        ++nRow;
    }
}

void VTSubmitList::CatchUp()
{
    if (m_bBuildHeld)
        BuildPage(m_deps.pageBar.CurrentPage(VTList::LocalTasks), true);
}

void VTSubmitList::Retranslate()
{
    m_mapShown.clear();
    if (m_pTable->rowCount() > 0)
        Refresh();
}

/// @param bArguments whether to read the arguments as well, if they are known yet.
VTSubmitList::Task VTSubmitList::ReadForRefresh(const QString& strTaskId, bool bArguments) const
{
    VTRenderCoreInterface& renderCore = *m_deps.services.pRenderCore;
    Task task;
    task.strId = strTaskId;
    task.strStartTime = renderCore.GetTaskStartTime(strTaskId);
    task.nError = renderCore.GetTaskErrorCode(strTaskId);
    task.nStage = renderCore.GetTaskStage(strTaskId);
    task.nProgress = qMax(0, renderCore.GetTaskProgress(strTaskId));
    task.strMessage = renderCore.GetTaskMessage(strTaskId);
    // The arguments are known once the scene has been analysed. They are read once per row, so that edits survive.
    task.bArguments = bArguments && task.nStage >= StageChecksum;
    if (task.bArguments)
        task.lstArguments = renderCore.GetTaskArguments(strTaskId);
    if (task.Uploads())
        task.strUploadText = renderCore.GetTaskUploadText(strTaskId);
    if (task.nError != 0)
        task.strWarning = VTSkin::WarningIconFile(m_deps.services.Skin());
    return task;
}

QString VTSubmitList::StageText(int nStage) const
{
    const QString strStage = m_deps.codeTables.mapTaskStage.value(nStage);
    return strStage.isEmpty() ? QString() : tr(qUtf8Printable(strStage));
}

void VTSubmitList::RefreshRow(int nRow, const Task& task)
{
    QTableWidgetItem* pStartTime = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::StartTime);
    pStartTime->setText(task.strStartTime);

    QTableWidgetItem* pStatus = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::Status);
    pStatus->setText(
        task.nError != 0 ? QString(StageText(task.nStage) + tr("fail")) : StageText(task.nStage));
    pStatus->setData(Qt::UserRole, task.nStage);

    VTTableCells::WriteProgress(m_pTable, nRow, VTTaskColumn::Progress, task.nProgress, m_deps.codeTables);

    if (task.bArguments) {
        VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::SceneFile)
            ->setData(Qt::UserRole, task.lstArguments);
        pStartTime->setData(Qt::UserRole, true);
    }
    RefreshWarning(VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::Warn), task);
}

void VTSubmitList::RefreshWarning(QTableWidgetItem* pWarn, const Task& task) const
{
    const QString strIcon = pWarn->data(Qt::UserRole).toString();
    if (task.nError != 0 && strIcon.isEmpty()) {
        pWarn->setIcon(QIcon(task.strWarning));
        pWarn->setData(Qt::UserRole, task.strWarning);
    } else if (task.nError == 0) {
        ClearIcon(pWarn);
        SetText(pWarn, Qt::UserRole, QString());
    }
    if (task.Uploads()) {
        pWarn->setText(task.strUploadText);
        return;
    }
    SetText(
        pWarn, Qt::StatusTipRole, task.nStage == StageCopySame ? tr("Lacked of texture files:") : QString());
    const QString strMessage = tr(qUtf8Printable(task.strMessage));
    SetText(pWarn, Qt::WhatsThisRole, strMessage);
    SetText(pWarn, Qt::DisplayRole, QString());
    SetText(pWarn, Qt::ToolTipRole, VTPlainToolTip(strMessage));
}

void VTSubmitList::Delete(const QStringList& lstTaskId)
{
    if (!m_deps.services.pRenderCore)
        return;
    m_deps.services.pRenderCore->RemoveSubmitTasks(lstTaskId, true);
    if (m_deps.services.pRenderCore)
        m_deps.pageBar.State(VTList::LocalTasks).nTotalRecords
            = m_deps.services.pRenderCore->GetSubmitTaskCount();
    BuildPage(m_deps.pageBar.CorrectAfterDeletion(VTList::LocalTasks), false);
}

void VTSubmitList::ContinueCurrent() const
{
    const int nRow = m_pTable->currentRow();
    if (nRow >= 0 && m_deps.services.pRenderCore)
        m_deps.services.pRenderCore->ContinueSubmit(VTTableRows::Id(m_pTable, nRow));
}

void VTSubmitList::HandleDoubleClick(int nRow, int nColumn)
{
    const QTableWidgetItem* pWarn = m_pTable->item(nRow, VTTaskColumn::Warn);
    if (nColumn != VTTaskColumn::Warn || !pWarn || !m_deps.services.pRenderCore)
        return;
    const QString strTaskId = VTTableRows::Id(m_pTable, nRow);
    const QString strText = pWarn->whatsThis();
    const QString strCaption = pWarn->statusTip();
    const int nError = m_deps.services.pRenderCore->GetTaskErrorCode(strTaskId);
    if (nError == 0)
        return;
    if (nError != ErrorAwaitsUser) {
        m_deps.prompts.Notify(tr(qUtf8Printable(strText)));
        return;
    }
    const int nSession = m_deps.session.nNumber;
    const VTAnswer answer = m_deps.prompts.Ask(
        {QFileInfo(strTaskId).completeBaseName(), strCaption, strText, tr("Cancel"), tr("Submit"), true});
    if (answer == VTAnswer::Agreed && m_deps.session.nNumber == nSession && m_deps.services.pRenderCore)
        m_deps.services.pRenderCore->ContinueSubmit(strTaskId);
}
