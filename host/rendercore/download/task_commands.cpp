#include "host/rendercore/download/task_commands.h"

namespace TaskCommands {

bool Stop(DownloadTask& task)
{
    if (task.state != DownloadState::Waiting)
        return false;
    task.state = DownloadState::Stopped;
    task.message = {};
    return true;
}

bool Resume(DownloadTask& task)
{
    if (task.state != DownloadState::Stopped && task.state != DownloadState::Failed)
        return false;
    task.state = DownloadState::Waiting;
    task.message = {};
    return true;
}

bool Redownload(DownloadTask& task)
{
    task.fresh = task.fresh || task.state == DownloadState::Finished;
    task.state = DownloadState::Waiting;
    task.progress = 0;
    task.message = {};
    return true;
}

bool Repair(DownloadTask& task)
{
    if (task.state != DownloadState::Finished || !Redownload(task))
        return false;
    task.fresh = false;
    return true;
}

} // namespace TaskCommands
