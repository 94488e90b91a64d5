#pragma once

#include "host/farmclient/farm_access.h"
#include "host/rendercore/download/command_runner.h"
#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_listener.h"
#include "host/rendercore/download/download_store.h"
#include "host/rendercore/download/file_checks.h"
#include "host/rendercore/download/finished_cleanup.h"
#include "host/rendercore/download/finished_jobs.h"
#include "host/rendercore/download/order_desk.h"
#include "host/rendercore/download/task_loader.h"
#include "host/rendercore/download/transfer_pool.h"

#include <functional>

/// Carries out the commands of the GUI thread for one owner at a time: loads tasks, gets orders answered and files
/// transferred. It alone uses the database and the disk. Lives in a thread of its own; every function is called there, in
/// the order of the user's commands.
class DownloadWorker
{
public:
    /// @param file the path of the database.
    DownloadWorker(const QString& file, const DownloadListener& listener, const DownloadLimits& limits);

    /// @param session is passed to the listener with the tasks that are loaded for this owner.
    void SetAccess(const FarmAccess& access, int session);
    /// Continues loading after the listener has processed the tasks that were added last.
    void LoadMore() { m_loader.Continue(); }

    // The user's commands. Each is repeated until it is on the disk, and then takes effect.

    void Order(const DownloadOrders& orders);
    void Stop(const TaskIds& ids);
    void Resume(const TaskIds& ids);
    void RetryFailed();
    void Redownload(const TaskIds& ids);
    void Remove(const TaskIds& ids);
    void ClearFinished() { m_cleanup.ClearAll(); }
    /// @param days see FinishedCleanup::SetKeepDays().
    void SetKeepDays(int days) { m_cleanup.SetKeepDays(days); }

private:
    using Command = std::function<bool(DownloadTask& task)>;
    using Effect = std::function<void(const DownloadTasks& tasks)>;

    void Change(const TaskIds& ids, const Command& command, const Effect& effect);
    void FollowFolder();
    void HandleRefused(const DownloadOrder& order, const QString& reason);
    void HandleApplied(const DownloadOrder& order, const OrderOutcome& outcome);
    void Report(const DownloadTasks& tasks) const;

    DownloadStore m_store;
    DownloadListener m_listener;
    HttpTransport m_transport;
    TaskLoader m_loader;
    OrderDesk m_desk;
    TransferPool m_pool;
    FileChecks m_checks;
    FinishedJobs m_jobs;
    FinishedCleanup m_cleanup;
    FarmAccess m_access;
    int m_session = 0;
    CommandRunner m_commands; // declared last: commands use all of the above
};
