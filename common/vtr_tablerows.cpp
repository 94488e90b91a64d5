#include "common/vtr_tablerows.h"

#include "common/vtr_columns.h"

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

} // namespace VTTableRows
