#include "host/rendercore/download/download_store.h"

#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/removed_files.h"
#include "host/rendercore/download/task_rows.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

constexpr int MostCopies = 1000;

constexpr const char* FirstSchema = R"sql(
CREATE TABLE orders(
    owner TEXT NOT NULL,
    job TEXT NOT NULL,
    sub_dir TEXT NOT NULL,
    kind INTEGER NOT NULL,
    open INTEGER NOT NULL DEFAULT 1,
    serial INTEGER NOT NULL,
    PRIMARY KEY(owner, job)) WITHOUT ROWID;
CREATE INDEX orders_by_serial ON orders(serial);
CREATE INDEX open_orders ON orders(owner, serial) WHERE open = 1;

CREATE TABLE tasks(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    owner TEXT NOT NULL,
    job TEXT NOT NULL,
    name TEXT NOT NULL,
    file TEXT NOT NULL,
    size INTEGER NOT NULL,
    checksum TEXT NOT NULL,
    state INTEGER NOT NULL DEFAULT 0,
    progress INTEGER NOT NULL DEFAULT 0,
    fresh INTEGER NOT NULL DEFAULT 0,
    message TEXT NOT NULL DEFAULT '',
    UNIQUE(owner, job, name),
    UNIQUE(owner, file));
CREATE INDEX tasks_by_owner ON tasks(owner, id);
CREATE INDEX waiting_tasks ON tasks(owner, id) WHERE state = 0;
)sql";

// Destinations are compared across owners, since owners share the disk.
constexpr const char* FileIndex = "CREATE INDEX tasks_by_file ON tasks(file)";

// Tasks that had finished before their time was recorded count from now on.
constexpr const char* FinishTime = R"sql(
ALTER TABLE tasks ADD COLUMN finished INTEGER NOT NULL DEFAULT 0;
UPDATE tasks SET finished = strftime('%s', 'now') WHERE state = 2;
CREATE INDEX finished_tasks ON tasks(owner, finished) WHERE state = 2;
CREATE INDEX unfinished_tasks ON tasks(owner, id) WHERE state <> 2;
CREATE INDEX waiting_by_job ON tasks(owner, job) WHERE state = 0;
)sql";

#define NEXT_SERIAL "(SELECT coalesce(max(serial), 0) + 1 FROM orders)"

std::optional<DownloadTask> First(const DownloadTasks& tasks)
{
    return tasks.isEmpty() ? std::nullopt : std::optional<DownloadTask>(tasks.constFirst());
}

void Close(SQLite::Database& connection, const QString& owner, const DownloadOrder& order)
{
    storage::Execute(connection, "UPDATE orders SET open = 0 WHERE owner = ? AND job = ? AND serial = ?",
        owner, order.job, order.serial);
}

/// Gives a task the first name in a folder that no other task has and that is free.
/// @return false when none was found.
template <typename IsFree>
bool Place(SQLite::Database& connection, DownloadTask& task, const QString& folder, IsFree isFree)
{
    for (int copy = 1; copy <= MostCopies; ++copy) {
        const QString file = folder + QLatin1Char('/') + DownloadPaths::FileName(task.name, copy);
        if (!isFree(file)
            || storage::Execute(connection,
                   "UPDATE tasks SET file = ?1, fresh = ?2 WHERE id = ?3 "
                   "AND NOT EXISTS (SELECT 1 FROM tasks WHERE file = ?1)",
                   file, int(task.fresh), task.id)
                == 0)
            continue;
        task.file = file;
        return true;
    }
    return false;
}

} // namespace

DownloadStore::DownloadStore(const QString& file, storage::RecoveringDatabase::Replaced onReplaced)
    : m_database(file, {FirstSchema, FileIndex, FinishTime, RemovedFiles::Schema}, std::move(onReplaced))
{
}

