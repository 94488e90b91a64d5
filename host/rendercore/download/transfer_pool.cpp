#include "host/rendercore/download/transfer_pool.h"

#include "host/rendercore/attempt.h"
#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/download_store.h"
#include "host/rendercore/download/download_text.h"
#include "host/rendercore/download/file_download.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

TransferPool::TransferPool(DownloadStore* store, HttpTransport* transport, const DownloadListener* listener,
    const DownloadLimits& limits)
    : m_store(store)
    , m_transport(transport)
    , m_listener(listener)
    , m_limits(limits)
    , m_schedule(Backoff(limits.firstPause, limits.longestPause), limits.transfers)
    , m_diskBackoff(limits.firstPause, limits.longestPause)
    , m_wake(this)
{
    m_clock.start();
    m_wake.setSingleShot(true);
    connect(&m_wake, &QTimer::timeout, this, &TransferPool::Fill);
}

TransferPool::~TransferPool() = default;

void TransferPool::Reset(const FarmAccess& access)
{
    Stop();
    m_access = access;
    BeginAnew();
}

void TransferPool::BeginAnew()
{
    m_outdated.clear();
    m_damaged.clear();
    Rewind();
}

void TransferPool::Rewind()
{
    AbortAll();
    m_schedule.Clear();
    m_diskBackoff.Reset();
    m_waitForDisk.clear();
    m_unusable.clear();
    m_cursor = 0;
    Wake();
}

void TransferPool::Start()
{
    m_isStarted = m_access.IsOpen() && !m_access.owner.isEmpty();
    Wake();
}

void TransferPool::Stop()
{
    m_isStarted = false;
    AbortAll();
}

void TransferPool::RetryNow(const DownloadTasks& tasks)
{
    for (const DownloadTask& task : tasks)
        m_schedule.RetryNow(task.id);
    Wake();
}

void TransferPool::StartOver(const DownloadTasks& tasks)
{
    Discard(tasks);
    RetryNow(tasks);
}

void TransferPool::Discard(const DownloadTasks& tasks)
{
    for (const DownloadTask& task : tasks) {
        Abort(task.id);
        QFile::remove(DownloadPaths::PartFile(task.file));
    }
}

void TransferPool::Abort(qint64 id)
{
    m_active.erase(id);
    m_schedule.Forget(id);
    m_damaged.erase(id);
    m_waitForDisk.erase(id);
    for (auto& entry : m_outdated)
        entry.second.erase(id);
    Wake();
}

std::optional<int> TransferPool::Progress(qint64 id) const
{
    const auto transfer = m_active.find(id);
    return transfer == m_active.end() ? std::nullopt : std::optional<int>(transfer->second->Progress());
}

/// Starts transfers up to the limit.
void TransferPool::Fill()
{
    if (!m_isStarted)
        return;
    const auto hasRoom = [this] { return static_cast<int>(m_active.size()) < m_limits.transfers; };
    if (!Attempt("start downloads", [&] {
            while (hasRoom() && !m_schedule.IsPaused(m_clock.elapsed()) && BeginNext()) { }
        })) {
        m_wake.start(m_limits.longestPause);
        return;
    }
    if (const auto wait = hasRoom() ? m_schedule.Wait(m_clock.elapsed()) : std::nullopt)
        m_wake.start(*wait);
}

/// @return false when no task waits for its first attempt and none is due for another one.
bool TransferPool::BeginNext()
{
    if (const auto due = m_schedule.NextDue(m_clock.elapsed())) {
        // Until the task has been read, it stays due: a database that fails must not cost its turn.
        const auto task = m_store->Find(m_access.owner, *due);
        m_schedule.Take(*due);
        if (task && task->state == DownloadState::Waiting && m_active.count(*due) == 0)
            Begin(*task);
        return true;
    }
    const auto next = m_store->NextWaiting(m_access.owner, m_cursor);
    if (!next)
        return false;
    m_cursor = next->id;
    if (m_active.count(next->id) == 0)
        Begin(*next);
    return true;
}

