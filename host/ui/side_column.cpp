#include "host/ui/side_column.h"

#include <QEvent>
#include <QLabel>
#include <QScrollArea>
#include <QToolBox>
#include <QWidget>

namespace {

constexpr int GroupsHeight = 312; // pixels for both headers and the entries of the first page

} // namespace

SideColumn::SideColumn(QWidget* form)
    : QObject(form)
    , m_column(form->findChild<QWidget*>(QStringLiteral("wgtSide")))
    , m_groups(form->findChild<QWidget*>(QStringLiteral("wgtGroup")))
    , m_project(form->findChild<QLabel*>(QStringLiteral("lblProjectV")))
{
    if (m_project)
        m_project->installEventFilter(this);
    if (!m_column || !m_groups)
        return;
    m_column->setMinimumHeight(m_groups->y() + GroupsHeight);
    m_groups->installEventFilter(this);
}

bool SideColumn::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_groups && event->type() == QEvent::Resize && m_groups->height() < GroupsHeight)
        m_groups->setFixedHeight(GroupsHeight);
    else if (watched == m_groups
        && (event->type() == QEvent::Show || event->type() == QEvent::LanguageChange))
        PreparePanel();
    // The window changes the tool tip with the text.
    if (watched == m_project
        && (event->type() == QEvent::Show || event->type() == QEvent::ToolTipChange
            || event->type() == QEvent::LanguageChange))
        NameProject();
    return false;
}

/// Gives the lists of the group panel, which the window makes, the names of their pages, and keeps the focus from the
/// areas around them, which would not show it.
void SideColumn::PreparePanel() const
{
    const auto* panel = m_groups->findChild<QToolBox*>();
    for (int page = 0; panel && page < panel->count(); ++page)
        panel->widget(page)->setAccessibleName(panel->itemText(page));
    const auto areas = m_groups->findChildren<QScrollArea*>();
    for (QScrollArea* area : areas)
        area->setFocusPolicy(Qt::NoFocus);
}

/// An empty label needs a name; any other is named by its text.
void SideColumn::NameProject() const
{
    m_project->setAccessibleName(m_project->text().isEmpty() ? tr("No project chosen") : QString());
}
