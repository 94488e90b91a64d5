#pragma once

#include "host/rendercore/download/download_task.h"

/// The user's commands on one task. Each changes the task and returns true, or returns false where it does not apply.
namespace TaskCommands {

bool Stop(DownloadTask& task);
bool Resume(DownloadTask& task);
bool Redownload(DownloadTask& task);
/// Applies to a finished task whose file turns out to be lost or changed. What is there now stays: it may be somebody's
/// work, or come back with its disk.
bool Repair(DownloadTask& task);

} // namespace TaskCommands
