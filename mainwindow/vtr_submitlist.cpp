#include "vtr_submitlist.h"

#include "vtr_mainform.h"
#include "vtr_pagebar.h"
#include "vtr_plaintext.h"
#include "vtr_prompts.h"
#include "vtr_siblings.h"
#include "vtr_skin.h"
#include "vtr_tablecells.h"
#include "vtr_tables.h"
#include "vtr_timers.h"

#include <QFileInfo>

namespace {

constexpr int StageChecksum = 3;
constexpr int StageCopySame = 4;
constexpr int StageUpload = 5;
constexpr int ErrorAwaitsUser = 9;

/// Place of an id in the list. Looks where it is expected first, so that a page costs the same however long the list.
int IndexOf(const QStringList& lstId, const QString& strId, int nExpected)
{
    if (nExpected < lstId.size() && lstId.at(nExpected) == strId)
        return nExpected;
    return lstId.indexOf(strId);
}

} // namespace

VTSubmitList::VTSubmitList(const Needs& needs)
    : m_needs(needs)
    , m_pTable(needs.form.twtLocalTask)
{
}

QStringList VTSubmitList::Headers()
{
    return {tr("Name"), tr("Start Time"), tr("Status"), tr("Progress"), tr("SceneFile"), tr("Warn")};
}

void VTSubmitList::BuildPage(int nPage)
{
    VTTableCells::Clear(m_pTable);
    if (!m_needs.siblings.pRenderCore)
        return;
    const QStringList lstId = m_needs.siblings.pRenderCore->GetSubmitTaskIds();
    const QStringList lstOnPage = lstId.mid(qMax(0, (nPage - 1) * VTPageSize), VTPageSize);
    m_pTable->setRowCount(lstOnPage.size());
    for (int nRow = 0; nRow < lstOnPage.size(); ++nRow)
        WriteRow(nRow, lstOnPage.at(nRow));
}

void VTSubmitList::BuildCurrentPage()
{
    BuildPage(m_needs.pageBar.CurrentPage(VTList::LocalTasks));
}

void VTSubmitList::WriteRow(int nRow, const QString& strTaskId)
{
    VTRenderCoreInterface& renderCore = *m_needs.siblings.pRenderCore;
    const QString strSceneFile = renderCore.GetTaskSceneFile(strTaskId);
    const int nStage = renderCore.GetTaskStage(strTaskId);
    const auto SetText = [this, nRow](int nColumn, const QString& strText) {
        QTableWidgetItem* pItem = VTTableCells::ItemAt(m_pTable, nRow, nColumn);
        pItem->setText(strText);
        return pItem;
    };
    QTableWidgetItem* pName = SetText(VTTaskColumn::Name, QFileInfo(strSceneFile).completeBaseName());
    pName->setData(Qt::UserRole, strTaskId);
    pName->setCheckState(Qt::Unchecked);
    SetText(VTTaskColumn::StartTime, renderCore.GetTaskStartTime(strTaskId))->setData(Qt::UserRole, false);
    SetText(VTTaskColumn::Status,
        m_needs.tables.mapTaskStage.contains(nStage) ? StageText(nStage) : tr("Unknown"))
        ->setData(Qt::UserRole, nStage);
    VTTableCells::WriteProgress(
        m_pTable, nRow, VTTaskColumn::Progress, renderCore.GetTaskProgress(strTaskId), m_needs.tables);
    SetText(VTTaskColumn::SceneFile, strSceneFile)->setToolTip(VTPlainToolTip(strSceneFile));
    SetText(VTTaskColumn::Warn, tr(qUtf8Printable(renderCore.GetTaskMessage(strTaskId))));
    for (const int nColumn : {VTTaskColumn::Status, VTTaskColumn::SceneFile, VTTaskColumn::Warn})
        m_pTable->item(nRow, nColumn)->setTextAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
}

void VTSubmitList::ListChanged()
{
    if (!m_needs.siblings.pRenderCore)
        return;
    const int nCount = m_needs.siblings.pRenderCore->GetSubmitTaskCount();
    VTPageState& state = m_needs.pageBar.State(VTList::LocalTasks);
    state.nTotalRecords = nCount;
    state.StepBackWhenBeyond(nCount);
    m_needs.pageBar.Show(VTList::LocalTasks, nCount);
    if (m_pTable->rowCount() < VTPageSize)
        BuildCurrentPage();
    VTTimers::StartOnce(m_needs.timers.pSubmitList);
    m_needs.form.tbwContainer->setCurrentIndex(VTList::LocalTasks);
}

void VTSubmitList::Refresh()
{
    if (!m_needs.siblings.pRenderCore)
        return;
    const QStringList lstId = m_needs.siblings.pRenderCore->GetSubmitTaskIds();
    int nExpected = m_needs.pageBar.State(VTList::LocalTasks).FirstRecord();
    for (int nRow = 0; nRow < m_pTable->rowCount();) {
        const QString strTaskId = VTTables::IdAt(m_pTable, nRow);
        const int nIndex = IndexOf(lstId, strTaskId, nExpected);
        if (nIndex < 0) {
            m_pTable->removeRow(nRow);
            continue;
        }
        RefreshRow(nRow, strTaskId);
        nExpected = nIndex + 1;
        ++nRow;
    }
}

