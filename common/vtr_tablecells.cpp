#include "common/vtr_tablecells.h"

#include "common/vtr_codetables.h"
#include "common/vtr_plaintext.h"
#include "common/vtr_progressbar.h"

#include <QTableWidget>

namespace VTTableCells {

void SetAttributes(QTableWidgetItem* pItem, const QVariant& varData, const QString& strTip, bool bCheckable)
{
    if (!pItem)
        return;
    if (bCheckable)
        pItem->setCheckState(Qt::Unchecked);
    pItem->setData(Qt::UserRole, varData);
    pItem->setToolTip(VTPlainToolTip(strTip));
    pItem->setTextAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
}

QTableWidgetItem* ItemAt(QTableWidget* pTable, int nRow, int nColumn)
{
    QTableWidgetItem* pItem = pTable->item(nRow, nColumn);
    if (!pItem) {
        pItem = new QTableWidgetItem;
        pTable->setItem(nRow, nColumn, pItem);
    }
    return pItem;
}

QVariant Data(const QTableWidget* pTable, int nRow, int nColumn)
{
    const QTableWidgetItem* pItem = pTable->item(nRow, nColumn);
    return pItem ? pItem->data(Qt::UserRole) : QVariant();
}

void Write(QTableWidget* pTable, int nRow, int nColumn, const VTCell& cell)
{
    QTableWidgetItem* pItem = ItemAt(pTable, nRow, nColumn);
    pItem->setText(cell.strText);
    SetAttributes(pItem, cell.varData, cell.strTip, false);
    if (cell.bCheckable)
        pItem->setCheckState(cell.checkState);
}

QProgressBar* NewProgressBar(int nPercent, const VTCodeTables& codeTables)
{
    auto* pBar = new VTProgressBar;
    pBar->setTextVisible(true);
    pBar->setRange(0, 100);
    SetProgress(pBar, nPercent, codeTables.ProgressStyle(nPercent));
    return pBar;
}

void SetProgress(QProgressBar* pBar, int nPercent, const QString& strStyle)
{
    const bool bInRange = nPercent >= pBar->minimum() && nPercent <= pBar->maximum();
    const bool bSameValue = bInRange ? pBar->value() == nPercent : pBar->value() < pBar->minimum();
    const bool bSameStyle = pBar->styleSheet() == strStyle;
    if (bSameValue && bSameStyle)
        return;
    // A bar paints itself at once when its value changes. With updates off, the bars of a table are painted together.
    pBar->setUpdatesEnabled(false);
    if (bInRange)
        pBar->setValue(nPercent);
    else
        pBar->reset();
    if (!bSameStyle)
        pBar->setStyleSheet(strStyle);
    pBar->setUpdatesEnabled(true);
}

void WriteProgress(QTableWidget* pTable, int nRow, int nColumn, int nPercent, const VTCodeTables& codeTables)
{
    if (auto* pBar = qobject_cast<QProgressBar*>(pTable->cellWidget(nRow, nColumn)))
        SetProgress(pBar, nPercent, codeTables.ProgressStyle(nPercent));
    else
        pTable->setCellWidget(nRow, nColumn, NewProgressBar(nPercent, codeTables));
}

void WriteJob(QTableWidget* pTable, int nRow, const VTJobRecord& job, const VTCodeTables& codeTables,
    Qt::CheckState checkState)
{
    VTJobRow row = VTMakeJobRow(job, codeTables.mapJobStatus);
    row[VTIdColumn].checkState = checkState;
    for (int nColumn = 0; nColumn < VTColumnCount; ++nColumn) {
        if (nColumn == VTJobColumn::Progress)
            WriteProgress(pTable, nRow, nColumn, job.nProgress, codeTables);
        else
            Write(pTable, nRow, nColumn, row[nColumn]);
    }
}

void RetranslateJobStatuses(const QTableWidget* pTable, const VTCodeTables& codeTables)
{
    for (int nRow = 0; nRow < pTable->rowCount(); ++nRow) {
        QTableWidgetItem* pStatus = pTable->item(nRow, VTJobColumn::Status);
        if (!pStatus)
            continue;
        pStatus->setText(codeTables.JobStatusText(pStatus->data(Qt::UserRole).toInt()));
        if (!pStatus->toolTip().isEmpty())
            pStatus->setToolTip(VTPlainToolTip(pStatus->text()));
    }
}

} // namespace VTTableCells
