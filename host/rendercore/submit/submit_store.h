#pragma once

#include "host/rendercore/submit/submit_task.h"
#include "storage/recovering_database.h"

#include <QSet>

/// The tasks in a database. A change is on the disk when its function returns. Throws std::exception when the database
/// fails.
class SubmitStore
{
public:
    /// @param file the path of the database; opened, or created with its folder, at first use.
    /// @param onReplaced is called when the file is unusable and a fresh one has been begun.
    explicit SubmitStore(const QString& file, storage::RecoveringDatabase::Replaced onReplaced = {});

    /// Creates a task for a scene, before its first stage.
    SubmitTask Add(const QString& owner, const QString& scene, int priority = 0);

    /// The owner's tasks, the oldest first.
    QVector<SubmitTask> Load(const QString& owner);

    /// Saves everything but the task's `work`. A removed task is not added again.
    void Save(const SubmitTask& task);

    /// Saves all tasks or, on failure, none.
    void SaveAll(const QVector<const SubmitTask*>& tasks);

    /// Saves the whole task.
    void SaveWork(const SubmitTask& task);

    /// Removes all of these tasks or, on failure, none.
    void Remove(const QVector<qint64>& numbers);

    /// The numbers of all owners' tasks.
    QSet<qint64> Numbers();

private:
    storage::RecoveringDatabase m_database;
};