bool DownloadStore::AddOrders(const QString& owner, const DownloadOrders& orders)
{
    return m_database.Write([&owner, &orders](SQLite::Database& connection) {
        int changes = 0;
        for (const DownloadOrder& order : orders)
            changes += storage::Execute(connection,
                "INSERT INTO orders(owner, job, sub_dir, kind, serial) VALUES (?, ?, ?, ?, " NEXT_SERIAL ") "
                "ON CONFLICT(owner, job) DO UPDATE SET sub_dir = excluded.sub_dir, kind = excluded.kind, "
                "open = 1, serial = excluded.serial WHERE open = 0 OR kind = 2 OR excluded.kind = 1",
                owner, order.job, order.subDir, static_cast<int>(order.kind));
        return changes > 0;
    });
}

DownloadOrders DownloadStore::OpenOrders(const QString& owner, int limit)
{
    return m_database.Read([&owner, limit](SQLite::Database& connection) {
        SQLite::Statement select(connection,
            "SELECT job, sub_dir, kind, serial FROM orders WHERE owner = ? AND open = 1 "
            "ORDER BY serial LIMIT ?");
        storage::Bind(select, owner, limit);
        DownloadOrders orders;
        while (select.executeStep())
            orders.append({storage::Text(select.getColumn(0)), storage::Text(select.getColumn(1)),
                static_cast<DownloadOrder::Kind>(select.getColumn(2).getInt()),
                select.getColumn(3).getInt64()});
        return orders;
    });
}

void DownloadStore::PostponeOrder(const QString& owner, const QString& job)
{
    m_database.Write([&owner, &job](SQLite::Database& connection) {
        storage::Execute(
            connection, "UPDATE orders SET serial = " NEXT_SERIAL " WHERE owner = ? AND job = ?", owner, job);
    });
}

void DownloadStore::CloseOrder(const QString& owner, const DownloadOrder& order)
{
    m_database.Write([&owner, &order](SQLite::Database& connection) { Close(connection, owner, order); });
}

void DownloadStore::ReopenOrder(const QString& owner, const QString& job)
{
    m_database.Write([&owner, &job](SQLite::Database& connection) {
        storage::Execute(connection,
            "UPDATE orders SET kind = CASE WHEN open THEN kind ELSE 2 END, open = 1, serial = " NEXT_SERIAL
            " WHERE owner = ? AND job = ?",
            owner, job);
    });
}

OrderOutcome DownloadStore::Apply(
    const QString& owner, const DownloadOrder& order, const FarmFiles& files, const QString& folder)
{
    return m_database.Write([&](SQLite::Database& connection) {
        Reconciliation reconciliation(connection, owner, order);
        for (const FarmFile& file : files)
            reconciliation.Reconcile(file, folder);
        Close(connection, owner, order);
        return reconciliation.Outcome();
    });
}

DownloadTasks DownloadStore::TasksAfter(const QString& owner, qint64 id, int limit)
{
    return m_database.Read([&](SQLite::Database& connection) {
        return TaskRows::Select(
            connection, "WHERE owner = ? AND id > ? ORDER BY id LIMIT ?", owner, id, limit);
    });
}

std::optional<DownloadTask> DownloadStore::NextWaiting(const QString& owner, qint64 id)
{
    return m_database.Read([&](SQLite::Database& connection) {
        return First(TaskRows::Select(
            connection, "WHERE owner = ? AND state = 0 AND id > ? ORDER BY id LIMIT 1", owner, id));
    });
}

std::optional<DownloadTask> DownloadStore::Find(const QString& owner, qint64 id)
{
    return m_database.Read([&](SQLite::Database& connection) {
        return First(TaskRows::Select(connection, "WHERE id = ? AND owner = ?", id, owner));
    });
}

TaskIds DownloadStore::Failed(const QString& owner)
{
    return m_database.Read([&owner](SQLite::Database& connection) {
        // The first condition is that of the index.
        SQLite::Statement select(
            connection, "SELECT id FROM tasks WHERE state <> 2 AND state = 3 AND owner = ? ORDER BY id");
        storage::Bind(select, owner);
        TaskIds ids;
        while (select.executeStep())
            ids.append(select.getColumn(0).getInt64());
        return ids;
    });
}

