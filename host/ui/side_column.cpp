#include "host/ui/side_column.h"

#include <QEvent>
#include <QWidget>

namespace {

constexpr int GroupsHeight = 312; // pixels: both headers and the entries of the first page

} // namespace

SideColumn::SideColumn(QWidget* form)
    : QObject(form)
    , m_column(form->findChild<QWidget*>(QStringLiteral("wgtSide")))
    , m_groups(form->findChild<QWidget*>(QStringLiteral("wgtGroup")))
{
    if (!m_column || !m_groups)
        return;
    m_column->setMinimumHeight(m_groups->y() + GroupsHeight);
    m_groups->installEventFilter(this);
}

bool SideColumn::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_groups && event->type() == QEvent::Resize && m_groups->height() < GroupsHeight)
        m_groups->setFixedHeight(GroupsHeight);
    return false;
}
