#include "host/rendercore/download/download_store.h"

#include "host/rendercore/download/download_paths.h"

#include <QFileInfo>
#include <QHash>

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

#define NEXT_SERIAL "(SELECT coalesce(max(serial), 0) + 1 FROM orders)"
#define SELECT_TASKS "SELECT id, job, name, file, size, checksum, state, progress, fresh, message FROM tasks "

DownloadTask ReadTask(SQLite::Statement& row)
{
    DownloadTask task;
    task.id = row.getColumn(0).getInt64();
    task.job = storage::Text(row.getColumn(1));
    task.name = storage::Text(row.getColumn(2));
    task.file = storage::Text(row.getColumn(3));
    task.size = row.getColumn(4).getInt64();
    task.checksum = storage::Text(row.getColumn(5));
    task.state = static_cast<DownloadState>(row.getColumn(6).getInt());
    task.progress = row.getColumn(7).getInt();
    task.fresh = row.getColumn(8).getInt() != 0;
    task.message = storage::Text(row.getColumn(9));
    return task;
}

template <typename... Values>
DownloadTasks Select(SQLite::Database& connection, const char* sql, const Values&... values)
{
    SQLite::Statement select(connection, sql);
    storage::Bind(select, values...);
    DownloadTasks tasks;
    while (select.executeStep())
        tasks.append(ReadTask(select));
    return tasks;
}

std::optional<DownloadTask> First(const DownloadTasks& tasks)
{
    return tasks.isEmpty() ? std::nullopt : std::optional<DownloadTask>(tasks.constFirst());
}

/// Brings one job's tasks in line with the farm's list of its files, within a transaction.
class Reconciliation
{
public:
    Reconciliation(SQLite::Database& connection, const QString& owner, const DownloadOrder& order)
        : m_owner(owner)
        , m_order(order)
        , m_insert(connection,
              "INSERT INTO tasks(owner, job, name, file, size, checksum) VALUES (?, ?, ?, ?, ?, ?)")
        , m_isTaken(connection, "SELECT 1 FROM tasks WHERE file = ?")
        , m_renew(connection,
              "UPDATE tasks SET size = ?, checksum = ?, fresh = ?, state = 0, progress = 0, message = '' "
              "WHERE id = ?")
        , m_resume(connection, "UPDATE tasks SET state = 0, message = '' WHERE id = ?")
        , m_connection(connection)
    {
        const DownloadTasks known
            = Select(connection, SELECT_TASKS "WHERE owner = ? AND job = ?", owner, order.job);
        for (const DownloadTask& task : known)
            m_known.insert(task.name, task);
    }

    void Reconcile(const FarmFile& file, const QString& folder)
    {
        m_outcome.names.append(file.name);
        const auto known = m_known.constFind(file.name);
        if (known != m_known.cend())
            Renew(*known, file);
        else if (m_order.kind != DownloadOrder::Renewal)
            Add(file, folder);
    }

    OrderOutcome Outcome() const { return m_outcome; }

private:
    void Add(const FarmFile& file, const QString& folder)
    {
        DownloadTask task;
        task.job = m_order.job;
        task.name = file.name;
        task.size = file.size;
        task.checksum = file.checksum;
        for (int copy = 1; copy <= MostCopies; ++copy) {
            task.file = DownloadPaths::Destination(folder, m_order.subDir, file.name, copy);
            if (IsTaken(task.file, file.size))
                continue;
            Run(m_insert, m_owner, task.job, task.name, task.file, task.size, task.checksum);
            task.id = m_connection.getLastInsertRowid();
            m_known.insert(task.name, task);
            m_outcome.added.append(task);
            return;
        }
        qWarning("every name for a file of job %s is in use", qUtf8Printable(m_order.job));
    }

    /// A file of the right size that belongs to no task may be the wanted file itself; its checksum is compared when
    /// the task begins.
    bool IsTaken(const QString& file, qint64 size)
    {
        m_isTaken.reset();
        storage::Bind(m_isTaken, file);
        return m_isTaken.executeStep() || (DownloadPaths::IsOccupied(file) && QFileInfo(file).size() != size);
    }

    void Renew(DownloadTask task, const FarmFile& file)
    {
        const bool isWaiting = task.state == DownloadState::Waiting;
        const bool isSame = task.checksum == file.checksum && task.size == file.size;
        if (isWaiting ? isSame : m_order.kind != DownloadOrder::Manual)
            return;
        if (task.state == DownloadState::Finished && isSame) {
            m_outcome.doubtful.append(task);
            return;
        }
        task.fresh = task.fresh || task.state == DownloadState::Finished;
        task.state = DownloadState::Waiting;
        task.message.clear();
        if (isSame) {
            Run(m_resume, task.id);
            m_outcome.resumed.append(task);
            return;
        }
        task.size = file.size;
        task.checksum = file.checksum;
        task.progress = 0;
        Run(m_renew, task.size, task.checksum, int(task.fresh), task.id);
        m_outcome.renewed.append(task);
    }

