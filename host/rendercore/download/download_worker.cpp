#include "host/rendercore/download/download_worker.h"

#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/task_commands.h"

#include <QCoreApplication>

namespace {

constexpr int BatchSize = 500;

} // namespace

DownloadWorker::DownloadWorker(
    const QString& file, const DownloadListener& listener, const DownloadLimits& limits)
    : m_store(file,
        [this](const QString& keptAs) {
            m_pool.BeginAnew();
            m_listener.replaced(keptAs);
        })
    , m_listener(listener)
    , m_transport(limits.http)
    , m_loader(&m_store, limits.longestPause)
    , m_desk(&m_store, &m_transport, limits)
    , m_pool(&m_store, &m_transport, &m_listener, limits)
    , m_jobs(&m_store, listener.finished)
    , m_cleanup(&m_store, limits.longestPause)
    , m_commands(Backoff(limits.firstPause, limits.longestPause))
{
    QObject::connect(&m_loader, &TaskLoader::Loaded, &m_loader,
        [this](const DownloadTasks& tasks) { m_listener.added(m_session, tasks); });
    QObject::connect(&m_loader, &TaskLoader::Done, &m_pool, &TransferPool::Start);
    QObject::connect(&m_desk, &OrderDesk::Applied, &m_desk,
        [this](const DownloadOrder& order, const OrderOutcome& outcome) { HandleApplied(order, outcome); });
    QObject::connect(&m_desk, &OrderDesk::Refused, &m_pool,
        [this](const DownloadOrder& order, const QString& reason) { HandleRefused(order, reason); });
    QObject::connect(&m_desk, &OrderDesk::SignedOut, &m_pool, &TransferPool::Stop);
    QObject::connect(&m_pool, &TransferPool::ListOutdated, &m_desk, &OrderDesk::RetryNow);
    QObject::connect(&m_pool, &TransferPool::Settled, &m_pool, [this](const DownloadTask& task) {
        if (task.state == DownloadState::Finished)
            m_jobs.Count(task);
        m_jobs.ReportSettled({task});
    });
    QObject::connect(&m_checks, &FileChecks::Damaged, &m_checks, [this](qint64 id) {
        Change({id}, TaskCommands::Repair, [this](const DownloadTasks& tasks) { m_pool.StartOver(tasks); });
    });
    QObject::connect(&m_cleanup, &FinishedCleanup::Removed, &m_cleanup, m_listener.removed);
    QObject::connect(&m_commands, &CommandRunner::Delayed, &m_commands, [this](const QString& reason) {
        m_listener.notice(QCoreApplication::translate(
            "DownloadWorker", "A change to the downloads could not be recorded: %1. The client keeps trying.")
                              .arg(reason));
    });
}

void DownloadWorker::SetAccess(const FarmAccess& access, int session)
{
    const bool isSameServer = m_access.apiRoot == access.apiRoot && m_access.token == access.token;
    const bool isSameOwner = m_session == session;
    const bool isSameFolder = isSameOwner && m_access.folder == access.folder;
    m_access = access;
    m_session = session;
    m_transport.SetProxyLogin(access.proxy);
    m_transport.SetFeed(access.feed);
    m_desk.SetFolder(access.folder);
    if (!isSameServer || !isSameOwner) {
        m_pool.Reset(access);
        m_transport.SetBaseUrl(access.apiRoot);
        m_desk.SetAccess(access);
    }
    if (!isSameFolder)
        FollowFolder();
    if (!isSameOwner) {
        m_checks.Clear();
        m_jobs.SetOwner(access.owner);
        m_cleanup.SetOwner(access.owner);
        m_loader.Start(access.owner);
    }
    // Transfers begin once the listener knows all tasks.
    if ((!isSameServer || !isSameOwner) && !m_loader.IsLoading())
        m_pool.Start();
}

