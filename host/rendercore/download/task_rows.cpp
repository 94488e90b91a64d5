#include "host/rendercore/download/task_rows.h"

namespace TaskRows {

const char* const SelectClause
    = "SELECT id, job, name, file, size, checksum, state, progress, fresh, message FROM tasks ";

DownloadTasks ReadAll(SQLite::Statement& rows)
{
    DownloadTasks tasks;
    while (rows.executeStep()) {
        DownloadTask task;
        task.id = rows.getColumn(0).getInt64();
        task.job = storage::Text(rows.getColumn(1));
        if (!tasks.isEmpty() && tasks.constLast().job == task.job)
            task.job = tasks.constLast().job;
        task.name = storage::Text(rows.getColumn(2));
        task.file = storage::Text(rows.getColumn(3));
        task.size = rows.getColumn(4).getInt64();
        task.checksum = storage::Text(rows.getColumn(5));
        task.state = static_cast<DownloadState>(rows.getColumn(6).getInt());
        task.progress = rows.getColumn(7).getInt();
        task.fresh = rows.getColumn(8).getInt() != 0;
        task.message = TaskMessage::FromStored(storage::Text(rows.getColumn(9)));
        tasks.append(task);
    }
    return tasks;
}

} // namespace TaskRows