bool DownloadStore::HasWaiting(const QString& owner, const QString& job)
{
    return m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement select(
            connection, "SELECT 1 FROM tasks WHERE owner = ? AND job = ? AND state = 0 LIMIT 1");
        storage::Bind(select, owner, job);
        return select.executeStep();
    });
}

bool DownloadStore::Rename(DownloadTask* task)
{
    const QString folder = QFileInfo(task->file).path();
    // The disk is asked before the transaction, which then looks at one name only.
    for (int copy = 1; copy <= MostCopies; ++copy) {
        const QString file = folder + QLatin1Char('/') + DownloadPaths::FileName(task->name, copy);
        if (DownloadPaths::IsOccupied(file))
            continue;
        const auto isThisOne = [&file](const QString& other) { return other == file; };
        if (m_database.Write(
                [&](SQLite::Database& connection) { return Place(connection, *task, folder, isThisOne); }))
            return true;
    }
    return false;
}

MovedTasks DownloadStore::MoveUnfinished(const QString& owner, const QString& folder, qint64 after, int limit)
{
    const QString root = QDir::cleanPath(folder) + QLatin1Char('/');
    return m_database.Write([&](SQLite::Database& connection) {
        MovedTasks moved;
        const auto tasks = TaskRows::Select(connection,
            "WHERE owner = ? AND state <> 2 AND id > ? AND substr(file, 1, length(?)) <> ? ORDER BY id LIMIT "
            "?",
            owner, after, root, root, limit);
        for (DownloadTask task : tasks) {
            const QString before = task.file;
            task.fresh = false; // nothing of this task is in the new folder
            const QString place = root + QFileInfo(before).dir().dirName();
            Place(connection, task, place, [](const QString&) { return true; });
            moved.append({task, before});
        }
        return moved;
    });
}

void DownloadStore::Save(const DownloadTasks& tasks)
{
    m_database.Write([&tasks](SQLite::Database& connection) {
        SQLite::Statement update(connection,
            "UPDATE tasks SET state = ?1, progress = ?2, fresh = ?3, message = ?4, "
            "finished = CASE ?1 WHEN 2 THEN strftime('%s', 'now') ELSE 0 END WHERE id = ?5");
        for (const DownloadTask& task : tasks) {
            update.reset();
            storage::Bind(update, static_cast<int>(task.state), task.progress, int(task.fresh),
                task.message.ToStored(), task.id);
            update.exec();
        }
    });
}

DownloadTasks DownloadStore::Change(
    const QString& owner, const TaskIds& ids, const std::function<bool(DownloadTask&)>& command)
{
    return m_database.Write([&](SQLite::Database& /*connection*/) {
        DownloadTasks changed;
        for (const qint64 id : ids) {
            auto task = Find(owner, id);
            if (task && command(*task))
                changed.append(*task);
        }
        Save(changed);
        return changed;
    });
}

DownloadTasks DownloadStore::Remove(const QString& owner, const TaskIds& ids)
{
    return m_database.Write([&](SQLite::Database& connection) {
        DownloadTasks removed;
        for (const qint64 id : ids) {
            const auto task = Find(owner, id);
            if (task && storage::Execute(connection, "DELETE FROM tasks WHERE id = ?", id) > 0)
                removed.append(*task);
        }
        RemovedFiles::Add(connection, owner, removed);
        return removed;
    });
}

TaskIds DownloadStore::RemoveFinished(const QString& owner, qint64 before, int limit)
{
    return m_database.Write([&](SQLite::Database& connection) {
        const DownloadTasks removed = TaskRows::Select(connection,
            "WHERE owner = ? AND state = 2 AND finished < ? ORDER BY finished LIMIT ?", owner, before, limit);
        SQLite::Statement remove(connection, "DELETE FROM tasks WHERE id = ?");
        TaskIds ids;
        ids.reserve(removed.size());
        for (const DownloadTask& task : removed) {
            remove.reset();
            storage::Bind(remove, task.id);
            remove.exec();
            ids.append(task.id);
        }
        RemovedFiles::Add(connection, owner, removed);
        return ids;
    });
}
