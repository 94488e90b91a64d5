#pragma once

#include "host/rendercore/download/download_task.h"
#include "storage/database.h"

#include <QSet>

/// Remembers the files of each job whose tasks have left the list, so that an automatic order does not bring them back. All
/// functions run within a transaction of the caller's.
namespace RemovedFiles {

/// The script that creates the table.
extern const char* const Schema;

/// @return the names of the files.
QSet<QString> Of(SQLite::Database& connection, const QString& owner, const QString& job);
void Add(SQLite::Database& connection, const QString& owner, const DownloadTasks& tasks);
void Forget(SQLite::Database& connection, const QString& owner, const QString& job);

} // namespace RemovedFiles
