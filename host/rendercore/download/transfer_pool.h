#pragma once

#include "host/farmclient/farm_access.h"
#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_listener.h"
#include "host/rendercore/download/transfer_schedule.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <map>
#include <memory>
#include <optional>
#include <set>

class DownloadStore;
class FileDownload;
struct DownloadOutcome;

/// Runs the transfers of one owner, a few at a time, and records the results in their tasks.
class TransferPool : public QObject
{
    Q_OBJECT

public:
    /// @param store, transport, listener must outlive this object.
    TransferPool(DownloadStore* store, HttpTransport* transport, const DownloadListener* listener,
        const DownloadLimits& limits);
    ~TransferPool() override;

    /// Aborts all transfers; the next ones begin after Start().
    void Reset(const FarmAccess& access);

    /// Starts transfers from now on while the farm can be reached.
    void Start();

    /// Aborts all transfers until the next Reset().
    void Stop();

    /// Aborts all transfers and begins again with the first waiting task, since their destinations change.
    void Rewind();

    /// Aborts all transfers and forgets all tasks, since their numbers will be given to others.
    void BeginAnew();

    /// Retries tasks at once, regardless of earlier failures.
    void RetryNow(const DownloadTasks& tasks);
    /// Transfers the tasks' files again, from the first byte.
    void StartOver(const DownloadTasks& tasks);
    /// Aborts a transfer; the data received so far stay on the disk.
    void Abort(qint64 id);
    /// Aborts transfers and deletes the data received so far.
    void Discard(const DownloadTasks& tasks);

    /// Percent of the running transfer of a task; none when it is not running.
    std::optional<int> Progress(qint64 id) const;

    /// Lets the tasks that wait for a new list of their job's files continue or fail.
    /// @param names of the files on the list.
    void HandleList(const QString& job, const QStringList& names);

signals:
    /// A task has finished or failed; this is recorded.
    void Settled(const DownloadTask& task);
    /// The farm no longer has a file as it was listed; the order has been reopened.
    void ListOutdated();

private:
    void Wake() { m_wake.start(0); }
    void Fill();
    bool BeginNext();
    void Begin(const DownloadTask& task);
    void AbortAll();
    void HandleEnd(qint64 id, const DownloadOutcome& outcome);
    void HandleDamage(const DownloadTask& task, const TaskMessage& message);
    void Complete(DownloadTask task);
    void WaitForDisk(const DownloadTask& task, int progress, const DownloadOutcome& outcome);
    void NoteUsable(const DownloadTask& task);
    void Postpone(const DownloadTask& task, int progress, const TaskMessage& message, int retryAfter = 0);
    void Fail(DownloadTask task, const TaskMessage& message);
    void Rename(DownloadTask task);
    void AskForNewList(const DownloadTask& task, const TaskMessage& message);

    DownloadStore* m_store;
    HttpTransport* m_transport;
    const DownloadListener* m_listener;
    DownloadLimits m_limits;
    FarmAccess m_access;
    bool m_isStarted = false;
    TransferSchedule m_schedule;
    QElapsedTimer m_clock; // measures time for the schedule
    qint64 m_cursor = 0;   // all waiting tasks up to here have been started or are in the schedule
    std::map<qint64, std::unique_ptr<FileDownload>> m_active;
    std::map<QString, std::set<qint64>> m_outdated; // by job: tasks that wait for a new list of its files
    Backoff m_diskBackoff;
    std::set<qint64> m_waitForDisk; // tasks whose files could not be saved
    std::set<QString> m_unusable;   // folders that the user has been told about
    std::set<qint64> m_damaged;     // tasks on their second and last attempt
    QTimer m_wake;
};