void TransferPool::Begin(const DownloadTask& task)
{
    auto transfer = std::make_unique<FileDownload>(m_transport, m_access.token.toUtf8(), task, m_limits);
    FileDownload* started = transfer.get();
    const qint64 id = task.id;
    connect(started, &FileDownload::Progressed, this, [this, id, started] {
        m_listener->changed({{id, DownloadState::Downloading, started->Progress(), {}, {}}});
    });
    connect(started, &FileDownload::Advanced, this, [this, id] { m_schedule.RecordProgress(id); });
    connect(started, &FileDownload::Ended, this,
        [this, id](const DownloadOutcome& outcome) { HandleEnd(id, outcome); });
    m_active[id] = std::move(transfer);
    // Queued, because a transfer may end at once.
    QMetaObject::invokeMethod(started, &FileDownload::Start, Qt::QueuedConnection);
}

void TransferPool::AbortAll()
{
    DownloadChanges changes;
    for (const auto& [id, transfer] : m_active)
        changes.append({id, DownloadState::Waiting, transfer->Progress(), {}, {}});
    m_active.clear();
    if (!changes.isEmpty())
        m_listener->changed(changes);
}

void TransferPool::HandleEnd(qint64 id, const DownloadOutcome& outcome)
{
    const auto found = m_active.find(id);
    // The transfer is emitting this signal, so it cannot be deleted here.
    FileDownload* transfer = found->second.release();
    transfer->deleteLater();
    m_active.erase(found);
    const DownloadTask task = transfer->Task();
    // A transfer that was cut in between must not start the count over, or a damaged file would be fetched for ever.
    if (outcome.kind == DownloadOutcome::Complete || outcome.kind == DownloadOutcome::Outdated)
        m_damaged.erase(id);
    switch (outcome.kind) {
    case DownloadOutcome::Complete:
        Complete(task);
        break;
    case DownloadOutcome::Broken:
        Postpone(task, transfer->Progress(), outcome.message, outcome.retryAfter);
        break;
    case DownloadOutcome::DiskUnusable:
    case DownloadOutcome::FolderUnusable:
        WaitForDisk(task, transfer->Progress(), outcome);
        break;
    case DownloadOutcome::Outdated:
        AskForNewList(task, outcome.message);
        break;
    case DownloadOutcome::Damaged:
        HandleDamage(task, outcome.message);
        break;
    case DownloadOutcome::NameTaken:
        Rename(task);
        break;
    case DownloadOutcome::Failed:
        Fail(task, outcome.message);
        break;
    case DownloadOutcome::SignedOut:
        m_listener->changed({{id, DownloadState::Waiting, transfer->Progress(), {}, {}}});
        Stop();
        break;
    }
    Wake();
}

/// A file that arrives damaged is fetched again at once; the second time, its task fails.
void TransferPool::HandleDamage(const DownloadTask& task, const TaskMessage& message)
{
    if (m_damaged.erase(task.id) > 0) {
        Fail(task, message);
        return;
    }
    m_damaged.insert(task.id);
    m_schedule.RetryNow(task.id);
}

/// The file is in its place by now. A client that is killed before the task is saved finds the complete file at its
/// next start and reports it then; one that is killed right afterwards may lose the notice, but never the file.
void TransferPool::Complete(DownloadTask task)
{
    task.state = DownloadState::Finished;
    task.progress = 100;
    task.fresh = false;
    task.message = {};
    if (!Attempt("save a finished download", [this, &task] { m_store->Save({task}); })) {
        Postpone(task, 100, {DownloadText::NotRecorded, {task.name}});
        return;
    }
    m_schedule.RecordProgress(task.id);
    NoteUsable(task);
    emit Settled(task);
    m_listener->changed({ChangeOf(task)});
}

