#include "common/vtr_tablerows.h"

#include "common/vtr_columns.h"

#include <QScrollBar>
#include <QTableWidget>

namespace VTTableRows {

QString Id(const QTableWidget* pTable, int nRow)
{
    const QTableWidgetItem* pItem = pTable->item(nRow, VTIdColumn);
    return pItem ? pItem->data(Qt::UserRole).toString() : QString();
}

QStringList AllIds(const QTableWidget* pTable)
{
    QStringList lstId;
    for (int nRow = 0; nRow < pTable->rowCount(); ++nRow)
        lstId.append(Id(pTable, nRow));
    return lstId;
}

QList<int> Checked(const QTableWidget* pTable)
{
    QList<int> lstRow;
    for (int nRow = 0; nRow < pTable->rowCount(); ++nRow) {
        const QTableWidgetItem* pItem = pTable->item(nRow, VTIdColumn);
        if (pItem && pItem->checkState() == Qt::Checked)
            lstRow.append(nRow);
    }
    return lstRow;
}

QStringList CheckedIds(const QTableWidget* pTable)
{
    QStringList lstId;
    const QList<int> lstRow = Checked(pTable);
    for (const int nRow : lstRow)
        lstId.append(Id(pTable, nRow));
    return lstId;
}

void SetCheckStates(const QTableWidget* pTable, Qt::CheckState state)
{
    for (int nRow = 0; nRow < pTable->rowCount(); ++nRow) {
        if (QTableWidgetItem* pItem = pTable->item(nRow, VTIdColumn))
            pItem->setCheckState(state);
    }
}

void Clear(QTableWidget* pTable)
{
    pTable->clearContents();
    pTable->setRowCount(0);
}

Marks::Marks(const QTableWidget* pTable)
    : m_strCurrent(Id(pTable, pTable->currentRow()))
    , m_nCurrentColumn(pTable->currentColumn())
    , m_nScrollX(pTable->horizontalScrollBar()->value())
    , m_nScrollY(pTable->verticalScrollBar()->value())
{
    const QStringList lstChecked = CheckedIds(pTable);
    m_setChecked = QSet<QString>(lstChecked.begin(), lstChecked.end());
}

Qt::CheckState Marks::CheckState(const QString& strId) const
{
    return m_setChecked.contains(strId) ? Qt::Checked : Qt::Unchecked;
}

void Marks::Restore(QTableWidget* pTable) const
{
    for (int nRow = 0; nRow < pTable->rowCount(); ++nRow) {
        if (QTableWidgetItem* pItem = pTable->item(nRow, VTIdColumn))
            pItem->setCheckState(CheckState(Id(pTable, nRow)));
    }
    RestorePosition(pTable);
}

void Marks::RestorePosition(QTableWidget* pTable) const
{
    const int nRow = m_strCurrent.isEmpty() ? -1 : AllIds(pTable).indexOf(m_strCurrent);
    if (nRow != pTable->currentRow())
        pTable->setCurrentCell(nRow, nRow < 0 ? -1 : m_nCurrentColumn);
    // A new current cell is scrolled into view, as is one that a shrinking table has moved.
    pTable->horizontalScrollBar()->setValue(m_nScrollX);
    pTable->verticalScrollBar()->setValue(m_nScrollY);
}

} // namespace VTTableRows
