#include "host/rendercore/download/download_queue.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QThreadPool>

#include <algorithm>
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
        {ProgressKey, task.progress}, {MessageKey, task.message.Text()}};
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
    DownloadListener listener;
    listener.added = [this](int session, const DownloadTasks& tasks) {
        PostTo(this, [this, session, tasks] { HandleAdded(session, tasks); });
    };
    listener.changed = [this](const DownloadChanges& changes) {
        PostTo(this, [this, changes] { HandleChanged(changes); });
    };
    listener.removed = [this](const TaskIds& ids) { PostTo(this, [this, ids] { HandleRemoved(ids); }); };
    listener.finished = [this](const QString& file, int count) {
        PostTo(this, [this, file, count] { emit FilesFinished(file, count); });
    };
    listener.notice = [this](const QString& text) { PostTo(this, [this, text] { emit Notice(text); }); };
    listener.replaced
        = [this](const QString& keptAs) { PostTo(this, [this, keptAs] { HandleReplaced(keptAs); }); };
    const QString file = QDir(folder).filePath(QStringLiteral("downloads.sqlite"));
    m_worker = std::make_unique<WorkerThread<DownloadWorker>>(QStringLiteral("downloads"),
        [file, listener, limits] { return std::make_unique<DownloadWorker>(file, listener, limits); });
}

DownloadQueue::~DownloadQueue() = default;

void DownloadQueue::SetAccess(const FarmAccess& access)
{
    const bool otherOwner = m_access.owner != access.owner;
    m_access = access;
    if (otherOwner) {
        ++m_session;
        Clear();
    }
    m_worker->Post(
        [access, session = m_session](DownloadWorker& worker) { worker.SetAccess(access, session); });
}

QString DownloadQueue::IdAt(int index) const
{
    return index >= 0 && index < m_order.size() ? IdOf(m_order.at(index)) : QString();
}

void DownloadQueue::Remember(qint64 id, const TaskMessage& message)
{
    if (message.IsEmpty())
        m_messages.remove(id);
    else
        m_messages.insert(id, message);
}

void DownloadQueue::Retranslate()
{
    for (auto message = m_messages.cbegin(); message != m_messages.cend(); ++message) {
        QVariant& entry = m_tasks[IdOf(message.key())];
        QVariantMap task = entry.toMap();
        task[MessageKey] = message->Text();
        entry = task;
    }
}

void DownloadQueue::SetKeepDays(int days)
{
    m_worker->Post([days](DownloadWorker& worker) { worker.SetKeepDays(days); });
}

void DownloadQueue::Order(const QVariantMap& orders)
{
    const DownloadOrders given = OrdersOf(orders);
    if (!m_access.owner.isEmpty() && !given.isEmpty())
        m_worker->Post([given](DownloadWorker& worker) { worker.Order(given); });
}

void DownloadQueue::Stop(const QStringList& ids)
{
    Command(ids, &DownloadWorker::Stop);
}

void DownloadQueue::Resume(const QStringList& ids)
{
    Command(ids, &DownloadWorker::Resume);
}

void DownloadQueue::RetryFailed()
{
    m_worker->Post([](DownloadWorker& worker) { worker.RetryFailed(); });
}

void DownloadQueue::Redownload(const QStringList& ids)
{
    Command(ids, &DownloadWorker::Redownload);
}

void DownloadQueue::Remove(const QStringList& ids)
{
    const TaskIds known = Known(ids);
    Command(ids, &DownloadWorker::Remove);
    HandleRemoved(known);
}

void DownloadQueue::ClearFinished()
{
    m_worker->Post([](DownloadWorker& worker) { worker.ClearFinished(); });
}

void DownloadQueue::Command(const QStringList& ids, void (DownloadWorker::*command)(const TaskIds& ids))
{
    const TaskIds known = Known(ids);
    if (!known.isEmpty())
        m_worker->Post([known, command](DownloadWorker& worker) { (worker.*command)(known); });
}

/// A long list takes seconds to free, which another thread can do.
void DownloadQueue::Clear()
{
    if (m_tasks.isEmpty())
        return;
    QVariantMap tasks;
    tasks.swap(m_tasks);
    m_order.clear();
    m_messages.clear();
    QThreadPool::globalInstance()->start([tasks = std::move(tasks)]() mutable { tasks.clear(); });
    emit ListChanged();
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
    for (const DownloadTask& task : tasks) {
        m_tasks.insert(m_tasks.cend(), IdOf(task.id), EntryOf(task)); // usually in this order
        Remember(task.id, task.message);
        if (m_order.isEmpty() || m_order.constLast() < task.id) {
            m_order.append(task.id);
            continue;
        }
        const auto place = std::lower_bound(m_order.begin(), m_order.end(), task.id);
        if (*place != task.id)
            m_order.insert(place, task.id);
    }
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
        task[MessageKey] = change.message.Text();
        Remember(change.id, change.message);
        if (!change.file.isEmpty())
            task[FileKey] = change.file;
        *found = task;
    }
}

void DownloadQueue::HandleRemoved(const TaskIds& ids)
{
    QSet<qint64> removed;
    for (const qint64 id : ids) {
        if (m_tasks.remove(IdOf(id)) > 0)
            removed.insert(id);
        m_messages.remove(id);
    }
    if (removed.isEmpty())
        return;
    const auto isRemoved = [&removed](qint64 id) { return removed.contains(id); };
    m_order.erase(std::remove_if(m_order.begin(), m_order.end(), isRemoved), m_order.end());
    emit ListChanged();
}

void DownloadQueue::HandleReplaced(const QString& keptAs)
{
    if (!m_tasks.isEmpty()) {
        ++m_session;
        Clear();
        SetAccess(m_access);
    }
    emit Notice(tr("The list of downloads could not be read. It is kept as %1, and a new list has begun.")
                    .arg(QDir::toNativeSeparators(keptAs)));
}
