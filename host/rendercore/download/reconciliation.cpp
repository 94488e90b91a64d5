#include "host/rendercore/download/reconciliation.h"

#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/removed_files.h"
#include "host/rendercore/download/task_rows.h"

namespace {

constexpr int MostCopies = 1000;

template <typename... Values>
void Run(SQLite::Statement& statement, const Values&... values)
{
    statement.reset();
    storage::Bind(statement, values...);
    statement.exec();
}

} // namespace

Reconciliation::Reconciliation(SQLite::Database& connection, const QString& owner, const DownloadOrder& order)
    : m_owner(owner)
    , m_order(order)
    , m_insert(
          connection, "INSERT INTO tasks(owner, job, name, file, size, checksum) VALUES (?, ?, ?, ?, ?, ?)")
    , m_isTaken(connection, "SELECT 1 FROM tasks WHERE file = ?")
    , m_renew(connection,
          "UPDATE tasks SET size = ?, checksum = ?, fresh = ?, state = 0, progress = 0, message = '' "
          "WHERE id = ?")
    , m_resume(connection, "UPDATE tasks SET state = 0, message = '' WHERE id = ?")
    , m_connection(connection)
{
    const DownloadTasks known = TaskRows::Select(connection, "WHERE owner = ? AND job = ?", owner, order.job);
    for (const DownloadTask& task : known)
        m_known.insert(task.name, task);
    if (order.kind == DownloadOrder::Manual)
        RemovedFiles::Forget(connection, owner, order.job);
    else
        m_removed = RemovedFiles::Of(connection, owner, order.job);
}

void Reconciliation::Reconcile(const FarmFile& file, const QString& folder)
{
    m_outcome.names.append(file.name);
    const auto known = m_known.constFind(file.name);
    if (known != m_known.cend())
        Renew(*known, file);
    else if (m_order.kind != DownloadOrder::Renewal && !m_removed.contains(file.name))
        Add(file, folder);
}

void Reconciliation::Add(const FarmFile& file, const QString& folder)
{
    DownloadTask task;
    task.job = m_order.job;
    task.name = file.name;
    task.size = file.size;
    task.checksum = file.checksum;
    for (int copy = 1; copy <= MostCopies; ++copy) {
        task.file = DownloadPaths::Destination(folder, m_order.subDir, file.name, copy);
        if (IsTaken(task.file))
            continue;
        Run(m_insert, m_owner, task.job, task.name, task.file, task.size, task.checksum);
        task.id = m_connection.getLastInsertRowid();
        m_known.insert(task.name, task);
        m_outcome.added.append(task);
        return;
    }
    qWarning("every name for a file of job %s is in use", qUtf8Printable(m_order.job));
}

bool Reconciliation::IsTaken(const QString& file)
{
    m_isTaken.reset();
    storage::Bind(m_isTaken, file);
    return m_isTaken.executeStep();
}

void Reconciliation::Renew(DownloadTask task, const FarmFile& file)
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
    task.message = {};
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
