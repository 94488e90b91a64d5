#include "host/mainform/job_trigger.h"

#include "common/vtr_columns.h"
#include "host/mainform/main_form.h"

#include <QShortcut>
#include <QTableWidget>

void JobTrigger::Attach()
{
    QTableWidget* table = FindJobTable();
    if (!table || table == m_table)
        return;
    m_table = table;
    connect(table, &QTableWidget::cellDoubleClicked, this, &JobTrigger::HandleDoubleClick);
    for (const QKeySequence& key :
        {QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter), QKeySequence(Qt::CTRL + Qt::Key_I)}) {
        const auto* shortcut = new QShortcut(key, table, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, [this] { Request(m_table->currentRow()); });
    }
}

void JobTrigger::HandleDoubleClick(int row)
{
    UndoPress(m_table, row);
    Request(row);
}

void JobTrigger::Request(int row)
{
    const QTableWidgetItem* id = m_table->item(row, VTJobColumn::Sequence);
    const QTableWidgetItem* name = m_table->item(row, VTJobColumn::Name);
    if (id && name)
        emit FramesRequested(
            id->data(Qt::UserRole).toString(), name->text(), id->text() + QLatin1Char('_') + name->text());
}
