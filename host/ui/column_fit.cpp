#include "host/ui/column_fit.h"

#include <QEvent>
#include <QHeaderView>

#include <utility>

namespace {

constexpr int LeastWidth = 40; // pixels

} // namespace

std::vector<int> ScaledTo(int total, const std::vector<int>& widths, int least)
{
    const int count = int(widths.size());
    std::vector<int> scaled;
    qint64 sum = 0; // of the widths that are not scaled yet
    for (const int width : widths)
        sum += qMax(1, width);
    int left = qMax(0, total);
    least = count ? qMin(least, left / count) : 0;
    for (int i = 0; i < count; ++i) {
        const int width = qMax(1, widths[std::size_t(i)]);
        const int reserved = least * (count - i - 1);
        scaled.push_back(qBound(least, int(qint64(left) * width / sum), left - reserved));
        left -= scaled.back();
        sum -= width;
    }
    return scaled;
}

ColumnFit::ColumnFit(QTableWidget* table, std::vector<int> shares, QObject* parent)
    : QObject(parent)
    , m_table(table)
    , m_shares(std::move(shares))
{
    QHeaderView* header = table->horizontalHeader();
    header->setTextElideMode(Qt::ElideRight);
    header->setMinimumSectionSize(LeastWidth);
    m_header = header->viewport();
    m_header->installEventFilter(this);
    table->viewport()->installEventFilter(this);
    m_applying.setSingleShot(true);
    m_applying.setInterval(0);
    connect(&m_applying, &QTimer::timeout, this, &ColumnFit::Apply);
    connect(header, &QHeaderView::sectionResized, this, [this] {
        m_wasDragged = m_wasDragged || m_isDragging;
        if (!m_isDragging && !m_isApplying)
            m_applying.start();
    });
}

void ColumnFit::SetShares(std::vector<int> shares)
{
    m_shares = std::move(shares);
    m_applying.start();
}

bool ColumnFit::eventFilter(QObject* watched, QEvent* event)
{
    const bool isHeader = watched == m_header;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        m_isDragging = isHeader;
        break;
    case QEvent::MouseButtonRelease:
        if (m_isDragging && m_wasDragged) {
            SetShares(Shown());
            emit Dragged(m_shares);
        }
        m_isDragging = false;
        m_wasDragged = false;
        break;
    case QEvent::Resize:
        if (!isHeader)
            m_applying.start();
        break;
    default:
        break;
    }
    return false;
}

std::vector<int> ColumnFit::Shown() const
{
    std::vector<int> widths;
    widths.reserve(std::size_t(m_table->columnCount()));
    for (int column = 0; column < m_table->columnCount(); ++column)
        widths.push_back(m_table->columnWidth(column));
    return widths;
}

void ColumnFit::Apply()
{
    if (!m_table || m_isDragging || m_table->columnCount() == 0)
        return;
    std::vector<int> shares = m_shares;
    shares.resize(std::size_t(m_table->columnCount()), 1);
    const std::vector<int> widths = ScaledTo(m_table->viewport()->width(), shares, LeastWidth);
    m_isApplying = true;
    for (int column = 0; column < m_table->columnCount(); ++column)
        m_table->setColumnWidth(column, widths[std::size_t(column)]);
    m_isApplying = false;
}
