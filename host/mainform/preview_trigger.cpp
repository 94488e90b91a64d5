#include "host/mainform/preview_trigger.h"

#include "common/vtr_codetables.h"
#include "common/vtr_columns.h"
#include "host/mainform/main_form.h"

#include <QTableWidget>

void PreviewTrigger::Attach()
{
    if (const QTableWidget* table = FindDownloadTable())
        connect(table, &QTableWidget::cellDoubleClicked, this, &PreviewTrigger::HandleDoubleClick,
            Qt::UniqueConnection);
}

void PreviewTrigger::HandleDoubleClick(int row)
{
    const QTableWidget* table = FindDownloadTable();
    const QTableWidgetItem* status = table ? table->item(row, VTDownloadColumn::Status) : nullptr;
    const QTableWidgetItem* file = table ? table->item(row, VTDownloadColumn::Dest) : nullptr;
    if (!status || !file || status->data(Qt::UserRole).toInt() != VTCodeTables::DownloadFinished)
        return;
    UndoPress(table, row);
    emit PreviewRequested(file->text());
}
