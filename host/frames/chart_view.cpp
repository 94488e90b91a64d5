#include "host/frames/chart_view.h"

#include "host/ui/message_text.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int Gap = 6; // pixels between texts and bars
constexpr int LeastWidth = 160;
constexpr int LeastHeight = 90;

} // namespace

QSize ChartView::minimumSizeHint() const
{
    return {LeastWidth, LeastHeight};
}

void ChartView::SetData(const Data& shown)
{
    m_data = shown;
    setAccessibleName(shown.name);
    setAccessibleDescription(shown.description);
    LayOut();
}

void ChartView::Mark(int index)
{
    m_marked = index;
    update();
}

void ChartView::LayOut()
{
    const QFontMetrics metrics(font());
    int left = 0;
    if (m_data.scale && !m_data.values.empty()) {
        // The scale does not depend on the width.
        const double top = ChartLayout::Of(m_data.values, {1, 1}).top;
        left = std::max(
                   metrics.horizontalAdvance(m_data.scale(top)), metrics.horizontalAdvance(m_data.scale(0)))
            + Gap;
    }
    m_room = rect().adjusted(left, metrics.height() / 2, 0, -metrics.height() - Gap);
    m_layout = ChartLayout::Of(m_data.values, m_room.size());
    update();
}

void ChartView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(m_lineColor);
    painter.drawLine(m_room.topLeft(), m_room.topRight());
    painter.drawLine(m_room.bottomLeft(), m_room.bottomRight());
    for (const ChartBar& bar : m_layout.bars) {
        const bool isMarked = m_marked >= bar.first && m_marked < bar.first + bar.count;
        painter.fillRect(m_room.left() + bar.x, m_room.bottom() - bar.height, bar.width, bar.height,
            isMarked ? m_markColor : m_barColor);
    }
    DrawTexts(painter);
}

void ChartView::DrawTexts(QPainter& painter) const
{
    // Without room there are no bars.
    if (m_layout.bars.empty())
        return;
    painter.setPen(m_textColor);
    if (*std::max_element(m_data.values.begin(), m_data.values.end()) <= 0)
        painter.drawText(m_room, Qt::AlignCenter, m_data.nothing);
    const QFontMetrics metrics(font());
    const int line = metrics.height();
    const QRect scale(0, 0, m_room.left() - Gap, line);
    painter.drawText(scale, Qt::AlignRight | Qt::AlignVCenter, m_data.scale(m_layout.top));
    painter.drawText(
        scale.translated(0, m_room.bottom() - line / 2), Qt::AlignRight | Qt::AlignVCenter, m_data.scale(0));
    const ChartBar& last = m_layout.bars.back();
    const int end = m_room.left() + last.x + last.width;
    const QRect below(m_room.left(), m_room.bottom() + Gap, std::max(end - m_room.left(), 0), line);
    const QString firstLabel = m_data.label(0);
    const QString lastLabel = m_data.label(int(m_data.values.size()) - 1);
    painter.drawText(below, Qt::AlignLeft | Qt::TextDontClip, firstLabel);
    const bool isRoom = metrics.horizontalAdvance(firstLabel + lastLabel) + Gap < below.width();
    if (m_data.values.size() > 1 && isRoom)
        painter.drawText(below, Qt::AlignRight | Qt::TextDontClip, lastLabel);
}

void ChartView::resizeEvent(QResizeEvent* /*event*/)
{
    LayOut();
}

void ChartView::mousePressEvent(QMouseEvent* event)
{
    if (const ChartBar* bar = m_layout.At(event->x() - m_room.left()))
        emit Clicked(bar->first);
}

bool ChartView::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<const QHelpEvent*>(event);
    const ChartBar* bar = m_layout.At(help->x() - m_room.left());
    if (bar)
        QToolTip::showText(help->globalPos(), PlainToolTip(m_data.toolTip(*bar)), this);
    else
        QToolTip::hideText();
    return true;
}
