#include "host/rendercore/download/download_queue.h"

#include "host/rendercore/download/download_worker.h"
#include "host/rendercore/download/task_wishes.h"

#include <QDir>
#include <QFileInfo>

#include <exception>

namespace {

constexpr int idDigits = 10;

const QString kFile = QStringLiteral("destFile");
const QString kStatus = QStringLiteral("status");
const QString kProgress = QStringLiteral("progress");
const QString kMessage = QStringLiteral("msg");

QString IdOf(qint64 number)
{
    return QStringLiteral("%1").arg(number, idDigits, 10, QLatin1Char('0'));
}

/// What people know the file's job by, rather than its id.
QString SourceOf(const DownloadTask& task)
{
    return QFileInfo(task.file).dir().dirName() + QLatin1Char('/') + task.name;
}

QVariantMap EntryOf(const DownloadTask& task)
{
    return {{kFile, task.file}, {QStringLiteral("srcFile"), SourceOf(task)},
        {QStringLiteral("jobId"), task.job}, {kStatus, static_cast<int>(task.state)},
        {kProgress, task.progress}, {kMessage, task.message}};
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
    qRegisterMetaType<DownloadTasks>("DownloadTasks");
    qRegisterMetaType<DownloadChanges>("DownloadChanges");
    qRegisterMetaType<DownloadWish>("DownloadWish");
    const QString file = QDir(folder).filePath(QStringLiteral("downloads.sqlite"));
    try {
        QDir().mkpath(folder);
        m_store = std::make_unique<DownloadStore>(file);
    } catch (const std::exception& failure) {
        qCritical("there are no downloads: %s cannot be used: %s", qUtf8Printable(file), failure.what());
        return;
    }
    m_worker = new DownloadWorker(file, limits);
    m_worker->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    connect(this, &DownloadQueue::Told, m_worker,
        [worker = m_worker](const DownloadWish& wish) { wish(worker); });
    connect(m_worker, &DownloadWorker::Came, this, &DownloadQueue::TakeTasks);
    connect(m_worker, &DownloadWorker::Changed, this, &DownloadQueue::TakeChanges);
    connect(m_worker, &DownloadWorker::Finished, this, &DownloadQueue::FileFinished);
    m_thread.setObjectName(QStringLiteral("downloads"));
    m_thread.start();
}

DownloadQueue::~DownloadQueue()
{
    // What was said before is done before.
    emit Told([](const DownloadWorker*) { QThread::currentThread()->quit(); });
    m_thread.requestInterruption();
    m_thread.wait();
}

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
    emit Told([access, session = m_session](DownloadWorker* worker) { worker->SetAccess(access, session); });
}

void DownloadQueue::Order(const QVariantMap& orders)
{
    if (m_access.owner.isEmpty())
        return;
    bool isNew = false;
    if (Write([&] { isNew = m_store->AddOrders(m_access.owner, OrdersOf(orders)); }) && isNew)
        emit Told([](DownloadWorker* worker) { worker->TakeOrders(); });
}

void DownloadQueue::Stop(const QStringList& ids)
{
    Change(ids, TaskWishes::Stop, &DownloadWorker::Stopped);
}

void DownloadQueue::Resume(const QStringList& ids)
{
    Change(ids, TaskWishes::Resume, &DownloadWorker::Resumed);
}

void DownloadQueue::Redownload(const QStringList& ids)
{
    Change(ids, TaskWishes::Redownload, &DownloadWorker::Reset);
}

void DownloadQueue::Change(const QStringList& ids, bool (*wish)(DownloadTask& task),
    void (DownloadWorker::*then)(const TaskIds& ids))
{
    TaskIds changed;
    if (!Write([&] {
            for (const DownloadTask& task : m_store->Change(m_access.owner, Known(ids), wish))
                changed.append(task.id);
        })
        || changed.isEmpty())
        return;
    emit Told([changed, then](DownloadWorker* worker) { (worker->*then)(changed); });
}

void DownloadQueue::Remove(const QStringList& ids)
{
    const TaskIds known = Known(ids);
    DownloadTasks removed;
    if (known.isEmpty() || !Write([&] { removed = m_store->Remove(m_access.owner, known); }))
        return;
    for (const qint64 id : known)
        m_tasks.remove(IdOf(id));
    emit Told([removed](DownloadWorker* worker) { worker->Removed(removed); });
    emit ListChanged();
}

/// Whatever cannot be written has not happened.
bool DownloadQueue::Write(const std::function<void()>& work) const
{
    if (!m_store)
        return false;
    try {
        work();
        return true;
    } catch (const std::exception& failure) {
        qCritical("downloads cannot be written: %s", failure.what());
        return false;
    }
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

void DownloadQueue::TakeTasks(int session, const DownloadTasks& tasks)
{
    if (session != m_session)
        return;
    emit Told([](DownloadWorker* worker) { worker->LoadOn(); });
    for (const DownloadTask& task : tasks)
        m_tasks.insert(m_tasks.cend(), IdOf(task.id), EntryOf(task)); // they come in order
    emit ListChanged();
}

void DownloadQueue::TakeChanges(const DownloadChanges& changes)
{
    for (const DownloadChange& change : changes) {
        const auto found = m_tasks.find(IdOf(change.id));
        if (found == m_tasks.end())
            continue;
        QVariantMap task = found->toMap();
        task[kStatus] = static_cast<int>(change.state);
        task[kProgress] = change.progress;
        task[kMessage] = change.message;
        if (!change.file.isEmpty())
            task[kFile] = change.file;
        *found = task;
    }
}
