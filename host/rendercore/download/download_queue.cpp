#include "host/rendercore/download/download_queue.h"

#include "host/rendercore/attempt.h"
#include "host/rendercore/download/task_commands.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

constexpr int IdDigits = 10;

const QString FileKey = QStringLiteral("destFile");
const QString StatusKey = QStringLiteral("status");
const QString ProgressKey = QStringLiteral("progress");
const QString MessageKey = QStringLiteral("msg");

QString IdOf(qint64 number)
{
    return QStringLiteral("%1").arg(number, IdDigits, 10, QLatin1Char('0'));
}

/// Names the job by its folder, which the user knows, rather than by its id.
QString SourceOf(const DownloadTask& task)
{
    return QFileInfo(task.file).dir().dirName() + QLatin1Char('/') + task.name;
}

QVariantMap EntryOf(const DownloadTask& task)
{
    return {{FileKey, task.file}, {QStringLiteral("srcFile"), SourceOf(task)},
        {QStringLiteral("jobId"), task.job}, {StatusKey, static_cast<int>(task.state)},
        {ProgressKey, task.progress}, {MessageKey, task.message}};
}

DownloadOrders OrdersOf(const QVariantMap& map)
{
    DownloadOrders orders;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        const QVariantMap order = entry->toMap();
        if (entry.key().isEmpty() || order.isEmpty())
            continue;
        const bool manual = order.value(QStringLiteral("manual")).toInt() != 0;
        orders.append({entry.key(), order.value(QStringLiteral("subDir")).toString(),
            manual ? DownloadOrder::Manual : DownloadOrder::Automatic});
    }
    return orders;
}

} // namespace

DownloadQueue::DownloadQueue(const QString& folder, const DownloadLimits& limits, QObject* parent)
    : QObject(parent)
{
    const QString file = QDir(folder).filePath(QStringLiteral("downloads.sqlite"));
    QDir().mkpath(folder);
    // Each thread has a store of its own, so that a long list of files does not block the window.
    std::unique_ptr<DownloadStore> store;
    if (!Attempt("use the list of downloads", [&] {
            m_store = std::make_unique<DownloadStore>(file);
            store = std::make_unique<DownloadStore>(file);
        })) {
        m_store.reset();
        return;
    }
    DownloadListener listener;
    listener.added = [this](int session, const DownloadTasks& tasks) {
        PostTo(this, [this, session, tasks] { HandleAdded(session, tasks); });
    };
    listener.changed = [this](const DownloadChanges& changes) {
        PostTo(this, [this, changes] { HandleChanged(changes); });
    };
    listener.finished
        = [this](const QString& path) { PostTo(this, [this, path] { emit FileFinished(path); }); };
    m_worker = std::make_unique<WorkerThread<DownloadWorker>>(
        QStringLiteral("downloads"), [store = std::move(store), listener, limits]() mutable {
            return std::make_unique<DownloadWorker>(std::move(store), listener, limits);
        });
}

DownloadQueue::~DownloadQueue() = default;

void DownloadQueue::SetAccess(const FarmAccess& access)
{
    const bool otherOwner = m_access.owner != access.owner;
    m_access = access;
    if (otherOwner) {
        ++m_session;
        const bool hadTasks = !m_tasks.isEmpty();
        m_tasks.clear();
        if (hadTasks)
            emit ListChanged();
    }
    if (m_worker)
        m_worker->Post(
            [access, session = m_session](DownloadWorker& worker) { worker.SetAccess(access, session); });
}

void DownloadQueue::Order(const QVariantMap& orders)
{
    if (m_access.owner.isEmpty())
        return;
    bool areNew = false;
    if (Save([&] { areNew = m_store->AddOrders(m_access.owner, OrdersOf(orders)); }) && areNew)
        m_worker->Post([](DownloadWorker& worker) { worker.AskForOrders(); });
}

void DownloadQueue::Stop(const QStringList& ids)
{
    Change(ids, TaskCommands::Stop, &DownloadWorker::HandleStopped);
}

void DownloadQueue::Resume(const QStringList& ids)
{
    Change(ids, TaskCommands::Resume, &DownloadWorker::HandleResumed);
}

void DownloadQueue::Redownload(const QStringList& ids)
{
    Change(ids, TaskCommands::Redownload, &DownloadWorker::HandleReset);
}

void DownloadQueue::Change(const QStringList& ids, bool (*command)(DownloadTask& task),
    void (DownloadWorker::*handle)(const TaskIds& ids))
{
    TaskIds changed;
    if (!Save([&] {
            for (const DownloadTask& task : m_store->Change(m_access.owner, Known(ids), command))
                changed.append(task.id);
        })
        || changed.isEmpty())
        return;
    m_worker->Post([changed, handle](DownloadWorker& worker) { (worker.*handle)(changed); });
}

void DownloadQueue::Remove(const QStringList& ids)
{
    const TaskIds known = Known(ids);
    DownloadTasks removed;
    if (known.isEmpty() || !Save([&] { removed = m_store->Remove(m_access.owner, known); }))
        return;
    for (const qint64 id : known)
        m_tasks.remove(IdOf(id));
    m_worker->Post([removed](DownloadWorker& worker) { worker.HandleRemoved(removed); });
    emit ListChanged();
}

/// Changes the data on the disk. A command that cannot be saved is not carried out.
bool DownloadQueue::Save(const std::function<void()>& change) const
{
    return m_store && Attempt("save a command on downloads", change);
}

TaskIds DownloadQueue::Known(const QStringList& ids) const
{
    TaskIds known;
    for (const QString& id : ids) {
        if (m_tasks.contains(id))
            known.append(id.toLongLong());
    }
    return known;
}

void DownloadQueue::HandleAdded(int session, const DownloadTasks& tasks)
{
    if (session != m_session)
        return;
    m_worker->Post([](DownloadWorker& worker) { worker.LoadMore(); });
    for (const DownloadTask& task : tasks)
        m_tasks.insert(m_tasks.cend(), IdOf(task.id), EntryOf(task)); // usually in this order
    emit ListChanged();
}

void DownloadQueue::HandleChanged(const DownloadChanges& changes)
{
    for (const DownloadChange& change : changes) {
        const auto found = m_tasks.find(IdOf(change.id));
        if (found == m_tasks.end())
            continue;
        QVariantMap task = found->toMap();
        task[StatusKey] = static_cast<int>(change.state);
        task[ProgressKey] = change.progress;
        task[MessageKey] = change.message;
        if (!change.file.isEmpty())
            task[FileKey] = change.file;
        *found = task;
    }
}
