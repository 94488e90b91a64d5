#include "host/rendercore/download/download_worker.h"

#include "host/rendercore/download/attempt.h"
#include "host/rendercore/download/file_checks.h"
#include "host/rendercore/download/file_download.h"

namespace {

constexpr int loadedAtOnce = 2000;

DownloadChange ChangeOf(const DownloadTask& task)
{
    return {task.id, task.state, task.progress, task.message, {}};
}

} // namespace

DownloadWorker::DownloadWorker(const QString& file, const DownloadLimits& limits)
    : m_file(file)
    , m_limits(limits)
    , m_schedule(limits.firstPause, limits.longestPause, limits.transfers)
    , m_wake(this)
{
    m_wake.setSingleShot(true);
    connect(&m_wake, &QTimer::timeout, this, [this] { m_loading ? LoadSome() : Pump(); });
}

DownloadWorker::~DownloadWorker() = default;

/// In the worker's own thread, which network and connection belong to.
void DownloadWorker::Prepare()
{
    if (m_desk)
        return;
    m_store = std::make_unique<DownloadStore>(m_file);
    m_transport = std::make_unique<HttpTransport>(m_limits.http);
    m_desk = std::make_unique<OrderDesk>(m_store.get(), m_transport.get(), m_limits);
    m_checks = std::make_unique<FileChecks>();
    connect(m_checks.get(), &FileChecks::Damaged, this, &DownloadWorker::Repair);
    connect(m_desk.get(), &OrderDesk::Listed, this, &DownloadWorker::TakeList);
    connect(m_desk.get(), &OrderDesk::Refused, this, &DownloadWorker::DropOrder);
    connect(m_desk.get(), &OrderDesk::SignedOut, this, &DownloadWorker::SignOut);
}

void DownloadWorker::SetAccess(const FarmAccess& access, int session)
{
    if (!Attempt("open the database", [this] { Prepare(); }))
        return;
    const bool sameWay = m_access.apiRoot == access.apiRoot && m_access.token == access.token;
    const bool sameOwner = m_session == session;
    m_access = access;
    m_session = session;
    if (sameWay && sameOwner)
        return;
    AbortAll();
    m_schedule.Clear();
    m_outdated.clear();
    m_signedOut = false;
    m_cursor = 0;
    m_transport->SetBaseUrl(access.apiRoot);
    m_desk->SetAccess(access);
    if (!sameOwner)
        Load();
    m_wake.start(0);
}

void DownloadWorker::Load()
{
    m_damaged.clear();
    m_checks->Clear();
    m_loaded = 0;
    m_loading = !m_access.owner.isEmpty();
}

void DownloadWorker::LoadOn()
{
    if (m_loading)
        m_wake.start(0);
}

/// One batch after the other, so that the GUI thread never has more than one to take.
void DownloadWorker::LoadSome()
{
    DownloadTasks tasks;
    if (!Attempt(
            "read the tasks", [&] { tasks = m_store->TasksAfter(m_access.owner, m_loaded, loadedAtOnce); })) {
        m_wake.start(m_limits.longestPause);
        return;
    }
    m_loading = tasks.size() == loadedAtOnce;
    if (!m_loading)
        m_wake.start(0);
    if (tasks.isEmpty())
        return;
    m_loaded = tasks.constLast().id;
    emit Came(m_session, tasks);
}

bool DownloadWorker::CanWork() const
{
    return m_access.IsOpen() && !m_access.owner.isEmpty() && !m_loading && !m_signedOut;
}

void DownloadWorker::TakeOrders()
{
    if (m_desk)
        m_desk->Hurry();
}

void DownloadWorker::Pump()
{
    if (!CanWork())
        return;
    m_wake.stop();
    if (!Attempt("go on", [this] {
            while (static_cast<int>(m_active.size()) < m_limits.transfers && !m_schedule.IsResting()
                && BeginNext()) { }
        })) {
        m_wake.start(m_limits.longestPause);
        return;
    }
    const auto wait = m_schedule.Wait();
    if (wait && static_cast<int>(m_active.size()) < m_limits.transfers)
        m_wake.start(*wait);
}

