// What the worker makes of the wishes of people.

#include "host/rendercore/download/attempt.h"
#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/download_worker.h"
#include "host/rendercore/download/file_checks.h"
#include "host/rendercore/download/file_download.h"
#include "host/rendercore/download/task_wishes.h"

#include <QFile>

/// How far they have come is shown while they are stopped, too.
void DownloadWorker::Stopped(const TaskIds& ids)
{
    const auto takeProgress = [this](DownloadTask& task) {
        const auto transfer = m_active.find(task.id);
        if (transfer == m_active.end() || task.state != DownloadState::Stopped)
            return false;
        task.progress = transfer->second->Progress();
        return true;
    };
    Attempt("note progress", [&] { m_store->Change(m_access.owner, ids, takeProgress); });
    for (const qint64 id : ids)
        Abort(id);
    ReportCurrent(ids);
}

void DownloadWorker::Resumed(const TaskIds& ids)
{
    for (const DownloadTask& task : ReportCurrent(ids))
        m_schedule.Hurry(task.id);
}

void DownloadWorker::Reset(const TaskIds& ids)
{
    StartOver(ReportCurrent(ids));
}

void DownloadWorker::Repair(qint64 id)
{
    if (Attempt("repair a file", [&] { m_store->Change(m_access.owner, {id}, TaskWishes::Repair); }))
        Reset({id});
}

void DownloadWorker::Removed(const DownloadTasks& tasks)
{
    for (const DownloadTask& task : tasks) {
        Abort(task.id);
        QFile::remove(DownloadPaths::PartFile(task.file));
    }
    m_wake.start(0);
}

/// Returns what the tasks are by now, too: they may have been changed once more since this was asked for.
DownloadTasks DownloadWorker::ReportCurrent(const TaskIds& ids)
{
    DownloadTasks tasks;
    Attempt("read tasks", [&] {
        for (const qint64 id : ids) {
            if (const auto task = m_store->Find(m_access.owner, id))
                tasks.append(*task);
        }
    });
    Report(tasks);
    m_wake.start(0);
    return tasks;
}

void DownloadWorker::StartOver(const DownloadTasks& tasks)
{
    for (const DownloadTask& task : tasks) {
        Abort(task.id);
        QFile::remove(DownloadPaths::PartFile(task.file));
        m_schedule.Hurry(task.id);
    }
}
