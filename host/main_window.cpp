#include "main_window.h"

#include <QApplication>
#include <QTableWidget>

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
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        if (auto* table = window->findChild<QTableWidget*>(QStringLiteral("twtMyRender")))
            return table;
    }
    return nullptr;
}
