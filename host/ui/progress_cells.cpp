#include "host/ui/progress_cells.h"

#include "common/vtr_columns.h"

#include <QPainter>
#include <QProgressBar>
#include <QStyledItemDelegate>
#include <QTableWidget>

namespace {

/// Reads the bar whenever it is asked, so that nothing needs to follow the bar's value.
class ProgressItem : public QTableWidgetItem
{
public:
    QVariant data(int role) const override
    {
        if (role != Qt::AccessibleTextRole || !tableWidget())
            return QTableWidgetItem::data(role);
        const auto* bar = qobject_cast<QProgressBar*>(tableWidget()->cellWidget(row(), column()));
        return bar ? bar->text() : QVariant();
    }
};

class ProgressDelegate : public QStyledItemDelegate
{
public:
    explicit ProgressDelegate(const QTableWidget* table, QObject* parent)
        : QStyledItemDelegate(parent)
        , m_table(table)
    {
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        const auto* bar = qobject_cast<const QProgressBar*>(m_table->indexWidget(index));
        if (!bar || bar->isTextVisible())
            return;
        painter->save();
        painter->setFont(bar->font());
        painter->setPen(m_table->palette().color(QPalette::Text));
        painter->drawText(option.rect, Qt::AlignRight | Qt::AlignVCenter, bar->text());
        painter->restore();
    }

private:
    const QTableWidget* m_table;
};

} // namespace

ProgressCells::ProgressCells(QTableWidget* table)
    : QObject(table)
    , m_table(table)
    , m_isActive(QAccessible::isActive())
{
    connect(table->model(), &QAbstractItemModel::rowsInserted, this,
        [this](const QModelIndex&, int first, int last) {
            if (m_isActive)
                DescribeRows(first, last);
        });
    QAccessible::installActivationObserver(this);
    table->setItemDelegateForColumn(VTProgressColumn, new ProgressDelegate(table, this));
}

ProgressCells::~ProgressCells()
{
    QAccessible::removeActivationObserver(this);
}

void ProgressCells::accessibilityActiveChanged(bool active)
{
    m_isActive = active;
    if (active)
        DescribeRows(0, m_table->rowCount() - 1);
}

void ProgressCells::DescribeRows(int first, int last)
{
    for (int row = first; row <= last; ++row) {
        if (!m_table->item(row, VTProgressColumn))
            m_table->setItem(row, VTProgressColumn, new ProgressItem);
    }
}
