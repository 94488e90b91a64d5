#include "mainwindow/vtr_tables.h"

#include "common/vtr_celldelegate.h"
#include "common/vtr_columns.h"
#include "common/vtr_tablerows.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMenu>

namespace {

/// Makes check boxes react to the keyboard only. A press anywhere in a row already toggles its box; if the box reacted
/// to the mouse as well, the two would cancel each other out.
class RowDelegate : public VTCellDelegate
{
public:
    using VTCellDelegate::VTCellDelegate;

    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
        const QModelIndex& index) override
    {
        const bool bKey = event->type() == QEvent::KeyPress;
        return bKey && VTCellDelegate::editorEvent(event, model, option, index);
    }
};

} // namespace

VTTables::VTTables(const VTMainForm& form)
    : m_form(form)
{
    for (int nTab = 0; nTab < VTList::Count; ++nTab) {
        QTableWidget* pTable = m_form.Table(nTab);
        pTable->setItemDelegate(new RowDelegate(pTable));
        pTable->setContextMenuPolicy(Qt::CustomContextMenu);
        pTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    }
}

QStringList VTTables::CheckedIds(int nTab) const
{
    const QTableWidget* pTable = m_form.Table(nTab);
    return pTable ? VTTableRows::CheckedIds(pTable) : QStringList();
}

void VTTables::Press(int nRow)
{
    m_nPressedRow = nRow;
    const QTableWidget* pTable = m_form.CurrentTable();
    QTableWidgetItem* pItem = pTable ? pTable->item(nRow, VTIdColumn) : nullptr;
    if (!pItem)
        return;
    const bool bRightButton = QGuiApplication::mouseButtons().testFlag(Qt::RightButton);
    const bool bUncheck = !bRightButton && pItem->checkState() == Qt::Checked;
    pItem->setCheckState(bUncheck ? Qt::Unchecked : Qt::Checked);
}

void VTTables::Hold(int nTab, const QMenu* pMenu)
{
    m_nHeldTab = nTab;
    m_pMenu = pMenu;
}

bool VTTables::IsHeld(int nTab) const
{
    return nTab == m_nHeldTab && m_pMenu && m_pMenu->isVisible();
}

void VTTables::CheckAll(int nState) const
{
    if (const QTableWidget* pTable = m_form.CurrentTable())
        VTTableRows::SetCheckStates(pTable, Qt::CheckState(nState));
}

void VTTables::UncheckAll() const
{
    m_form.chkAll->setCheckState(Qt::Unchecked);
}

void VTTables::SetUpColumns() const
{
    for (int nTab = 0; nTab < VTList::Count; ++nTab) {
        m_form.Table(nTab)->setColumnCount(VTColumnCount);
        m_form.Table(nTab)->setSortingEnabled(false); // the lists decide the order
    }
}

void VTTables::SpreadColumns(int nTab) const
{
    QTableWidget* pTable = m_form.Table(nTab);
    if (!pTable || pTable->columnCount() == 0)
        return;
    const int nWidth = pTable->width() / pTable->columnCount();
    for (int nColumn = 0; nColumn < pTable->columnCount(); ++nColumn)
        pTable->setColumnWidth(nColumn, nWidth);
}
