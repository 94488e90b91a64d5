#pragma once

#include <QString>
#include <QStringList>

class QAction;
class QListWidget;
class QTableWidget;
class QWidget;

/// @return the plugin's window object, which carries its slots; null while there is none.
QWidget* FindMainWindow();

/// @return the main form; null while there is none.
QWidget* FindMainForm();

/// @return the table of that object name in the main form; null while there is none.
QTableWidget* FindTable(const QString& name);

/// @return the table of farm jobs; null while there is none.
QTableWidget* FindJobTable();

/// @return the table of downloads; null while there is none.
QTableWidget* FindDownloadTable();

/// @return the form of the search dialog; null while there is none.
QWidget* FindSearchForm();

/// @return the form of the dialog that names a group; null while there is none.
QWidget* FindGroupForm();

/// @return the group panel's list of statuses; null while there is none.
QListWidget* FindStatusList();

/// @return the group panel's list of groups; null while there is none.
QListWidget* FindGroupList();

/// The entries of the group panel's menu.
struct GroupActions
{
    QAction* add = nullptr;
    QAction* remove = nullptr; ///< deletes the current item of the list of groups
};

/// @return null entries while there is no panel.
GroupActions FindGroupActions();

/// Puts a row's check box back after a double click, whose first press has toggled it.
void UndoPress(const QTableWidget* table, int row);
