#include "host/ui/elided_label.h"

#include <QEvent>
#include <QLabel>
#include <QStylePainter>

ElidedLabel::ElidedLabel(QLabel* label)
    : QObject(label)
    , m_label(label)
{
    label->installEventFilter(this);
}

bool ElidedLabel::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_label || event->type() != QEvent::Paint)
        return false;
    const QRect room = m_label->contentsRect();
    const QString text = m_label->fontMetrics().elidedText(m_label->text(), Qt::ElideRight, room.width());
    QStylePainter(m_label).drawItemText(room, int(m_label->alignment()), m_label->palette(),
        m_label->isEnabled(), text, QPalette::WindowText);
    return true;
}
