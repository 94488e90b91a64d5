#include "host/ui/frameless_window.h"

#include "host/ui/screen_fit.h"

#include <QApplication>
#include <QDialog>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace {

constexpr int EdgeWidth = 5;
constexpr int CornerLength = 16;
constexpr int TitleHeight = 44;

QCursor CursorFor(Qt::Edges edges)
{
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge))
        return Qt::SizeFDiagCursor;
    if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge))
        return Qt::SizeBDiagCursor;
    return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

} // namespace

Qt::Edges EdgesAt(const QPoint& point, const QSize& window)
{
    const QRect inner = QRect(QPoint(), window).adjusted(EdgeWidth, EdgeWidth, -EdgeWidth, -EdgeWidth);
    if (inner.contains(point))
        return {};
    // Near a corner both edges count, so that corners are large enough to hit.
    Qt::Edges edges;
    edges.setFlag(Qt::LeftEdge, point.x() < CornerLength);
    edges.setFlag(Qt::RightEdge, point.x() >= window.width() - CornerLength);
    edges.setFlag(Qt::TopEdge, point.y() < CornerLength);
    edges.setFlag(Qt::BottomEdge, point.y() >= window.height() - CornerLength);
    return edges;
}

QRect KeptWithin(QRect rect, const QRect& bounds)
{
    rect.moveRight(qMin(rect.right(), bounds.right()));
    rect.moveBottom(qMin(rect.bottom(), bounds.bottom()));
    rect.moveLeft(qMax(rect.left(), bounds.left()));
    rect.moveTop(qMax(rect.top(), bounds.top()));
    return rect;
}

QRect DraggedEdges(const QRect& start, Qt::Edges edges, const QPoint& delta, const QSize& minimum)
{
    QRect rect = start;
    if (edges & Qt::LeftEdge)
        rect.setLeft(qMin(start.left() + delta.x(), start.right() + 1 - minimum.width()));
    if (edges & Qt::RightEdge)
        rect.setWidth(qMax(start.width() + delta.x(), minimum.width()));
    if (edges & Qt::TopEdge)
        rect.setTop(qMin(start.top() + delta.y(), start.bottom() + 1 - minimum.height()));
    if (edges & Qt::BottomEdge)
        rect.setHeight(qMax(start.height() + delta.y(), minimum.height()));
    return rect;
}

FramelessWindow::FramelessWindow(QWidget* form, Kind kind)
    : QObject(form)
    , m_form(form)
    , m_kind(kind)
{
    form->setAttribute(Qt::WA_Hover, kind == Main);
    form->installEventFilter(this);
}

bool FramelessWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_form)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        Press(static_cast<QMouseEvent*>(event));
        break;
    case QEvent::MouseMove:
        Move(static_cast<QMouseEvent*>(event));
        break;
    case QEvent::MouseButtonRelease:
        m_dragging = false;
        break;
    case QEvent::MouseButtonDblClick:
        if (static_cast<QMouseEvent*>(event)->pos().y() < TitleHeight)
            ToggleMaximized();
        break;
    case QEvent::HoverMove:
        ShowEdgeCursor(static_cast<QHoverEvent*>(event)->pos());
        break;
    case QEvent::Show:
        if (m_kind == Dialog)
            CentreForm();
        break;
    case QEvent::Hide:
        // A dialog that is opened again starts in its first field, not where the user left it.
        if (qobject_cast<QDialog*>(m_form) && m_form->focusWidget())
            m_form->focusWidget()->clearFocus();
        break;
    default:
        break;
    }
    return false;
}

void FramelessWindow::Press(const QMouseEvent* event)
{
    m_dragging = false;
    if (event->button() != Qt::LeftButton || m_form->isMaximized())
        return;
    m_draggedEdges = IsResizable() ? EdgesAt(event->pos(), m_form->size()) : Qt::Edges();
    m_dragging = m_draggedEdges || event->pos().y() < TitleHeight;
    m_dragStart = event->globalPos();
    m_startGeometry = m_form->geometry();
}

void FramelessWindow::Move(const QMouseEvent* event)
{
    const QPoint delta = event->globalPos() - m_dragStart;
    if (!m_dragging || !(event->buttons() & Qt::LeftButton)
        || (m_form->geometry() == m_startGeometry
            && delta.manhattanLength() < QApplication::startDragDistance()))
        return;
    QWindow* window = m_form->windowHandle();
    const bool takenOver
        = window && (m_draggedEdges ? window->startSystemResize(m_draggedEdges) : window->startSystemMove());
    if (takenOver)
        m_dragging = false;
    else if (m_draggedEdges)
        m_form->setGeometry(DraggedEdges(m_startGeometry, m_draggedEdges, delta, m_form->minimumSize()));
    else
        m_form->move(m_startGeometry.topLeft() + delta);
}

void FramelessWindow::ToggleMaximized()
{
    m_dragging = false;
    for (const QLatin1String name : {QLatin1String("btnSystemMaxnormal"), QLatin1String("btnSystemMaxmax")}) {
        auto* button = m_form->findChild<QPushButton*>(name);
        if (button && button->isVisible()) {
            button->click();
            return;
        }
    }
}

void FramelessWindow::ShowEdgeCursor(const QPoint& point)
{
    const Qt::Edges edges = IsResizable() ? EdgesAt(point, m_form->size()) : Qt::Edges();
    if (edges)
        m_form->setCursor(CursorFor(edges));
    else
        m_form->unsetCursor();
}

void FramelessWindow::CentreForm()
{
    const QWidget* active = QApplication::activeWindow();
    const QWidget* over = active && active != m_form ? active : nullptr;
    const QRect screen = (over ? over : m_form)->screen()->availableGeometry();
    FitScreen(m_form, screen.size());
    QRect place = m_form->geometry();
    place.moveCenter(over ? over->geometry().center() : screen.center());
    m_form->move(KeptWithin(place, screen).topLeft());
}

bool FramelessWindow::IsResizable() const
{
    return m_kind == Main && !m_form->isMaximized();
}
