#pragma once

#include "host/farmclient/farm_access.h"
#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_worker.h"
#include "host/rendercore/worker_thread.h"

#include <QHash>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <memory>

/// The downloads of the account that is signed in, as the window sees them. Lives on the GUI thread and never waits: a
/// worker thread does everything on disk and network, in the order of the commands. A command that cannot be recorded is
/// repeated until it can, and the user is told.
class DownloadQueue : public QObject
{
    Q_OBJECT

public:
    /// @param folder for the database; created if missing.
    explicit DownloadQueue(
        const QString& folder, const DownloadLimits& limits = {}, QObject* parent = nullptr);

    /// Records the commands given so far and aborts the transfers; the next queue on this folder resumes them.
    ~DownloadQueue() override;

    /// Sets owner, farm and download folder. Each owner has tasks of their own. Without a farm the tasks wait.
    /// Unfinished tasks move to the new folder.
    void SetAccess(const FarmAccess& access);

    /// The live map by task id; see VTRenderCoreInterface::GetDownloadTasks(). Valid as long as this object. Ids are
    /// numbers of ten digits in the order of arrival.
    QVariantMap* Tasks() { return &m_tasks; }

    /// The id with this index in the order of the map; empty when there is none. Unlike walking along the map, it takes
    /// the same time however long the list is.
    QString IdAt(int index) const;

    /// Puts the messages in the map into the current language.
    void Retranslate();

    /// @param days for which finished tasks stay in the list; 0 for ever.
    void SetKeepDays(int days);

    /// Creates a task for every file of every job; see VTRenderCoreInterface::TriggerJobIdType().
    void Order(const QVariantMap& orders);

    // Unknown ids are ignored.

    /// Stops waiting and running tasks until they are resumed.
    void Stop(const QStringList& ids);
    /// Lets stopped and failed tasks continue from the data received so far.
    void Resume(const QStringList& ids);
    /// Resumes all failed tasks, or tells the user that there are none.
    void RetryFailed();
    /// Downloads whole files again, whatever their state. A finished file stays until the new one is complete.
    void Redownload(const QStringList& ids);
    /// Removes tasks. Finished files stay.
    void Remove(const QStringList& ids);
    /// Removes all finished tasks.
    void ClearFinished();

signals:
    /// Tasks have been added or removed.
    void ListChanged();
    /// Files of a job have arrived, and no further file of the job is on its way.
    /// @param file is the path of the latest. @param count is their number.
    void FilesFinished(const QString& file, int count);
    /// @param text tells the user of trouble with the disk.
    void Notice(const QString& text);

private:
    void Command(const QStringList& ids, void (DownloadWorker::*command)(const TaskIds& ids));
    TaskIds Known(const QStringList& ids) const;
    void Clear();
    void Remember(qint64 id, const TaskMessage& message);
    void HandleAdded(int session, const DownloadTasks& tasks);
    void HandleChanged(const DownloadChanges& changes);
    void HandleRemoved(const TaskIds& ids);
    void HandleReplaced(const QString& keptAs);

    QVariantMap m_tasks;
    QHash<qint64, TaskMessage> m_messages; // those that are not empty, by task
    QVector<qint64> m_order;               // the numbers of all tasks, ascending
    FarmAccess m_access;
    int m_session = 0; // grows with each change of the owner
    std::unique_ptr<WorkerThread<DownloadWorker>> m_worker;
};
