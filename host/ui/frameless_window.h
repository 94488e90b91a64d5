#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSize>

class QEvent;
class QMouseEvent;
class QWidget;

/// The edges of a window of that size which a point near its border lies on.
Qt::Edges EdgesAt(const QPoint& point, const QSize& window);

/// @return the geometry of a window after dragging some of its edges by `delta`; not smaller than `minimum`, and the
/// edges that are not dragged stay where they are.
QRect DraggedEdges(const QRect& start, Qt::Edges edges, const QPoint& delta, const QSize& minimum);

/// What the frame would do for a form without one: moved by its title bar, resized by its edges, placed when shown.
///
/// A child of the form. The window system's own move and resize are used where it offers them.
class FramelessWindow : public QObject
{
    Q_OBJECT

public:
    enum Kind { Dialog, Main };

    /// @param kind a dialog is centred over the active window each time it is shown and keeps its size; a main window is
    /// placed once, can be resized, and a double click on its title bar presses its maximise or restore button.
    FramelessWindow(QWidget* form, Kind kind);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Press(const QMouseEvent* event);
    void Move(const QMouseEvent* event);
    void ToggleMaximized();
    void ShowEdgeCursor(const QPoint& point);
    void PlaceForm();

    bool IsResizable() const;

    QWidget* m_form;
    Kind m_kind;
    bool m_placed = false;

    bool m_dragging = false;
    Qt::Edges m_draggedEdges;
    QPoint m_dragStart; ///< global
    QRect m_startGeometry;
};
