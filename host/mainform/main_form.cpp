#include "host/mainform/main_form.h"

#include "common/vtr_columns.h"

#include <QApplication>
#include <QListWidget>
#include <QMenu>
#include <QTableWidget>
#include <QToolBox>

namespace {

QWidget* FindWindowWith(const char* name)
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->findChild<QWidget*>(QLatin1String(name)))
            return window;
    }
    return nullptr;
}

QListWidget* FindPanelPage(int page)
{
    const QWidget* form = FindMainForm();
    const auto* panel = form ? form->findChild<QToolBox*>() : nullptr;
    return panel ? qobject_cast<QListWidget*>(panel->widget(page)) : nullptr;
}

} // namespace

QTableWidget* FindTable(const QString& name)
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        if (auto* table = window->findChild<QTableWidget*>(name))
            return table;
    }
    return nullptr;
}

QWidget* FindMainWindow()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->inherits("VTQsClientPrivate"))
            return window;
    }
    return nullptr;
}

QTableWidget* FindJobTable()
{
    return FindTable(QStringLiteral("twtMyRender"));
}

QTableWidget* FindDownloadTable()
{
    return FindTable(QStringLiteral("twtDownload"));
}

QWidget* FindMainForm()
{
    const QTableWidget* table = FindJobTable();
    return table ? table->window() : nullptr;
}

QWidget* FindSearchForm()
{
    return FindWindowWith("btnSearchJob");
}

QWidget* FindGroupForm()
{
    return FindWindowWith("lneInput");
}

QListWidget* FindStatusList()
{
    return FindPanelPage(0);
}

QListWidget* FindGroupList()
{
    return FindPanelPage(1);
}

GroupActions FindGroupActions()
{
    const QWidget* form = FindMainForm();
    const auto menus
        = form ? form->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly) : QList<QMenu*>();
    for (const QMenu* menu : menus) {
        const QList<QAction*> actions = menu->actions();
        if (actions.size() == 2 && actions[0]->parent() && actions[0]->parent()->inherits("VTGroup"))
            return {actions[0], actions[1]};
    }
    return {};
}

void UndoPress(const QTableWidget* table, int row)
{
    if (QTableWidgetItem* item = table->item(row, VTIdColumn))
        item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
}
