#pragma once

#include "host/rendercore/submit/submit_records.h"
#include "host/rendercore/worker_thread.h"

#include <QStringList>
#include <QTimer>

/// Passes the tasks of one owner at a time between the GUI thread and the records on the disk. No function waits; changes
/// are written in the order in which they are made.
class SubmitLedger : public QObject
{
    Q_OBJECT

public:
    /// @param folder holds the database; created if missing.
    explicit SubmitLedger(const QString& folder);

    /// Reads the owner's tasks; Loaded() follows, after some time if the database cannot be read at first.
    void Begin(const QString& owner);

    /// Forgets the owner: no further answer about their tasks follows.
    void End();

    /// Creates a task for a scene; Added() or Refused() follows.
    void Add(const QString& scene, int priority);
    bool IsAdding(const QString& scene) const { return m_adding.contains(scene); }

    /// @param withWork whether the results of the stages have changed as well.
    void Save(const QVector<SubmitTask>& tasks, bool withWork = false);
    void Remove(const QVector<qint64>& tasks);

    /// Deletes the packages of tasks that are not recorded: a client that was killed may have left some behind.
    void Sweep(const QString& packages);

signals:
    /// The database was unusable and has been kept under another name; the tasks begin anew.
    void Replaced(const QString& keptAs);
    void Loaded(const QVector<SubmitTask>& tasks);
    void Added(const SubmitTask& task);
    /// @param reason a sentence for the user.
    void Refused(const QString& scene, const QString& reason);

private:
    void Load();
    void HandleAdded(const QString& scene, const std::optional<SubmitTask>& task, const TaskMessage& error);

    QString m_owner;
    int m_session = 0; // counts the owners; answers for an earlier one are dropped
    QStringList m_adding;
    QTimer m_pause; // before the tasks are loaded again
    WorkerThread<SubmitRecords> m_records;
};
