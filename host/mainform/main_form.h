#pragma once

#include <QString>

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