bool DownloadWorker::BeginNext()
{
    if (const auto due = m_schedule.TakeDue()) {
        const auto task = m_store->Find(m_access.owner, *due);
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

void DownloadWorker::Begin(const DownloadTask& task)
{
    auto transfer
        = std::make_unique<FileDownload>(m_transport.get(), m_access.token.toUtf8(), task, m_limits);
    FileDownload* started = transfer.get();
    const qint64 id = task.id;
    connect(started, &FileDownload::Progressed, this, [this, id, started] {
        emit Changed({{id, DownloadState::Downloading, started->Progress(), {}, {}}});
    });
    connect(started, &FileDownload::Advanced, this, [this, id] { m_schedule.Advanced(id); });
    connect(started, &FileDownload::Ended, this,
        [this, id](const DownloadOutcome& outcome) { End(id, outcome); });
    m_active[id] = std::move(transfer);
    // Not from here: it may end at once.
    QMetaObject::invokeMethod(started, &FileDownload::Start, Qt::QueuedConnection);
}

void DownloadWorker::Abort(qint64 id)
{
    m_active.erase(id);
    m_schedule.Forget(id);
    m_damaged.erase(id);
    for (auto& entry : m_outdated)
        entry.second.erase(id);
}

void DownloadWorker::AbortAll()
{
    DownloadChanges changes;
    for (const auto& [id, transfer] : m_active)
        changes.append({id, DownloadState::Waiting, transfer->Progress(), {}, {}});
    m_active.clear();
    if (!changes.isEmpty())
        emit Changed(changes);
}

void DownloadWorker::End(qint64 id, const DownloadOutcome& outcome)
{
    const auto found = m_active.find(id);
    // It is on the stack just now.
    FileDownload* transfer = found->second.release();
    transfer->deleteLater();
    m_active.erase(found);
    const DownloadTask task = transfer->Task();
    const bool wasDamaged = m_damaged.erase(id) > 0;
    switch (outcome.kind) {
    case DownloadOutcome::Complete:
        Complete(task);
        break;
    case DownloadOutcome::Broken:
        Postpone(task, transfer->Progress(), outcome.message, outcome.retryAfter);
        break;
    case DownloadOutcome::Outdated:
        AskAnew(task);
        break;
    case DownloadOutcome::Damaged:
        if (wasDamaged) {
            Fail(task, outcome.message);
        } else {
            m_damaged.insert(id);
            m_schedule.Hurry(id);
        }
        break;
    case DownloadOutcome::NameTaken:
        Rename(task);
        break;
    case DownloadOutcome::Failed:
        Fail(task, outcome.message);
        break;
    case DownloadOutcome::SignedOut:
        emit Changed({{id, DownloadState::Waiting, transfer->Progress(), {}, {}}});
        SignOut();
        break;
    }
    m_wake.start(0);
}

/// The file has its name by now. A client that is killed before this is written finds the file whole at its next start,
/// asks the farm for nothing and reports it then; one that is killed right after it may lose the notice, never the file.
void DownloadWorker::Complete(DownloadTask task)
{
    task.state = DownloadState::Finished;
    task.progress = 100;
    task.fresh = false;
    task.message.clear();
    if (!Attempt("note a finished file", [this, &task] { m_store->Save({task}); })) {
        Postpone(task, 100, tr("The file is there but cannot be noted."), 0);
        return;
    }
    m_schedule.Advanced(task.id);
    emit Changed({ChangeOf(task)});
    emit Finished(task.file);
}

void DownloadWorker::Postpone(const DownloadTask& task, int progress, const QString& message, int retryAfter)
{
    const int seconds = (m_schedule.Postpone(task.id, retryAfter) + 999) / 1000;
    emit Changed({{task.id, DownloadState::Waiting, progress,
        tr("%1 It is tried again in %2 s.").arg(message, QString::number(seconds)), {}}});
}

void DownloadWorker::Fail(DownloadTask task, const QString& message)
{
    task.state = DownloadState::Failed;
    task.message = message;
    task.progress = 0;
    m_schedule.Forget(task.id);
    Store(task);
    emit Changed({ChangeOf(task)});
}

void DownloadWorker::Rename(DownloadTask task)
{
    bool isNamed = false;
    if (!Attempt("name a file otherwise", [&] { isNamed = m_store->Rename(&task); }) || !isNamed) {
        Postpone(task, 0, tr("There is another file of this name."), 0);
        return;
    }
    DownloadChange change = ChangeOf(task);
    change.file = task.file;
    emit Changed({change});
    m_schedule.Hurry(task.id);
}

void DownloadWorker::AskAnew(const DownloadTask& task)
{
    if (!Attempt("order a job anew", [&] { m_store->ReopenOrder(m_access.owner, task.job); })) {
        Postpone(task, 0, tr("The farm has another file now."), 0);
        return;
    }
    m_outdated[task.job].insert(task.id);
    m_desk->Hurry();
    emit Changed({{task.id, DownloadState::Waiting, 0, tr("The farm has another file now."), {}}});
}

/// Until there is another session.
void DownloadWorker::SignOut()
{
    m_signedOut = true;
    AbortAll();
}

void DownloadWorker::TakeList(const DownloadOrder& order, const FarmFiles& files)
{
    OrderOutcome outcome;
    if (!Attempt(
            "add tasks", [&] { outcome = m_store->Apply(m_access.owner, order, files, m_access.folder); })) {
        m_desk->Postpone(order);
        return;
    }
    m_desk->GoOn();
    if (files.isEmpty() && order.kind == DownloadOrder::Manual)
        qInfo("job %s has no files to download yet", qUtf8Printable(order.job));
    StartOver(outcome.renewed);
    Report(outcome.renewed);
    for (const DownloadTask& task : qAsConst(outcome.resumed))
        m_schedule.Hurry(task.id);
    Report(outcome.resumed);
    ReleaseOutdated(order.job, outcome.names);
    m_checks->Add(outcome.doubtful);
    if (!outcome.added.isEmpty())
        emit Came(m_session, outcome.added);
    m_schedule.EndRest();
    m_wake.start(0);
}

void DownloadWorker::DropOrder(const DownloadOrder& order, const QString& reason)
{
    qWarning("the files of job %s cannot be had: %s", qUtf8Printable(order.job), qUtf8Printable(reason));
    if (Attempt("close an order", [&] { m_store->CloseOrder(m_access.owner, order); }))
        m_desk->GoOn();
    else
        m_desk->Postpone(order);
    ReleaseOutdated(order.job, {});
}

/// @param names of the files that the farm has.
void DownloadWorker::ReleaseOutdated(const QString& job, const QStringList& names)
{
    const auto found = m_outdated.find(job);
    if (found == m_outdated.end())
        return;
    const std::set<qint64> ids = std::move(found->second);
    m_outdated.erase(found);
    Attempt("release tasks", [&] {
        for (const qint64 id : ids) {
            const auto task = m_store->Find(m_access.owner, id);
            if (!task || task->state != DownloadState::Waiting)
                continue;
            if (!names.contains(task->name))
                Fail(*task, tr("The farm no longer has this file."));
            else // The list says what it said before; the file may be another one a moment later.
                Postpone(*task, 0, tr("The farm does not give the file that it lists."), 0);
        }
    });
}

void DownloadWorker::Report(const DownloadTasks& tasks)
{
    if (tasks.isEmpty())
        return;
    DownloadChanges changes;
    changes.reserve(tasks.size());
    for (const DownloadTask& task : tasks)
        changes.append(ChangeOf(task));
    emit Changed(changes);
}

void DownloadWorker::Store(const DownloadTask& task)
{
    Attempt("note a task", [this, &task] { m_store->Save({task}); });
}
