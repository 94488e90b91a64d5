#include "dialogs/vtr_barsinview.h"

#include "common/vtr_tablecells.h"

#include <QScrollBar>
#include <QTableWidget>

namespace {

/// Rows at the top that have bars from the start.
constexpr int FirstRows = 64;

/// Role of a row's percentage, in the cell of its bar.
constexpr int PercentRole = Qt::UserRole + 1;

} // namespace

VTBarsInView::VTBarsInView(
    QTableWidget* pTable, int nColumn, const VTCodeTables& codeTables, QObject* pParent)
    : QObject(pParent)
    , m_pTable(pTable)
    , m_nColumn(nColumn)
    , m_codeTables(codeTables)
{
    const QScrollBar* pScrollBar = pTable->verticalScrollBar();
    connect(pScrollBar, &QScrollBar::valueChanged, this, &VTBarsInView::ShowBarsInView);
    connect(pScrollBar, &QScrollBar::rangeChanged, this, &VTBarsInView::ShowBarsInView);
}

void VTBarsInView::SetProgress(int nRow, int nPercent)
{
    if (nRow < FirstRows || m_pTable->cellWidget(nRow, m_nColumn))
        VTTableCells::WriteProgress(m_pTable, nRow, m_nColumn, nPercent, m_codeTables);
    else
        VTTableCells::ItemAt(m_pTable, nRow, m_nColumn)->setData(PercentRole, nPercent);
}

void VTBarsInView::ShowBarsInView()
{
    const int nFirst = m_pTable->rowAt(0);
    const int nLast = m_pTable->rowAt(m_pTable->viewport()->height() - 1);
    for (int nRow = qMax(0, nFirst); nRow <= (nLast < 0 ? m_pTable->rowCount() - 1 : nLast); ++nRow) {
        const QTableWidgetItem* pItem = m_pTable->item(nRow, m_nColumn);
        if (pItem && pItem->data(PercentRole).isValid() && !m_pTable->cellWidget(nRow, m_nColumn))
            VTTableCells::WriteProgress(
                m_pTable, nRow, m_nColumn, pItem->data(PercentRole).toInt(), m_codeTables);
    }
}