/// An unusable disk pauses all transfers, an unusable folder only those into it. One notice names the folder. The same
/// tasks are tried first after the pause, so that the others begin only once there is a chance.
void TransferPool::WaitForDisk(const DownloadTask& task, int progress, const DownloadOutcome& outcome)
{
    const bool concernsAll = outcome.kind == DownloadOutcome::DiskUnusable;
    const qint64 now = m_clock.elapsed();
    if (!concernsAll) {
        m_schedule.Delay(task.id, 0, now);
    } else {
        m_schedule.Requeue(task.id);
        if (!m_schedule.IsPaused(now))
            m_schedule.PauseUntil(now + m_diskBackoff.Fail());
    }
    m_waitForDisk.insert(task.id);
    m_listener->changed({{task.id, DownloadState::Waiting, progress, outcome.message, {}}});
    const QString folder = concernsAll ? DownloadPaths::Root(task.file) : QFileInfo(task.file).path();
    if (!m_unusable.insert(folder).second)
        return;
    const QString text = concernsAll
        ? tr("Nothing can be saved in %1: %2. All downloads wait until it is possible again.")
        : tr("Nothing can be saved in %1: %2. Its downloads wait until it is possible again.");
    m_listener->notice(text.arg(QDir::toNativeSeparators(folder), qt_error_string(outcome.error)));
}

/// Once a task that had to wait for the disk is done, the next failure of the disk is reported again.
void TransferPool::NoteUsable(const DownloadTask& task)
{
    if (m_waitForDisk.erase(task.id) == 0 && !m_waitForDisk.empty())
        return;
    m_diskBackoff.Reset();
    m_unusable.erase(DownloadPaths::Root(task.file));
    m_unusable.erase(QFileInfo(task.file).path());
}

void TransferPool::Postpone(
    const DownloadTask& task, int progress, const TaskMessage& message, int retryAfter)
{
    const int seconds = (m_schedule.Postpone(task.id, retryAfter, m_clock.elapsed()) + 999) / 1000;
    m_listener->changed({{task.id, DownloadState::Waiting, progress,
        {DownloadText::NextAttempt, {message, QString::number(seconds)}}, {}}});
}

/// A failure that cannot be recorded would be one that no command of the user's applies to.
void TransferPool::Fail(DownloadTask task, const TaskMessage& message)
{
    task.state = DownloadState::Failed;
    task.message = message;
    task.progress = 0;
    if (!Attempt("save a failed download", [this, &task] { m_store->Save({task}); })) {
        Postpone(task, 0, message);
        return;
    }
    m_schedule.Forget(task.id);
    m_damaged.erase(task.id);
    emit Settled(task);
    m_listener->changed({ChangeOf(task)});
}

void TransferPool::Rename(DownloadTask task)
{
    const QString before = task.file;
    bool isRenamed = false;
    if (!Attempt("rename a download", [&] { isRenamed = m_store->Rename(&task); }) || !isRenamed) {
        Postpone(task, 0, {DownloadText::NameTaken, {task.name}});
        return;
    }
    DownloadPaths::MovePart(before, task.file);
    DownloadChange change = ChangeOf(task);
    change.file = task.file;
    m_listener->changed({change});
    m_schedule.RetryNow(task.id);
}

void TransferPool::AskForNewList(const DownloadTask& task, const TaskMessage& message)
{
    if (!Attempt("reopen an order", [&] { m_store->ReopenOrder(m_access.owner, task.job); })) {
        Postpone(task, 0, message);
        return;
    }
    m_outdated[task.job].insert(task.id);
    m_listener->changed({{task.id, DownloadState::Waiting, 0, message, {}}});
    emit ListOutdated();
}

void TransferPool::HandleList(const QString& job, const QStringList& names)
{
    m_schedule.EndPause(); // the farm answers
    Wake();
    const auto found = m_outdated.find(job);
    if (found == m_outdated.end())
        return;
    const std::set<qint64> ids = std::move(found->second);
    m_outdated.erase(found);
    for (const qint64 id : ids) {
        std::optional<DownloadTask> task;
        if (!Attempt("continue an outdated download", [&] { task = m_store->Find(m_access.owner, id); }))
            m_schedule.Delay(id, 0, m_clock.elapsed());
        else if (!task || task->state != DownloadState::Waiting)
            continue;
        else if (!names.contains(task->name))
            Fail(*task, {DownloadText::Gone, {task->name}});
        else // The farm lists the file that it has just refused to send; try again later.
            Postpone(*task, 0, {DownloadText::NotSent, {task->name}});
    }
}
