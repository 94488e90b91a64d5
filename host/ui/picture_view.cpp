#include "host/ui/picture_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int SettleTime = 150; // ms
constexpr double Step = 1.25;
constexpr double LeastZoom = 1.0 / 64;
constexpr double MostZoom = 32;
constexpr double ShowsPixels = 2; // from this zoom on, pixels are drawn with sharp edges
constexpr int Margin = 24;        // pixels of margin around a text

} // namespace

PictureView::PictureView(QWidget* parent)
    : QAbstractScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    m_settled.setSingleShot(true);
    m_settled.setInterval(SettleTime);
    connect(&m_settled, &QTimer::timeout, this, &PictureView::ScaleSmoothly);
    m_scaler.setMaxThreadCount(1);
    connect(this, &PictureView::Scaled, this, &PictureView::HandleScaled, Qt::QueuedConnection);
}

PictureView::~PictureView()
{
    // Drops the copies that have not begun, so that the destructor waits only for the running one.
    m_scaler.clear();
}

void PictureView::SetPicture(const QImage& picture)
{
    m_picture = picture;
    m_picture.setDevicePixelRatio(1);
    m_text.clear();
    m_scaled = {};
    UpdateScrollBars();
}

void PictureView::SetText(const QString& text)
{
    SetPicture({});
    m_text = text;
    viewport()->update();
}

void PictureView::Fit()
{
    m_isFitted = true;
    UpdateScrollBars();
    emit ZoomChanged();
}

void PictureView::ZoomBy(int steps)
{
    SetZoom(Zoom() * std::pow(Step, steps));
}

double PictureView::Zoom() const
{
    if (!m_isFitted || m_picture.isNull())
        return m_zoom;
    const QSizeF room = QSizeF(viewport()->size()) * devicePixelRatioF();
    return std::min(room.width() / m_picture.width(), room.height() / m_picture.height());
}

/// The part of the picture under `point` stays in place.
void PictureView::ZoomAt(double zoom, const QPoint& point)
{
    if (m_picture.isNull())
        return;
    const QRectF before = Place();
    const double x = (point.x() - before.x()) / before.width();
    const double y = (point.y() - before.y()) / before.height();
    m_zoom = std::clamp(zoom, LeastZoom, MostZoom);
    m_isFitted = false;
    UpdateScrollBars();
    const QSizeF shown = ShownSize();
    horizontalScrollBar()->setValue(int(std::lround(x * shown.width() - point.x())));
    verticalScrollBar()->setValue(int(std::lround(y * shown.height() - point.y())));
    emit ZoomChanged();
}

QSizeF PictureView::ShownSize() const
{
    return QSizeF(m_picture.size()) * Zoom() / devicePixelRatioF();
}

/// @return the place of the picture in the view; centred when there is room.
QRectF PictureView::Place() const
{
    const QSizeF shown = ShownSize();
    const QSizeF room = viewport()->size();
    const double x
        = shown.width() < room.width() ? (room.width() - shown.width()) / 2 : -horizontalScrollBar()->value();
    const double y = shown.height() < room.height() ? (room.height() - shown.height()) / 2
                                                    : -verticalScrollBar()->value();
    return {QPointF(x, y), shown};
}

void PictureView::UpdateScrollBars()
{
    const auto policy = m_isFitted ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded;
    setHorizontalScrollBarPolicy(policy);
    setVerticalScrollBarPolicy(policy);
    const QSize shown = m_isFitted ? QSize() : ShownSize().toSize();
    const QSize room = viewport()->size();
    horizontalScrollBar()->setPageStep(room.width());
    horizontalScrollBar()->setRange(0, std::max(0, shown.width() - room.width()));
    verticalScrollBar()->setPageStep(room.height());
    verticalScrollBar()->setRange(0, std::max(0, shown.height() - room.height()));
    m_settled.start();
    viewport()->update();
}

/// A copy scaled in advance to the size that is shown looks better than scaling while painting, but takes longer, so it
/// is made in another thread.
void PictureView::ScaleSmoothly()
{
    const QSize wanted = (ShownSize() * devicePixelRatioF()).toSize();
    if (m_picture.isNull() || Zoom() >= 1 || wanted.isEmpty() || m_scaled.size() == wanted)
        return;
    m_scaler.clear();
    m_scaler.start([this, picture = m_picture, wanted] {
        emit Scaled(
            picture.cacheKey(), picture.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    });
}

void PictureView::HandleScaled(qint64 key, const QImage& scaled)
{
    if (key != m_picture.cacheKey())
        return;
    m_scaled = scaled;
    viewport()->update();
}

void PictureView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(viewport());
    if (m_picture.isNull())
        painter.drawText(viewport()->rect().adjusted(Margin, Margin, -Margin, -Margin),
            Qt::AlignCenter | Qt::TextWordWrap, m_text);
    else
        DrawPicture(painter);
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(viewport()->rect().adjusted(0, 0, -1, -1));
    }
}

void PictureView::DrawPicture(QPainter& painter) const
{
    // Only the part in view is scaled, whatever the zoom.
    const QRectF place = Place();
    const QRectF shown = place.intersected(viewport()->rect());
    const bool isReady = m_scaled.size() == (place.size() * devicePixelRatioF()).toSize();
    const QImage& picture = isReady ? m_scaled : m_picture;
    const double x = picture.width() / place.width();
    const double y = picture.height() / place.height();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !isReady && Zoom() < ShowsPixels);
    painter.drawImage(shown, picture,
        QRectF(
            (shown.x() - place.x()) * x, (shown.y() - place.y()) * y, shown.width() * x, shown.height() * y));
}

void PictureView::resizeEvent(QResizeEvent* /*event*/)
{
    UpdateScrollBars();
    emit ZoomChanged();
}

void PictureView::wheelEvent(QWheelEvent* event)
{
    const double steps = double(event->angleDelta().y()) / QWheelEvent::DefaultDeltasPerStep;
    ZoomAt(Zoom() * std::pow(Step, steps), event->position().toPoint());
    event->accept();
}

void PictureView::mousePressEvent(QMouseEvent* event)
{
    m_dragged = event->pos();
}

void PictureView::mouseMoveEvent(QMouseEvent* event)
{
    if (!event->buttons().testFlag(Qt::LeftButton))
        return;
    const QPoint distance = event->pos() - m_dragged;
    m_dragged = event->pos();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - distance.x());
    verticalScrollBar()->setValue(verticalScrollBar()->value() - distance.y());
}
