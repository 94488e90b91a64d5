#include "host/mainform/cell_tips.h"

#include "host/mainform/main_form.h"
#include "host/ui/message_text.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QTableWidget>
#include <QToolTip>

namespace {

/// @return the text of a header that is cut off; empty for others.
QString CutText(const QHeaderView* header, const QPoint& place)
{
    const int column = header->logicalIndexAt(place);
    if (column < 0 || header->sectionSizeHint(column) <= header->sectionSize(column))
        return {};
    return header->model()->headerData(column, header->orientation()).toString();
}

/// @return the text of a cell that is cut off; empty for others, for cells with their own tool tips, and for columns
/// whose delegates show other texts.
QString CutText(const QTableView* table, const QPoint& place)
{
    const QModelIndex index = table->indexAt(place);
    if (index.isValid() && table->itemDelegateForColumn(index.column()))
        return {};
    const bool isCut
        = index.isValid() && table->sizeHintForIndex(index).width() > table->columnWidth(index.column());
    return isCut && index.data(Qt::ToolTipRole).toString().isEmpty() ? index.data().toString() : QString();
}

} // namespace

void CellTips::BeginSession()
{
    QWidget* form = FindMainForm();
    if (!form || form == m_form)
        return;
    m_form = form;
    for (const QTableWidget* table : form->findChildren<QTableWidget*>()) {
        table->viewport()->installEventFilter(this);
        table->horizontalHeader()->viewport()->installEventFilter(this);
    }
}

bool CellTips::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return false;
    const auto* help = static_cast<const QHelpEvent*>(event);
    auto* viewport = qobject_cast<QWidget*>(watched);
    const QWidget* view = viewport ? viewport->parentWidget() : nullptr;
    QString text;
    if (const auto* header = qobject_cast<const QHeaderView*>(view))
        text = CutText(header, help->pos());
    else if (const auto* table = qobject_cast<const QTableView*>(view))
        text = CutText(table, help->pos());
    if (text.isEmpty())
        return false;
    QToolTip::showText(help->globalPos(), PlainToolTip(text), viewport);
    return true;
}
