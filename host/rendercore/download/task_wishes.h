#pragma once

#include "download_store.h"

/// What the user may want of tasks. Each wish changes the tasks that it applies to, on the disk, too, and returns them;
/// the others, and ids that are none of the owner's tasks, are left out.
class TaskWishes
{
public:
    /// @param store must outlive this object.
    TaskWishes(DownloadStore& store, const QString& owner);

    DownloadTasks Stop(const TaskIds& ids);
    DownloadTasks Resume(const TaskIds& ids);
    DownloadTasks Redownload(const TaskIds& ids);
    /// Of finished ones whose files turned out to be lost or damaged.
    DownloadTasks Repair(const TaskIds& ids);
    DownloadTasks Remove(const TaskIds& ids);

private:
    using Verdict = bool (*)(DownloadTask& task);

    DownloadTasks Change(const TaskIds& ids, Verdict verdict);

    DownloadStore& m_store;
    QString m_owner;
};
