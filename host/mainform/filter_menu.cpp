#include "host/mainform/filter_menu.h"

#include "host/mainform/main_form.h"

#include <QListWidget>
#include <QMenu>
#include <QToolBox>

namespace {

/// Escapes ampersands, which would mark a shortcut key in the text of an entry.
QString PlainEntry(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// Acts like a click on the item with this text, unless the list no longer has it.
void Choose(QListWidget* list, const QString& text)
{
    QListWidgetItem* item = list->findItems(text, Qt::MatchFixedString | Qt::MatchCaseSensitive).value(0);
    if (!item)
        return;
    for (QWidget* parent = list->parentWidget(); parent; parent = parent->parentWidget()) {
        if (auto* panel = qobject_cast<QToolBox*>(parent))
            panel->setCurrentWidget(list);
    }
    list->setCurrentItem(item);
    emit list->itemClicked(item);
}

} // namespace

void FilterMenu::BeginSession()
{
    const QWidget* form = FindMainForm();
    auto* button = form ? form->findChild<QPushButton*>(QStringLiteral("btnGroups")) : nullptr;
    if (!button || button == m_button)
        return;
    m_button = button;
    m_menu = new QMenu(button);
    button->setMenu(m_menu);
    connect(m_menu, &QMenu::aboutToShow, this, &FilterMenu::Fill);
}

void FilterMenu::Fill()
{
    m_menu->clear();
    AddChoices(FindStatusList());
    m_menu->addSeparator();
    QListWidget* groups = FindGroupList();
    AddChoices(groups);
    m_menu->addSeparator();
    const GroupActions actions = FindGroupActions();
    if (actions.add)
        connect(m_menu->addAction(tr("Add a group…")), &QAction::triggered, actions.add, &QAction::trigger);
    if (actions.remove && groups && groups->currentItem())
        connect(m_menu->addAction(tr("Delete the group %1").arg(PlainEntry(groups->currentItem()->text()))),
            &QAction::triggered, actions.remove, &QAction::trigger);
}

void FilterMenu::AddChoices(QListWidget* list)
{
    for (int row = 0; list && row < list->count(); ++row) {
        const QString text = list->item(row)->text();
        connect(m_menu->addAction(PlainEntry(text)), &QAction::triggered, list,
            [list, text] { Choose(list, text); });
    }
}
