#include "host/mainform/preview_trigger.h"

#include "host/mainform/main_form.h"

#include <QTableWidget>

namespace {

constexpr int FileColumn = 2;
constexpr int StatusColumn = 4;
constexpr int FinishedStatus = 2;

} // namespace

void PreviewTrigger::Attach()
{
    if (const QTableWidget* table = FindDownloadTable())
        connect(table, &QTableWidget::cellDoubleClicked, this, &PreviewTrigger::HandleDoubleClick,
            Qt::UniqueConnection);
}

void PreviewTrigger::HandleDoubleClick(int row)
{
    const QTableWidget* table = FindDownloadTable();
    const QTableWidgetItem* status = table ? table->item(row, StatusColumn) : nullptr;
    const QTableWidgetItem* file = table ? table->item(row, FileColumn) : nullptr;
    if (!status || !file || status->data(Qt::UserRole).toInt() != FinishedStatus)
        return;
    UndoPress(table, row);
    emit PreviewRequested(file->text());
}
