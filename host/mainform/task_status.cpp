#include "host/mainform/task_status.h"

#include "common/vtr_columns.h"
#include "host/mainform/main_form.h"
#include "host/ui/message_text.h"

#include <QHelpEvent>
#include <QTableWidget>
#include <QToolTip>

#include <utility>

TaskStatus::TaskStatus(Words words, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_words(std::move(words))
{
}

void TaskStatus::BeginSession()
{
    QTableWidget* table = FindTable(QStringLiteral("twtLocalTask"));
    if (!table || table == m_table)
        return;
    m_table = table;
    table->setItemDelegateForColumn(VTTaskColumn::Status, this);
    // When only the words change and not the status, the window writes nothing but the row's warning.
    connect(table->model(), &QAbstractItemModel::dataChanged, table,
        [table](const QModelIndex& index) { table->update(index.siblingAtColumn(VTTaskColumn::Status)); });
}

bool TaskStatus::helpEvent(
    QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || sizeHint(option, index).width() <= option.rect.width())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QStyleOptionViewItem shown(option);
    initStyleOption(&shown, index);
    QToolTip::showText(event->globalPos(), PlainToolTip(shown.text), view);
    return true;
}

void TaskStatus::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QString words = m_words(index.siblingAtColumn(VTIdColumn).data(Qt::UserRole).toString());
    if (!words.isEmpty())
        option->text = words;
}
