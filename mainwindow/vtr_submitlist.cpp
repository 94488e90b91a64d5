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
#include "mainwindow/vtr_timers.h"

#include <QFileInfo>
#include <QHash>
#include <QPointer>

namespace {

constexpr int StageChecksum = 3;
constexpr int StageCopySame = 4;
constexpr int StageUpload = 5;
constexpr int ErrorAwaitsUser = 9;

/// Sets a text only when it differs: an item without a text takes even an empty one for a change.
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

void VTSubmitList::BuildPage(int nPage)
{
    VTTableRows::Clear(m_pTable);
    if (!m_deps.services.pRenderCore || nPage < 1)
        return;
    m_nFirstPlace = (nPage - 1) * VTPageSize;
    const QStringList lstOnPage
        = m_deps.services.pRenderCore->GetSubmitTaskIds().mid(m_nFirstPlace, VTPageSize);
    m_pTable->setRowCount(lstOnPage.size());
    for (int nRow = 0; nRow < lstOnPage.size(); ++nRow)
        WriteRow(nRow, lstOnPage.at(nRow));
}

void VTSubmitList::BuildCurrentPage()
{
    BuildPage(m_deps.pageBar.CurrentPage(VTList::LocalTasks));
}

void VTSubmitList::WriteRow(int nRow, const QString& strTaskId)
{
    VTRenderCoreInterface& renderCore = *m_deps.services.pRenderCore;
    const QString strSceneFile = renderCore.GetTaskSceneFile(strTaskId);
    const int nStage = renderCore.GetTaskStage(strTaskId);
    const auto Put = [this, nRow](int nColumn, const QString& strText) {
        QTableWidgetItem* pItem = VTTableCells::ItemAt(m_pTable, nRow, nColumn);
        pItem->setText(strText);
        return pItem;
    };
    QTableWidgetItem* pName = Put(VTTaskColumn::Name, QFileInfo(strSceneFile).completeBaseName());
    pName->setData(Qt::UserRole, strTaskId);
    pName->setCheckState(Qt::Unchecked);
    Put(VTTaskColumn::StartTime, renderCore.GetTaskStartTime(strTaskId))->setData(Qt::UserRole, false);
    Put(VTTaskColumn::Status,
        m_deps.codeTables.mapTaskStage.contains(nStage) ? StageText(nStage) : tr("Unknown"))
        ->setData(Qt::UserRole, nStage);
    VTTableCells::WriteProgress(
        m_pTable, nRow, VTTaskColumn::Progress, renderCore.GetTaskProgress(strTaskId), m_deps.codeTables);
    Put(VTTaskColumn::SceneFile, strSceneFile)->setToolTip(VTPlainToolTip(strSceneFile));
    Put(VTTaskColumn::Warn, tr(qUtf8Printable(renderCore.GetTaskMessage(strTaskId))));
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
        BuildCurrentPage();
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
    if (!m_deps.services.pRenderCore)
        return;
    const QVector<int> lstPlace = PlacesOfRows(m_deps.services.pRenderCore->GetSubmitTaskIds());
    int nRow = 0;
    for (const int nPlace : lstPlace) {
        if (nPlace < 0) {
            m_pTable->removeRow(nRow);
            continue;
        }
        if (nRow == 0)
            m_nFirstPlace = nPlace;
        RefreshRow(nRow, VTTableRows::Id(m_pTable, nRow));
        ++nRow;
    }
}

QString VTSubmitList::StageText(int nStage) const
{
    const QString strStage = m_deps.codeTables.mapTaskStage.value(nStage);
    return strStage.isEmpty() ? QString() : tr(qUtf8Printable(strStage));
}

void VTSubmitList::RefreshRow(int nRow, const QString& strTaskId)
{
    VTRenderCoreInterface& renderCore = *m_deps.services.pRenderCore;
    QTableWidgetItem* pStartTime = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::StartTime);
    pStartTime->setText(renderCore.GetTaskStartTime(strTaskId));
    const int nError = renderCore.GetTaskErrorCode(strTaskId);
    const int nStage = renderCore.GetTaskStage(strTaskId);

    QTableWidgetItem* pStatus = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::Status);
    pStatus->setText(nError != 0 ? QString(StageText(nStage) + tr("fail")) : StageText(nStage));
    pStatus->setData(Qt::UserRole, nStage);

    VTTableCells::WriteProgress(m_pTable, nRow, VTTaskColumn::Progress,
        qMax(0, renderCore.GetTaskProgress(strTaskId)), m_deps.codeTables);
    const QString strMessage = tr(qUtf8Printable(renderCore.GetTaskMessage(strTaskId)));

    // The arguments are known once the scene is analysed. They are read once per row, so that edits survive.
    if (nStage >= StageChecksum && !pStartTime->data(Qt::UserRole).toBool()) {
        VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::SceneFile)
            ->setData(Qt::UserRole, renderCore.GetTaskArguments(strTaskId));
        pStartTime->setData(Qt::UserRole, true);
    }

    QTableWidgetItem* pWarn = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::Warn);
    if (nStage == StageUpload && nError == 0) {
        pWarn->setText(renderCore.GetTaskUploadText(strTaskId));
        ClearIcon(pWarn);
    } else {
        RefreshWarning(pWarn, strMessage, nStage, nError);
    }
}

void VTSubmitList::RefreshWarning(
    QTableWidgetItem* pWarn, const QString& strMessage, int nStage, int nError) const
{
    const QString strIcon = pWarn->data(Qt::UserRole).toString();
    SetText(pWarn, Qt::StatusTipRole, nStage == StageCopySame ? tr("Lacked of texture files:") : QString());
    SetText(pWarn, Qt::WhatsThisRole, strMessage);
    SetText(pWarn, Qt::DisplayRole, QString());
    if (nError != 0 && strIcon.isEmpty()) {
        const QString strWarning = VTSkin::WarningIconFile(m_deps.services.Skin());
        pWarn->setIcon(QIcon(strWarning));
        pWarn->setData(Qt::UserRole, strWarning);
    } else if (nError == 0 && !strIcon.isEmpty()) {
        ClearIcon(pWarn);
        pWarn->setData(Qt::UserRole, QString());
    }
    SetText(pWarn, Qt::ToolTipRole, VTPlainToolTip(strMessage));
}

void VTSubmitList::Delete(const QStringList& lstTaskId)
{
    if (!m_deps.services.pRenderCore)
        return;
    m_deps.services.pRenderCore->RemoveSubmitTasks(lstTaskId, true);
    m_deps.pageBar.State(VTList::LocalTasks).nTotalRecords
        = m_deps.services.pRenderCore->GetSubmitTaskCount();
    BuildPage(m_deps.pageBar.CorrectAfterDeletion(VTList::LocalTasks));
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
    const int nError = m_deps.services.pRenderCore->GetTaskErrorCode(strTaskId);
    const QString strText = pWarn->whatsThis();
    if (nError == 0)
        return;
    if (nError != ErrorAwaitsUser) {
        m_deps.prompts.Notify(tr(qUtf8Printable(strText)));
        return;
    }
    const QPointer<VTSubmitList> pThis(this);
    const VTAnswer answer = m_deps.prompts.Ask({QFileInfo(strTaskId).completeBaseName(), pWarn->statusTip(),
        strText, tr("Cancel"), tr("Submit"), true});
    if (pThis && answer == VTAnswer::Agreed && m_deps.services.pRenderCore)
        m_deps.services.pRenderCore->ContinueSubmit(strTaskId);
}
