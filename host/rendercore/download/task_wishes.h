#pragma once

#include "host/rendercore/download/download_task.h"

/// What people may want of a task. Each wish changes a task that it applies to, and tells whether it does.
namespace TaskWishes {

bool Stop(DownloadTask& task);
bool Resume(DownloadTask& task);
bool Redownload(DownloadTask& task);
/// Of a finished one whose file turned out to be lost or damaged.
bool Repair(DownloadTask& task);

} // namespace TaskWishes
