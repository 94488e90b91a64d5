#pragma once

#include "host/rendercore/download/download_task.h"
#include "storage/database.h"

#include <QStringList>

#include <functional>
#include <optional>

/// What an answered order did to the tasks.
struct OrderOutcome
{
    DownloadTasks added;
    DownloadTasks renewed; ///< waiting from now on; their former contents are of no use any more
    DownloadTasks resumed; ///< waiting again; what has come so far counts
    DownloadTasks
        doubtful;      ///< finished, and the farm's file is the same: the file on the disk is to be looked at
    QStringList names; ///< of all the files that the farm has
};

/// Orders and tasks on the disk. Each thread has a store of its own on the same file; every change is there when the
/// call returns. Throws SQLite::Exception, the constructor std::runtime_error, too.
class DownloadStore
{
public:
    explicit DownloadStore(const QString& file);

    /// Keeps the orders that count, see DownloadOrder::Kind.
    /// @return whether there are any.
    bool AddOrders(const QString& owner, const DownloadOrders& orders);
    /// Some of the orders that were not answered yet, the longest waiting first.
    DownloadOrders OpenOrders(const QString& owner, int limit);
    /// Lets the others go first.
    void PostponeOrder(const QString& owner, const QString& job);
    /// A manual order that brought no files is forgotten, so that an automatic one counts when the job is finished.
    void CloseOrder(const QString& owner, const DownloadOrder& order);
    /// Asks for a job's files once more, as a renewal.
    void ReopenOrder(const QString& owner, const QString& job);

    /// Applies an answer and closes the order, as one transaction.
    /// @param folder under which the files go.
    OrderOutcome Apply(
        const QString& owner, const DownloadOrder& order, const FarmFiles& files, const QString& folder);

    DownloadTasks TasksAfter(const QString& owner, qint64 id, int limit);
    std::optional<DownloadTask> NextWaiting(const QString& owner, qint64 id);
    std::optional<DownloadTask> Find(const QString& owner, qint64 id);

    /// Gives a task a name that neither a task nor anything on the disk has.
    /// @return whether there is one; the task says where it goes.
    bool Rename(DownloadTask* task);

    /// Writes state, progress, freshness and message of each task that is still there.
    void Save(const DownloadTasks& tasks);
    /// Writes and returns those of the owner's tasks that a verdict has changed, as one transaction. Ids that are none
    /// of the owner's tasks are left out.
    /// @param verdict changes a task; false where it does not apply.
    DownloadTasks Change(
        const QString& owner, const TaskIds& ids, const std::function<bool(DownloadTask&)>& verdict);
    /// @return those of the owner's tasks that were there.
    DownloadTasks Remove(const QString& owner, const TaskIds& ids);

private:
    storage::Database m_database;
};
