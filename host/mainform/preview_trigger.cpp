#include "host/mainform/preview_trigger.h"

#include "host/mainform/main_form.h"
#include "host/services/previewer_service.h"

#include <QTableWidget>

namespace {

constexpr int kFileColumn = 2;
constexpr int kStatusColumn = 4;
constexpr int kFinished = 2;

} // namespace

PreviewTrigger::PreviewTrigger(PreviewerService* previewer, QObject* parent)
    : QObject(parent)
    , m_previewer(previewer)
{
}

void PreviewTrigger::Attach()
{
    if (const QTableWidget* table = FindDownloadTable())
        connect(table, &QTableWidget::cellDoubleClicked, this, &PreviewTrigger::Open, Qt::UniqueConnection);
}

void PreviewTrigger::Open(int row)
{
    const QTableWidget* table = FindDownloadTable();
    const QTableWidgetItem* status = table ? table->item(row, kStatusColumn) : nullptr;
    const QTableWidgetItem* file = table ? table->item(row, kFileColumn) : nullptr;
    if (status && file && status->data(Qt::UserRole).toInt() == kFinished)
        m_previewer->Open(file->text());
}
