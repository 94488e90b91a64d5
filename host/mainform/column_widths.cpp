#include "host/mainform/column_widths.h"

#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

#include <QEvent>
#include <QHeaderView>
#include <QTableWidget>

#include <algorithm>

namespace {

constexpr int LeastWidth = 40; // pixels

} // namespace

std::vector<int> ScaledTo(int total, const std::vector<int>& widths, int least)
{
    const int count = int(widths.size());
    std::vector<int> scaled;
    qint64 sum = 0; // of the columns that are left
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

ColumnWidths::ColumnWidths(
    QTableWidget* table, std::vector<int> usual, VTSettingsInterface* settings, QObject* parent)
    : QObject(parent)
    , m_table(table)
    , m_settings(settings)
    , m_usual(std::move(usual))
{
    QHeaderView* header = table->horizontalHeader();
    header->setTextElideMode(Qt::ElideRight);
    header->setMinimumSectionSize(LeastWidth);
    header->viewport()->installEventFilter(this);
    table->viewport()->installEventFilter(this);
    m_applying.setSingleShot(true);
    m_applying.setInterval(0);
    connect(&m_applying, &QTimer::timeout, this, &ColumnWidths::Apply);
    connect(header, &QHeaderView::sectionResized, this, [this] {
        m_wasDragged = m_wasDragged || m_isDragging;
        if (!m_isDragging && !m_isApplying)
            m_applying.start();
    });
}

void ColumnWidths::BeginSession(const QString& userName)
{
    m_userName = userName;
    m_shares.clear();
    const QVariantList stored = m_settings->Value(Key(), {}).toList();
    std::transform(stored.cbegin(), stored.cend(), std::back_inserter(m_shares),
        [](const QVariant& share) { return share.toInt(); });
    m_applying.start();
}

bool ColumnWidths::eventFilter(QObject* watched, QEvent* event)
{
    const bool isHeader = m_table && watched == m_table->horizontalHeader()->viewport();
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        m_isDragging = isHeader;
        break;
    case QEvent::MouseButtonRelease:
        if (m_isDragging && m_wasDragged)
            Keep();
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

QString ColumnWidths::Key() const
{
    return SettingKeys::OfAccount(m_userName, "columns.") + m_table->objectName();
}

std::vector<int> ColumnWidths::Shown() const
{
    std::vector<int> widths;
    widths.reserve(std::size_t(m_table->columnCount()));
    for (int column = 0; column < m_table->columnCount(); ++column)
        widths.push_back(m_table->columnWidth(column));
    return widths;
}

void ColumnWidths::Apply()
{
    if (!m_table || m_isDragging || m_table->columnCount() == 0)
        return;
    const std::size_t count = std::size_t(m_table->columnCount());
    std::vector<int> shares = m_shares.size() == count ? m_shares : m_usual;
    shares.resize(count, 1);
    const std::vector<int> widths = ScaledTo(m_table->viewport()->width(), shares, LeastWidth);
    m_isApplying = true;
    for (int column = 0; column < m_table->columnCount(); ++column)
        m_table->setColumnWidth(column, widths[std::size_t(column)]);
    m_isApplying = false;
}

/// Takes over the widths that the user has given to the columns, and makes them fill the table again.
void ColumnWidths::Keep()
{
    if (!m_table || m_userName.isEmpty())
        return;
    m_shares = Shown();
    QVariantList stored;
    for (const int share : m_shares)
        stored.append(share);
    m_settings->SetValue(Key(), stored);
    m_applying.start();
}
