#pragma once

#include "host/rendercore/download/download_task.h"

/// The user's commands on one task. Each changes the task and returns true, or returns false where it does not apply.
namespace TaskCommands {

bool Stop(DownloadTask& task);
bool Resume(DownloadTask& task);
bool Redownload(DownloadTask& task);
/// Applies to a finished task whose file turns out to be lost or damaged.
bool Repair(DownloadTask& task);

} // namespace TaskCommands
