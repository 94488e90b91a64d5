#pragma once

#include "host/rendercore/submit/submit_task.h"
#include "storage/database.h"

#include <QSet>

/// The tasks on the disk. What a function has been told to keep is there when it returns.
/// Throws std::exception where the database fails.
class SubmitStore
{
public:
    /// @param file path of the database; its folder must exist.
    explicit SubmitStore(const QString& file);

    /// Takes a scene for an owner; the task is at its beginning.
    SubmitTask Add(const QString& owner, const QString& scene);

    /// The owner's tasks, the oldest first, each as it was saved last.
    QVector<SubmitTask> Load(const QString& owner);

    /// Saves everything but what the stages found out. A task that is gone stays gone.
    void Save(const SubmitTask& task);

    /// Saves all of them, or none when it fails.
    void SaveAll(const QVector<const SubmitTask*>& tasks);

    /// Saves what the stages found out, and the rest with it.
    void SaveWork(const SubmitTask& task);

    /// Forgets all of these, or none when it fails.
    void Remove(const QVector<qint64>& numbers);

    /// The numbers of all owners' tasks.
    QSet<qint64> Numbers();

private:
    storage::Database m_database;
};