/// Moves the owner's unfinished tasks to the folder that is set now.
void DownloadWorker::FollowFolder()
{
    if (m_access.owner.isEmpty())
        return;
    m_commands.Run([this, owner = m_access.owner, folder = m_access.folder] {
        m_pool.Rewind();
        MovedTasks moved;
        for (qint64 last = 0; !(moved = m_store.MoveUnfinished(owner, folder, last, BatchSize)).isEmpty();
             last = moved.constLast().task.id) {
            DownloadChanges changes;
            for (const MovedTask& entry : qAsConst(moved)) {
                DownloadPaths::MovePart(entry.before, entry.task.file);
                changes.append(ChangeOf(entry.task));
                changes.last().file = entry.task.file;
            }
            m_listener.changed(changes);
        }
    });
}

void DownloadWorker::Order(const DownloadOrders& orders)
{
    m_commands.Run([this, owner = m_access.owner, orders] {
        if (m_store.AddOrders(owner, orders))
            m_desk.RetryNow();
    });
}

void DownloadWorker::Change(const TaskIds& ids, const Command& command, const Effect& effect)
{
    m_commands.Run([this, owner = m_access.owner, ids, command, effect] {
        const DownloadTasks tasks = m_store.Change(owner, ids, command);
        effect(tasks);
        Report(tasks);
        m_jobs.ReportSettled(tasks);
    });
}

/// The progress is saved, so that a stopped task shows how far it has come.
void DownloadWorker::Stop(const TaskIds& ids)
{
    const auto stop = [this](DownloadTask& task) {
        if (!TaskCommands::Stop(task))
            return false;
        task.progress = m_pool.Progress(task.id).value_or(task.progress);
        return true;
    };
    Change(ids, stop, [this](const DownloadTasks& tasks) {
        for (const DownloadTask& task : tasks)
            m_pool.Abort(task.id);
    });
}

void DownloadWorker::Resume(const TaskIds& ids)
{
    Change(ids, TaskCommands::Resume, [this](const DownloadTasks& tasks) { m_pool.RetryNow(tasks); });
}

void DownloadWorker::RetryFailed()
{
    m_commands.Run([this, owner = m_access.owner] {
        const TaskIds failed = m_store.Failed(owner);
        if (failed.isEmpty())
            m_listener.notice(QCoreApplication::translate("DownloadWorker", "No download has failed."));
        else
            Resume(failed);
    });
}

void DownloadWorker::Redownload(const TaskIds& ids)
{
    Change(ids, TaskCommands::Redownload, [this](const DownloadTasks& tasks) { m_pool.StartOver(tasks); });
}

void DownloadWorker::Remove(const TaskIds& ids)
{
    m_commands.Run([this, owner = m_access.owner, ids] {
        const DownloadTasks removed = m_store.Remove(owner, ids);
        m_pool.Discard(removed);
        m_jobs.ReportSettled(removed);
    });
}

/// An automatic order may be for a job that is gone by now; the user did not ask for it.
void DownloadWorker::HandleRefused(const DownloadOrder& order, const QString& reason)
{
    m_pool.HandleList(order.job, {});
    if (order.kind == DownloadOrder::Manual)
        m_listener.notice(
            QCoreApplication::translate("DownloadWorker", "The files of %1 cannot be downloaded: %2")
                .arg(order.subDir, reason));
}

void DownloadWorker::HandleApplied(const DownloadOrder& order, const OrderOutcome& outcome)
{
    if (order.kind == DownloadOrder::Manual && outcome.names.isEmpty())
        m_listener.notice(QCoreApplication::translate("DownloadWorker", "%1 has no files to download yet.")
                              .arg(order.subDir));
    m_pool.StartOver(outcome.renewed);
    m_pool.RetryNow(outcome.resumed);
    Report(outcome.renewed);
    Report(outcome.resumed);
    m_checks.Add(outcome.doubtful);
    if (!outcome.added.isEmpty())
        m_listener.added(m_session, outcome.added);
    m_pool.HandleList(order.job, outcome.names);
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
