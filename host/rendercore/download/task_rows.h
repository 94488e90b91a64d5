#pragma once

#include "host/rendercore/download/download_task.h"
#include "storage/database.h"

#include <string>

/// Reads tasks from rows of the table `tasks`.
namespace TaskRows {

/// Reads the rows of a statement that begins with SelectClause. Tasks of one job that follow each other share its id's text.
DownloadTasks ReadAll(SQLite::Statement& rows);

extern const char* const SelectClause;

/// @param condition is the part of the query after "FROM tasks".
template <typename... Values>
DownloadTasks Select(SQLite::Database& connection, const char* condition, const Values&... values)
{
    SQLite::Statement rows(connection, std::string(SelectClause) + condition);
    storage::Bind(rows, values...);
    return ReadAll(rows);
}

} // namespace TaskRows
