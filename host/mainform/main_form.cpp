#include "host/mainform/main_form.h"

#include <QApplication>
#include <QTableWidget>

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
