#include "task_wishes.h"

namespace {

bool SetStopped(DownloadTask& task)
{
    const bool applies = task.state == DownloadState::Waiting;
    task.state = DownloadState::Stopped;
    return applies;
}

bool SetResumed(DownloadTask& task)
{
    const bool applies = task.state == DownloadState::Stopped || task.state == DownloadState::Failed;
    task.state = DownloadState::Waiting;
    return applies;
}

bool SetRedone(DownloadTask& task)
{
    task.fresh = task.fresh || task.state == DownloadState::Finished;
    task.state = DownloadState::Waiting;
    task.progress = 0;
    return true;
}

bool SetRepaired(DownloadTask& task)
{
    return task.state == DownloadState::Finished && SetRedone(task);
}

} // namespace

TaskWishes::TaskWishes(DownloadStore& store, const QString& owner)
    : m_store(store)
    , m_owner(owner)
{
}

DownloadTasks TaskWishes::Stop(const TaskIds& ids)
{
    return Change(ids, SetStopped);
}

DownloadTasks TaskWishes::Resume(const TaskIds& ids)
{
    return Change(ids, SetResumed);
}

DownloadTasks TaskWishes::Redownload(const TaskIds& ids)
{
    return Change(ids, SetRedone);
}

DownloadTasks TaskWishes::Repair(const TaskIds& ids)
{
    return Change(ids, SetRepaired);
}

DownloadTasks TaskWishes::Remove(const TaskIds& ids)
{
    DownloadTasks removed;
    TaskIds owned;
    for (const qint64 id : ids) {
        if (const auto task = m_store.Find(m_owner, id)) {
            removed.append(*task);
            owned.append(id);
        }
    }
    m_store.Remove(owned);
    return removed;
}

DownloadTasks TaskWishes::Change(const TaskIds& ids, Verdict verdict)
{
    DownloadTasks changed;
    for (const qint64 id : ids) {
        auto task = m_store.Find(m_owner, id);
        if (!task || !verdict(*task))
            continue;
        task->message.clear();
        changed.append(*task);
    }
    m_store.Save(changed);
    return changed;
}
