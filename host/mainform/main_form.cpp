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

QWidget* FindSearchForm()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->findChild<QWidget*>(QStringLiteral("btnSearchJob")))
            return window;
    }
    return nullptr;
}

QStringList CheckedIds(const QTableWidget* table)
{
    QStringList ids;
    for (int row = 0; row < table->rowCount(); ++row) {
        const QTableWidgetItem* item = table->item(row, 0);
        if (item && item->checkState() == Qt::Checked)
            ids.append(item->data(Qt::UserRole).toString());
    }
    return ids;
}

void UndoPress(const QTableWidget* table, int row)
{
    if (QTableWidgetItem* item = table->item(row, 0))
        item->setCheckState(item->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
}
