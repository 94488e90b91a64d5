#include "mainwindow/vtr_tables.h"

#include "common/vtr_jobrow.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"

#include <QEvent>
#include <QGuiApplication>
#include <QStyledItemDelegate>

namespace {

/// A press anywhere in a row toggles its check box. Were the box to react to the click as well, the two would cancel
/// each other out; so it leaves the mouse to the press and answers to the keyboard only.
class RowDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
        const QModelIndex& index) override
    {
        const bool bKey = event->type() == QEvent::KeyPress;
        return bKey && QStyledItemDelegate::editorEvent(event, model, option, index);
    }
};

} // namespace

VTTables::VTTables(const VTMainForm& form)
    : m_form(form)
{
    for (int nTab = 0; nTab < VTList::Count; ++nTab) {
        QTableWidget* pTable = m_form.Table(nTab);
        pTable->setItemDelegate(new RowDelegate(pTable));
    }
}

QStringList VTTables::CheckedIds(int nTab) const
{
    QStringList lstId;
    const QTableWidget* pTable = m_form.Table(nTab);
    for (int nRow = 0; pTable && nRow < pTable->rowCount(); ++nRow) {
        const QTableWidgetItem* pItem = pTable->item(nRow, 0);
        if (pItem && pItem->checkState() == Qt::Checked)
            lstId.append(pItem->data(Qt::UserRole).toString());
    }
    return lstId;
}

QString VTTables::IdAt(const QTableWidget* pTable, int nRow)
{
    const QTableWidgetItem* pItem = pTable->item(nRow, 0);
    return pItem ? pItem->data(Qt::UserRole).toString() : QString();
}

QStringList VTTables::AllIds(const QTableWidget* pTable)
{
    QStringList lstId;
    for (int nRow = 0; nRow < pTable->rowCount(); ++nRow)
        lstId.append(IdAt(pTable, nRow));
    return lstId;
}

void VTTables::Press(int nRow)
{
    m_nPressedRow = nRow;
    const QTableWidget* pTable = m_form.CurrentTable();
    QTableWidgetItem* pItem = pTable ? pTable->item(nRow, 0) : nullptr;
    if (!pItem)
        return;
    const bool bRightButton = QGuiApplication::mouseButtons().testFlag(Qt::RightButton);
    const bool bUncheck = !bRightButton && pItem->checkState() == Qt::Checked;
    pItem->setCheckState(bUncheck ? Qt::Unchecked : Qt::Checked);
}

void VTTables::SetCheckStates(const QTableWidget* pTable, Qt::CheckState state)
{
    for (int nRow = 0; nRow < pTable->rowCount(); ++nRow) {
        if (QTableWidgetItem* pItem = pTable->item(nRow, 0))
            pItem->setCheckState(state);
    }
}

void VTTables::CheckAll(int nState) const
{
    if (const QTableWidget* pTable = m_form.CurrentTable())
        SetCheckStates(pTable, Qt::CheckState(nState));
}

void VTTables::UncheckAll() const
{
    m_form.chkAll->setCheckState(Qt::Unchecked);
}

void VTTables::SetUpColumns() const
{
    for (int nTab = 0; nTab < VTList::Count; ++nTab) {
        m_form.Table(nTab)->setColumnCount(VTJobColumn::Count);
        m_form.Table(nTab)->setSortingEnabled(false); // rows stand where the lists put them
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
