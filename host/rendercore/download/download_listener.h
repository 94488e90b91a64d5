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
    /// A file is complete and in its place. Called once for each file.
    std::function<void(const QString& file)> finished;
};
