#include "host/mainform/task_status.h"

#include "host/mainform/main_form.h"

#include <QHelpEvent>
#include <QTableWidget>
#include <QToolTip>

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
    const QString words = m_words(index.siblingAtColumn(0).data(Qt::UserRole).toString());
    if (!words.isEmpty())
        option->text = words;
}
