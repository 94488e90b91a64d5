#include "host/ui/progress_cells.h"

#include <QProgressBar>
#include <QTableWidget>

namespace {

constexpr int Column = 3; // of the bars, in every table of the forms

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
        if (!m_table->item(row, Column))
            m_table->setItem(row, Column, new ProgressItem);
    }
}
