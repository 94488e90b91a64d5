#pragma once

#include "host/rendercore/download/download_task.h"
#include "host/rendercore/download/reconciliation.h"
#include "storage/recovering_database.h"

#include <functional>
#include <optional>

/// A task with its new destination, and its earlier one.
struct MovedTask
{
    DownloadTask task;
    QString before;
};

using MovedTasks = QVector<MovedTask>;

/// Orders and tasks in a database. A change is on the disk when its function returns. Throws std::exception; whatever
/// failed may succeed later. A database that cannot be used is set aside, see storage::RecoveringDatabase.
class DownloadStore
{
public:
    /// @param onReplaced see storage::RecoveringDatabase.
    explicit DownloadStore(const QString& file, storage::RecoveringDatabase::Replaced onReplaced = {});

    /// Saves the orders. An automatic order does not replace an open order of the user's.
    /// @return whether there is anything new to ask the farm for.
    bool AddOrders(const QString& owner, const DownloadOrders& orders);
    /// Orders that have not been answered yet, oldest first.
    DownloadOrders OpenOrders(const QString& owner, int limit);
    /// Moves an order behind all others.
    void PostponeOrder(const QString& owner, const QString& job);
    /// Marks an order as answered.
    void CloseOrder(const QString& owner, const DownloadOrder& order);
    /// Opens a job's order again as a renewal.
    void ReopenOrder(const QString& owner, const QString& job);

    /// Brings a job's tasks in line with the farm's list and closes the order, in one transaction.
    /// @param folder holds the folders of all jobs.
    OrderOutcome Apply(
        const QString& owner, const DownloadOrder& order, const FarmFiles& files, const QString& folder);

    /// Tasks with ids above `id`, sorted by id.
    DownloadTasks TasksAfter(const QString& owner, qint64 id, int limit);
    /// The first waiting task after `id`.
    std::optional<DownloadTask> NextWaiting(const QString& owner, qint64 id);
    std::optional<DownloadTask> Find(const QString& owner, qint64 id);
    bool HasWaiting(const QString& owner, const QString& job);

    /// Gives a task a destination that no other task has and where nothing is on the disk.
    /// @return false when none was found.
    bool Rename(DownloadTask* task);
    /// Gives unfinished tasks from outside a download folder destinations in it, below their job's folder.
    /// @param after the last task that was moved; 0 at first.
    MovedTasks MoveUnfinished(const QString& owner, const QString& folder, qint64 after, int limit);

    /// Saves state, progress, `fresh` and message of each task that still exists.
    void Save(const DownloadTasks& tasks);
    /// Changes the owner's tasks in one transaction and returns those that have changed. Unknown ids are ignored.
    /// @param command changes a task and returns true, or returns false where it does not apply.
    DownloadTasks Change(
        const QString& owner, const TaskIds& ids, const std::function<bool(DownloadTask&)>& command);
    /// The tasks that have failed.
    TaskIds Failed(const QString& owner);

    /// @return the removed tasks. Unknown ids are ignored.
    DownloadTasks Remove(const QString& owner, const TaskIds& ids);
    /// Removes tasks that finished before a time, oldest first.
    /// @param before in seconds since 1970.
    TaskIds RemoveFinished(const QString& owner, qint64 before, int limit);

private:
    storage::RecoveringDatabase m_database;
};
