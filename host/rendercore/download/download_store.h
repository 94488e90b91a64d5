#pragma once

#include "host/rendercore/download/download_task.h"
#include "storage/database.h"

#include <QStringList>

#include <functional>
#include <optional>

/// The changes that an answered order made to the tasks.
struct OrderOutcome
{
    DownloadTasks added;
    DownloadTasks renewed; ///< waiting for a changed file; data received so far are useless
    DownloadTasks resumed; ///< waiting again; data received so far count
    DownloadTasks
        doubtful;      ///< finished with the farm's current file; the file on the disk should be verified
    QStringList names; ///< all files that the farm lists
};

/// Orders and tasks in a database. A change is on the disk when its function returns. Several stores can use one file.
/// Throws SQLite::Exception; the constructor also throws std::runtime_error.
class DownloadStore
{
public:
    explicit DownloadStore(const QString& file);

    /// Saves the orders that count (see DownloadOrder::Kind).
    /// @return whether there are any.
    bool AddOrders(const QString& owner, const DownloadOrders& orders);
    /// Orders that have not been answered yet, the longest waiting first.
    DownloadOrders OpenOrders(const QString& owner, int limit);
    /// Puts an order behind all others.
    void PostponeOrder(const QString& owner, const QString& job);
    /// Marks an order as answered. A manual one that has brought no files is forgotten, so that the automatic one counts
    /// when the job is finished.
    void CloseOrder(const QString& owner, const DownloadOrder& order);
    /// Opens a job's order again as a renewal.
    void ReopenOrder(const QString& owner, const QString& job);

    /// Brings a job's tasks in line with the farm's list and closes the order, in one transaction.
    /// @param folder holds the folders of all jobs.
    OrderOutcome Apply(
        const QString& owner, const DownloadOrder& order, const FarmFiles& files, const QString& folder);

    /// Tasks with ids above `id`, in ascending order.
    DownloadTasks TasksAfter(const QString& owner, qint64 id, int limit);
    /// The first waiting task after `id`.
    std::optional<DownloadTask> NextWaiting(const QString& owner, qint64 id);
    std::optional<DownloadTask> Find(const QString& owner, qint64 id);

    /// Gives a task a destination that no other task has and where nothing is on the disk.
    /// @return false when none was found.
    bool Rename(DownloadTask* task);

    /// Saves state, progress, `fresh` and message of each task that still exists.
    void Save(const DownloadTasks& tasks);
    /// Changes the owner's tasks in one transaction and returns those that have changed. Unknown ids are ignored.
    /// @param command changes a task and returns true, or returns false where it does not apply.
    DownloadTasks Change(
        const QString& owner, const TaskIds& ids, const std::function<bool(DownloadTask&)>& command);
    /// @return the removed tasks. Unknown ids are ignored.
    DownloadTasks Remove(const QString& owner, const TaskIds& ids);

private:
    storage::Database m_database;
};
