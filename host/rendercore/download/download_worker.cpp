#include "host/rendercore/download/download_worker.h"

#include "host/rendercore/attempt.h"
#include "host/rendercore/download/task_commands.h"

#include <utility>

DownloadWorker::DownloadWorker(
    std::unique_ptr<DownloadStore> store, const DownloadListener& listener, const DownloadLimits& limits)
    : m_store(std::move(store))
    , m_listener(listener)
    , m_transport(limits.http)
    , m_loader(m_store.get(), limits.longestPause)
    , m_desk(m_store.get(), &m_transport, limits)
    , m_pool(m_store.get(), &m_transport, &m_listener, limits)
{
    QObject::connect(&m_loader, &TaskLoader::Loaded, &m_loader,
        [this](const DownloadTasks& tasks) { m_listener.added(m_session, tasks); });
    QObject::connect(&m_loader, &TaskLoader::Done, &m_pool, &TransferPool::Start);
    QObject::connect(&m_desk, &OrderDesk::Applied, &m_desk,
        [this](const DownloadOrder& order, const OrderOutcome& outcome) { HandleApplied(order, outcome); });
    QObject::connect(&m_desk, &OrderDesk::Refused, &m_pool,
        [this](const DownloadOrder& order) { m_pool.HandleList(order.job, {}); });
    QObject::connect(&m_desk, &OrderDesk::SignedOut, &m_pool, &TransferPool::Stop);
    QObject::connect(&m_pool, &TransferPool::ListOutdated, &m_desk, &OrderDesk::RetryNow);
    QObject::connect(&m_checks, &FileChecks::Damaged, &m_checks, [this](qint64 id) { Repair(id); });
}

void DownloadWorker::SetAccess(const FarmAccess& access, int session)
{
    const bool isSameServer = m_access.apiRoot == access.apiRoot && m_access.token == access.token;
    const bool isSameOwner = m_session == session;
    m_access = access;
    m_session = session;
    if (isSameServer && isSameOwner) {
        m_desk.SetFolder(access.folder);
        return;
    }
    m_pool.Reset(access);
    m_transport.SetBaseUrl(access.apiRoot);
    m_desk.SetAccess(access);
    if (!isSameOwner) {
        m_checks.Clear();
        m_loader.Start(access.owner);
    }
    // Transfers begin once the listener knows all tasks.
    if (!m_loader.IsLoading())
        m_pool.Start();
}

/// The progress is saved, so that a stopped task shows how far it has come.
void DownloadWorker::HandleStopped(const TaskIds& ids)
{
    const auto setProgress = [this](DownloadTask& task) {
        const auto progress = m_pool.Progress(task.id);
        if (!progress || task.state != DownloadState::Stopped)
            return false;
        task.progress = *progress;
        return true;
    };
    Attempt("save the progress of downloads", [&] { m_store->Change(m_access.owner, ids, setProgress); });
    for (const qint64 id : ids)
        m_pool.Abort(id);
    ReportCurrent(ids);
}

void DownloadWorker::HandleResumed(const TaskIds& ids)
{
    m_pool.RetryNow(ReportCurrent(ids));
}

void DownloadWorker::HandleReset(const TaskIds& ids)
{
    m_pool.StartOver(ReportCurrent(ids));
}

void DownloadWorker::HandleRemoved(const DownloadTasks& tasks)
{
    m_pool.Discard(tasks);
}

void DownloadWorker::Repair(qint64 id)
{
    if (Attempt("repair a download", [&] { m_store->Change(m_access.owner, {id}, TaskCommands::Repair); }))
        HandleReset({id});
}

void DownloadWorker::HandleApplied(const DownloadOrder& order, const OrderOutcome& outcome)
{
    m_pool.StartOver(outcome.renewed);
    m_pool.RetryNow(outcome.resumed);
    Report(outcome.renewed);
    Report(outcome.resumed);
    m_checks.Add(outcome.doubtful);
    if (!outcome.added.isEmpty())
        m_listener.added(m_session, outcome.added);
    m_pool.HandleList(order.job, outcome.names);
}

/// Returns the tasks as they are on the disk, since a later command may have changed them once more.
DownloadTasks DownloadWorker::ReportCurrent(const TaskIds& ids)
{
    DownloadTasks tasks;
    Attempt("read downloads", [&] {
        for (const qint64 id : ids) {
            if (const auto task = m_store->Find(m_access.owner, id))
                tasks.append(*task);
        }
    });
    Report(tasks);
    return tasks;
}

void DownloadWorker::Report(const DownloadTasks& tasks) const
{
    DownloadChanges changes;
    changes.reserve(tasks.size());
    for (const DownloadTask& task : tasks)
        changes.append(ChangeOf(task));
    if (!changes.isEmpty())
        m_listener.changed(changes);
}
