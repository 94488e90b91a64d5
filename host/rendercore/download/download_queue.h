#pragma once

#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_store.h"
#include "host/rendercore/farm_access.h"

#include <QObject>
#include <QStringList>
#include <QThread>
#include <QVariantMap>

#include <functional>
#include <memory>

class DownloadWorker;

using DownloadWish = std::function<void(DownloadWorker*)>;
Q_DECLARE_METATYPE(DownloadWish)

/// The files that are on their way from the farm, as the window sees them: on the GUI thread, for the account that is
/// signed in. Whatever touches disk or network happens in a thread of its own; only what people want is written at once.
class DownloadQueue : public QObject
{
    Q_OBJECT

public:
    /// @param folder for the database; made when it is missing. Without a database that can be used there are no
    /// downloads, and the log says why.
    explicit DownloadQueue(
        const QString& folder, const DownloadLimits& limits = {}, QObject* parent = nullptr);

    /// Breaks off what is under way; it goes on from there in the next run.
    ~DownloadQueue() override;

    /// Another owner has other tasks. Without a farm that can be reached the tasks wait where they are.
    void SetAccess(const FarmAccess& access);

    /// The live table by task id; see VTRenderCoreInterface::GetDownloadTasks(). Valid as long as this object. Ids are
    /// numbers of ten digits in the order of arrival.
    QVariantMap* Tasks() { return &m_tasks; }

    /// Makes a task of every file of every job; see VTRenderCoreInterface::TriggerJobIdType(). The orders are on the disk
    /// when this returns.
    void Order(const QVariantMap& orders);

    // Ids that are none of a task are ignored. What was wanted is on the disk when these return.

    /// Those that wait or are on their way rest until they are resumed.
    void Stop(const QStringList& ids);
    /// Those that are stopped or have failed go on.
    void Resume(const QStringList& ids);
    /// From the start, whatever their state; a finished file stays until the new one is complete.
    void Redownload(const QStringList& ids);
    /// Finished files stay.
    void Remove(const QStringList& ids);

signals:
    /// Tasks have come or gone.
    void ListChanged();
    /// A file is complete and has its name. Once a file.
    void FileFinished(const QString& file);

    /// For the worker, in its thread and after what it was told before.
    void Told(const DownloadWish& wish);

private:
    bool Write(const std::function<void()>& work) const;
    void Change(const QStringList& ids, bool (*wish)(DownloadTask& task),
        void (DownloadWorker::*then)(const TaskIds& ids));
    TaskIds Known(const QStringList& ids) const;
    void TakeTasks(int session, const DownloadTasks& tasks);
    void TakeChanges(const DownloadChanges& changes);

    QVariantMap m_tasks;
    FarmAccess m_access;
    int m_session = 0; // grows with each change of the owner
    std::unique_ptr<DownloadStore> m_store;
    DownloadWorker* m_worker = nullptr; // ends with its thread; null without a database
    QThread m_thread;
};
