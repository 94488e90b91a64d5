#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSize>

class QEvent;
class QMouseEvent;
class QWidget;

/// @return the edges that a drag from this point moves; none for a point inside.
Qt::Edges EdgesAt(const QPoint& point, const QSize& window);

/// @return the geometry after dragging some edges by `delta`, not smaller than `minimum`. The other edges stay in place.
QRect DraggedEdges(const QRect& start, Qt::Edges edges, const QPoint& delta, const QSize& minimum);

/// @return the rectangle moved into the bounds; if it is larger than they are, its top left corner is inside.
QRect KeptWithin(QRect rect, const QRect& bounds);

/// Replaces the frame of a form without one: moves it by its title bar, resizes it by its edges, centres dialogs.
///
/// The form owns it. It leaves moving and resizing to the window system where that supports them.
class FramelessWindow : public QObject
{
    Q_OBJECT

public:
    enum Kind { Dialog, Main };

    /// @param kind A dialog keeps its size, unless the screen is too small for it, and is centred over the active
    /// window each time it is shown. A main window can be resized; a double click on its title bar presses its maximise
    /// or restore button.
    FramelessWindow(QWidget* form, Kind kind);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Press(const QMouseEvent* event);
    void Move(const QMouseEvent* event);
    void ToggleMaximized();
    void ShowEdgeCursor(const QPoint& point);
    void CentreForm();

    bool IsResizable() const;

    QWidget* m_form;
    Kind m_kind;

    bool m_dragging = false;
    Qt::Edges m_draggedEdges;
    QPoint m_dragStart; // in global coordinates
    QRect m_startGeometry;
};
