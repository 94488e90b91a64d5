#pragma once

#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_store.h"
#include "host/rendercore/download/order_desk.h"
#include "host/rendercore/download/transfer_schedule.h"
#include "host/rendercore/farm_access.h"

#include <QObject>
#include <QTimer>

#include <map>
#include <memory>
#include <set>

class FileChecks;
class FileDownload;
struct DownloadOutcome;

/// The transfers of one owner at a time, with their disk and network; lives in a thread of its own. What the GUI thread
/// wants is done in the order in which it was said.
class DownloadWorker : public QObject
{
    Q_OBJECT

public:
    /// @param file the database, which exists.
    DownloadWorker(const QString& file, const DownloadLimits& limits);
    ~DownloadWorker() override;

    /// @param session number of the owner's stay; tells the receiver whom the tasks belong to.
    void SetAccess(const FarmAccess& access, int session);
    /// The receiver has taken the tasks that came, and has time for more.
    void LoadOn();
    void TakeOrders();

    // The tasks have been changed on the disk.

    void Stopped(const TaskIds& ids);
    void Resumed(const TaskIds& ids);
    void Reset(const TaskIds& ids);
    void Removed(const DownloadTasks& tasks);

signals:
    void Came(int session, const DownloadTasks& tasks);
    void Changed(const DownloadChanges& changes);
    void Finished(const QString& file);

private:
    void Prepare();
    void Load();
    void LoadSome();
    bool CanWork() const;

    void Pump();
    bool BeginNext();
    void Begin(const DownloadTask& task);
    void Abort(qint64 id);
    void AbortAll();
    void End(qint64 id, const DownloadOutcome& outcome);
    void Complete(DownloadTask task);
    void Postpone(const DownloadTask& task, int progress, const QString& message, int retryAfter);
    void Fail(DownloadTask task, const QString& message);
    void Rename(DownloadTask task);
    void AskAnew(const DownloadTask& task);
    void SignOut();

    void TakeList(const DownloadOrder& order, const FarmFiles& files);
    void DropOrder(const DownloadOrder& order, const QString& reason);
    void ReleaseOutdated(const QString& job, const QStringList& names);
    void Repair(qint64 id);

    DownloadTasks ReportCurrent(const TaskIds& ids);
    void StartOver(const DownloadTasks& tasks);
    void Report(const DownloadTasks& tasks);
    void Store(const DownloadTask& task);

    QString m_file;
    DownloadLimits m_limits;
    std::unique_ptr<DownloadStore> m_store;
    std::unique_ptr<HttpTransport> m_transport;
    std::unique_ptr<OrderDesk> m_desk;
    std::unique_ptr<FileChecks> m_checks;
    FarmAccess m_access;
    int m_session = 0;
    bool m_signedOut = false; // the farm has said so
    bool m_loading = false;
    qint64 m_loaded = 0; // the last task that was loaded
    qint64 m_cursor = 0; // up to here all waiting tasks have had their turn, or are in the schedule
    TransferSchedule m_schedule;
    std::map<qint64, std::unique_ptr<FileDownload>> m_active;
    std::map<QString, std::set<qint64>> m_outdated; // by job: tasks that wait for the farm's new list
    std::set<qint64> m_damaged;                     // tasks that get their second and last try
    QTimer m_wake;
};