QString VTSubmitList::StageText(int nStage) const
{
    const QString strStage = m_needs.tables.mapTaskStage.value(nStage);
    return strStage.isEmpty() ? QString() : tr(qUtf8Printable(strStage));
}

void VTSubmitList::RefreshRow(int nRow, const QString& strTaskId)
{
    VTRenderCoreInterface& renderCore = *m_needs.siblings.pRenderCore;
    const int nError = renderCore.GetTaskErrorCode(strTaskId);
    const int nStage = renderCore.GetTaskStage(strTaskId);

    QTableWidgetItem* pStartTime = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::StartTime);
    pStartTime->setText(renderCore.GetTaskStartTime(strTaskId));

    QTableWidgetItem* pStatus = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::Status);
    pStatus->setText(nError != 0 ? QString(StageText(nStage) + tr("fail")) : StageText(nStage));
    pStatus->setData(Qt::UserRole, nStage);

    VTTableCells::WriteProgress(m_pTable, nRow, VTTaskColumn::Progress,
        qMax(0, renderCore.GetTaskProgress(strTaskId)), m_needs.tables);

    // The arguments are known once the scene is analysed; they are read once a row, so that edits stay.
    if (nStage >= StageChecksum && !pStartTime->data(Qt::UserRole).toBool()) {
        VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::SceneFile)
            ->setData(Qt::UserRole, renderCore.GetTaskArguments(strTaskId));
        pStartTime->setData(Qt::UserRole, true);
    }
    RefreshWarning(nRow, strTaskId, nStage, nError);
}

void VTSubmitList::RefreshWarning(int nRow, const QString& strTaskId, int nStage, int nError)
{
    VTRenderCoreInterface& renderCore = *m_needs.siblings.pRenderCore;
    QTableWidgetItem* pWarn = VTTableCells::ItemAt(m_pTable, nRow, VTTaskColumn::Warn);
    // An icon never equals another, so setting one always repaints: touch it only when it changes.
    const auto ClearIcon = [pWarn] {
        if (!pWarn->icon().isNull())
            pWarn->setIcon(QIcon());
    };
    if (nStage == StageUpload && nError == 0) {
        pWarn->setText(renderCore.GetTaskUploadText(strTaskId));
        ClearIcon();
        return;
    }
    const QString strMessage = tr(qUtf8Printable(renderCore.GetTaskMessage(strTaskId)));
    const QString strIcon = pWarn->data(Qt::UserRole).toString();
    pWarn->setStatusTip(nStage == StageCopySame ? tr("Lacked of texture files:") : QString());
    pWarn->setWhatsThis(strMessage);
    pWarn->setText(QString());
    if (nError != 0 && strIcon.isEmpty()) {
        const QString strWarning = VTSkin::WarningIconFile(m_needs.siblings.Skin());
        pWarn->setIcon(QIcon(strWarning));
        pWarn->setData(Qt::UserRole, strWarning);
    } else if (nError == 0 && !strIcon.isEmpty()) {
        ClearIcon();
        pWarn->setData(Qt::UserRole, QString());
    }
    pWarn->setToolTip(VTPlainToolTip(strMessage));
}

void VTSubmitList::Delete(const QStringList& lstTaskId)
{
    if (!m_needs.siblings.pRenderCore)
        return;
    m_needs.siblings.pRenderCore->RemoveSubmitTasks(lstTaskId, true);
    m_needs.pageBar.State(VTList::LocalTasks).nTotalRecords
        = m_needs.siblings.pRenderCore->GetSubmitTaskCount();
    BuildPage(m_needs.pageBar.CorrectAfterDeletion(VTList::LocalTasks));
}

void VTSubmitList::ContinueCurrent() const
{
    const int nRow = m_pTable->currentRow();
    if (nRow >= 0 && m_needs.siblings.pRenderCore)
        m_needs.siblings.pRenderCore->ContinueSubmit(VTTables::IdAt(m_pTable, nRow));
}

void VTSubmitList::DoubleClicked(int nRow, int nColumn)
{
    const QTableWidgetItem* pWarn = m_pTable->item(nRow, VTTaskColumn::Warn);
    if (nColumn != VTTaskColumn::Warn || !pWarn || !m_needs.siblings.pRenderCore)
        return;
    const QString strTaskId = VTTables::IdAt(m_pTable, nRow);
    const int nError = m_needs.siblings.pRenderCore->GetTaskErrorCode(strTaskId);
    const QString strText = pWarn->whatsThis();
    if (nError == 0)
        return;
    if (nError != ErrorAwaitsUser) {
        m_needs.prompts.Notify(tr(qUtf8Printable(strText)));
        return;
    }
    const QPointer<VTSubmitList> pThis(this);
    const VTAnswer answer = m_needs.prompts.Ask({QFileInfo(strTaskId).completeBaseName(), pWarn->statusTip(),
        strText, tr("Cancel"), tr("Submit"), true});
    if (pThis && answer == VTAnswer::Agreed && m_needs.siblings.pRenderCore)
        m_needs.siblings.pRenderCore->ContinueSubmit(strTaskId);
}
