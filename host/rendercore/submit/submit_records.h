#pragma once

#include "host/rendercore/submit/submit_store.h"

#include <QTimer>

#include <map>
#include <optional>

/// Keeps the tasks in their database, in a thread of its own, so that nobody waits for the disk. A change that cannot be
/// written is kept and tried again until it is.
class SubmitRecords : public QObject
{
    Q_OBJECT

public:
    /// @param folder holds the database; created if missing.
    /// @param onReplaced see SubmitStore.
    explicit SubmitRecords(const QString& folder, storage::RecoveringDatabase::Replaced onReplaced = {});

    /// Tries one last time to write the remaining changes.
    ~SubmitRecords() override;

    /// The numbers of all owners' tasks; none when the database cannot be read.
    std::optional<QSet<qint64>> Numbers();

    /// Creates a task for a scene; none, and the reason, when that is not possible.
    std::optional<SubmitTask> Add(
        const QString& owner, const QString& scene, int priority, TaskMessage* error);

    /// The owner's tasks, the oldest first; none when the database cannot be read.
    std::optional<QVector<SubmitTask>> Load(const QString& owner);

    /// @param withWork whether the results of the stages have changed as well.
    void Save(const QVector<SubmitTask>& tasks, bool withWork);
    void Remove(const QVector<qint64>& numbers);

private:
    struct Change
    {
        SubmitTask task;
        bool hasWork = false;
    };

    void Write();

    SubmitStore m_store;
    std::map<qint64, Change> m_changes; // unwritten changes, by task
    QSet<qint64> m_removed;             // unwritten removals
    QTimer m_retry;
};
