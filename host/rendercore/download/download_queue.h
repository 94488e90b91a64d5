#pragma once

#include "host/farmclient/farm_access.h"
#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_store.h"
#include "host/rendercore/download/download_worker.h"
#include "host/rendercore/worker_thread.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>

/// The downloads of the account that is signed in, as the window sees them. Lives on the GUI thread, where it saves the
/// user's commands; a worker thread does everything else on disk and network.
class DownloadQueue : public QObject
{
    Q_OBJECT

public:
    /// @param folder for the database; created if missing. Without a usable database there are no downloads, and the log
    /// says why.
    explicit DownloadQueue(
        const QString& folder, const DownloadLimits& limits = {}, QObject* parent = nullptr);

    /// Aborts the transfers; the next queue on this folder resumes them.
    ~DownloadQueue() override;

    /// Each owner has tasks of their own. Without a farm the tasks wait.
    void SetAccess(const FarmAccess& access);

    /// The live map by task id; see VTRenderCoreInterface::GetDownloadTasks(). Valid as long as this object. Ids are
    /// numbers of ten digits in the order of arrival.
    QVariantMap* Tasks() { return &m_tasks; }

    /// Creates a task for every file of every job; see VTRenderCoreInterface::TriggerJobIdType(). The orders are on the
    /// disk when this returns.
    void Order(const QVariantMap& orders);

    // Unknown ids are ignored. The commands are on the disk when these functions return.

    /// Stops waiting and running tasks until they are resumed.
    void Stop(const QStringList& ids);
    /// Lets stopped and failed tasks continue from the data received so far.
    void Resume(const QStringList& ids);
    /// Downloads whole files again, whatever their state. A finished file stays until the new one is complete.
    void Redownload(const QStringList& ids);
    /// Removes tasks. Finished files stay.
    void Remove(const QStringList& ids);

signals:
    /// Tasks have been added or removed.
    void ListChanged();
    /// A file is complete and in its place. Emitted once for each file.
    void FileFinished(const QString& file);

private:
    bool Save(const std::function<void()>& change) const;
    void Change(const QStringList& ids, bool (*command)(DownloadTask& task),
        void (DownloadWorker::*handle)(const TaskIds& ids));
    TaskIds Known(const QStringList& ids) const;
    void HandleAdded(int session, const DownloadTasks& tasks);
    void HandleChanged(const DownloadChanges& changes);

    QVariantMap m_tasks;
    FarmAccess m_access;
    int m_session = 0;                      // grows with each change of the owner
    std::unique_ptr<DownloadStore> m_store; // null when the database cannot be used; so is the worker
    std::unique_ptr<WorkerThread<DownloadWorker>> m_worker;
};
