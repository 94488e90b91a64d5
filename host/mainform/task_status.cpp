#include "host/mainform/task_status.h"

#include "host/mainform/main_form.h"

#include <QTableWidget>

#include <utility>

namespace {

constexpr int StatusColumn = 2;

} // namespace

TaskStatus::TaskStatus(Words words, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_words(std::move(words))
{
}

void TaskStatus::BeginSession()
{
    if (QTableWidget* table = FindTable(QStringLiteral("twtLocalTask")))
        table->setItemDelegateForColumn(StatusColumn, this);
}

void TaskStatus::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QString words = m_words(index.siblingAtColumn(0).data(Qt::UserRole).toString());
    if (!words.isEmpty())
        option->text = words;
}
