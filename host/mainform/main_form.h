#pragma once

#include <QString>

class QTableWidget;
class QWidget;

/// The window object of the plugin, which carries its slots; null while there is none.
QWidget* FindMainWindow();

/// A table of the main form; null while there is none.
QTableWidget* FindTable(const QString& name);

/// The table of farm jobs in the main form; null while there is none.
QTableWidget* FindJobTable();

/// The table of downloads in the main form; null while there is none.
QTableWidget* FindDownloadTable();
