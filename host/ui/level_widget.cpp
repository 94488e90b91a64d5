#include "host/ui/level_widget.h"

#include <QEvent>
#include <QWidget>

LevelWidget::LevelWidget(QWidget* widget, QWidget* leader)
    : QObject(widget)
    , m_widget(widget)
    , m_leader(leader)
{
    leader->installEventFilter(this);
}

bool LevelWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_leader && event->type() == QEvent::Move)
        m_widget->move(m_widget->x(), m_leader->y());
    return false;
}
