#pragma once

#include "host/rendercore/download/download_task.h"

#include <functional>

/// Callbacks through which the worker reports on tasks, in its own thread.
struct DownloadListener
{
    /// Tasks that the listener does not know yet, in the order of their ids.
    /// @param session as it was passed to DownloadWorker::SetAccess().
    std::function<void(int session, const DownloadTasks& tasks)> added;
    std::function<void(const DownloadChanges& changes)> changed;
    /// Tasks that have left the list without a command that names them.
    std::function<void(const TaskIds& ids)> removed;
    /// Files of a job are complete and in their place, and no further file of the job is on its way.
    /// @param file is the one that arrived last.
    std::function<void(const QString& file, int count)> finished;
    /// A message that the user has to see.
    std::function<void(const QString& text)> notice;
    /// The database was unusable and has been replaced by an empty one. All tasks are gone.
    std::function<void(const QString& keptAs)> replaced;
};