    template <typename... Values>
    static void Run(SQLite::Statement& statement, const Values&... values)
    {
        statement.reset();
        storage::Bind(statement, values...);
        statement.exec();
    }

    const QString& m_owner;
    const DownloadOrder& m_order;
    SQLite::Statement m_insert;
    SQLite::Statement m_isTaken;
    SQLite::Statement m_renew;
    SQLite::Statement m_resume;
    SQLite::Database& m_connection;
    QHash<QString, DownloadTask> m_known; // by name
    OrderOutcome m_outcome;
};

void Close(SQLite::Database& connection, const QString& owner, const DownloadOrder& order)
{
    storage::Execute(connection,
        "DELETE FROM orders WHERE owner = ?1 AND job = ?2 AND serial = ?3 AND kind = 1 "
        "AND NOT EXISTS (SELECT 1 FROM tasks WHERE tasks.owner = ?1 AND tasks.job = ?2)",
        owner, order.job, order.serial);
    storage::Execute(connection, "UPDATE orders SET open = 0 WHERE owner = ? AND job = ? AND serial = ?",
        owner, order.job, order.serial);
}

} // namespace

DownloadStore::DownloadStore(const QString& file)
    : m_database(file, {FirstSchema, FileIndex})
{
}

bool DownloadStore::AddOrders(const QString& owner, const DownloadOrders& orders)
{
    // The window repeats the automatic orders of finished jobs with each refresh; usually none of them is new.
    const auto findNew = [&owner, &orders](SQLite::Database& connection) {
        SQLite::Statement known(connection, "SELECT 1 FROM orders WHERE owner = ? AND job = ?");
        DownloadOrders counting;
        for (const DownloadOrder& order : orders) {
            known.reset();
            storage::Bind(known, owner, order.job);
            if (order.kind == DownloadOrder::Manual || !known.executeStep())
                counting.append(order);
        }
        return counting;
    };
    const DownloadOrders counting = m_database.Read(findNew);
    if (counting.isEmpty())
        return false;
    m_database.Write([&owner, &counting](SQLite::Database& connection) {
        for (const DownloadOrder& order : counting)
            storage::Execute(connection,
                "INSERT INTO orders(owner, job, sub_dir, kind, serial) VALUES (?, ?, ?, ?, " NEXT_SERIAL ") "
                "ON CONFLICT(owner, job) DO UPDATE SET sub_dir = excluded.sub_dir, kind = excluded.kind, "
                "open = 1, serial = excluded.serial",
                owner, order.job, order.subDir, static_cast<int>(order.kind));
    });
    return true;
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
        return Select(
            connection, SELECT_TASKS "WHERE owner = ? AND id > ? ORDER BY id LIMIT ?", owner, id, limit);
    });
}

std::optional<DownloadTask> DownloadStore::NextWaiting(const QString& owner, qint64 id)
{
    return m_database.Read([&](SQLite::Database& connection) {
        return First(Select(connection,
            SELECT_TASKS "WHERE owner = ? AND state = 0 AND id > ? ORDER BY id LIMIT 1", owner, id));
    });
}

std::optional<DownloadTask> DownloadStore::Find(const QString& owner, qint64 id)
{
    return m_database.Read([&](SQLite::Database& connection) {
        return First(Select(connection, SELECT_TASKS "WHERE id = ? AND owner = ?", id, owner));
    });
}

bool DownloadStore::Rename(DownloadTask* task)
{
    const QString folder = QFileInfo(task->file).path() + QLatin1Char('/');
    return m_database.Write([&](SQLite::Database& connection) {
        for (int copy = 1; copy <= MostCopies; ++copy) {
            const QString file = folder + DownloadPaths::FileName(task->name, copy);
            if (DownloadPaths::IsOccupied(file)
                || storage::Execute(connection,
                       "UPDATE tasks SET file = ?1 WHERE id = ?2 "
                       "AND NOT EXISTS (SELECT 1 FROM tasks WHERE file = ?1)",
                       file, task->id)
                    == 0)
                continue;
            task->file = file;
            return true;
        }
        return false;
    });
}

void DownloadStore::Save(const DownloadTasks& tasks)
{
    m_database.Write([&tasks](SQLite::Database& connection) {
        SQLite::Statement update(
            connection, "UPDATE tasks SET state = ?, progress = ?, fresh = ?, message = ? WHERE id = ?");
        for (const DownloadTask& task : tasks) {
            update.reset();
            storage::Bind(
                update, static_cast<int>(task.state), task.progress, int(task.fresh), task.message, task.id);
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
        return removed;
    });
}
