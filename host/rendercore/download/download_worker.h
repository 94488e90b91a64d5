#pragma once

#include "host/farmclient/farm_access.h"
#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_listener.h"
#include "host/rendercore/download/download_store.h"
#include "host/rendercore/download/file_checks.h"
#include "host/rendercore/download/order_desk.h"
#include "host/rendercore/download/task_loader.h"
#include "host/rendercore/download/transfer_pool.h"

#include <memory>

/// Carries out the commands of the GUI thread for one owner at a time: loads tasks, gets orders answered and files
/// transferred. Lives in a thread of its own; every function is called there, in the order of the user's commands.
class DownloadWorker
{
public:
    DownloadWorker(
        std::unique_ptr<DownloadStore> store, const DownloadListener& listener, const DownloadLimits& limits);

    /// @param session is passed to the listener with the tasks that are loaded for this owner.
    void SetAccess(const FarmAccess& access, int session);
    /// Continues loading after the listener has processed the tasks that were added last.
    void LoadMore() { m_loader.Continue(); }
    /// Looks for new orders on the disk.
    void AskForOrders() { m_desk.RetryNow(); }

    // The user's commands have been applied to these tasks on the disk.

    void HandleStopped(const TaskIds& ids);
    void HandleResumed(const TaskIds& ids);
    void HandleReset(const TaskIds& ids);
    void HandleRemoved(const DownloadTasks& tasks);

private:
    void HandleApplied(const DownloadOrder& order, const OrderOutcome& outcome);
    void Repair(qint64 id);
    DownloadTasks ReportCurrent(const TaskIds& ids);
    void Report(const DownloadTasks& tasks) const;

    std::unique_ptr<DownloadStore> m_store;
    DownloadListener m_listener;
    HttpTransport m_transport;
    TaskLoader m_loader;
    OrderDesk m_desk;
    TransferPool m_pool;
    FileChecks m_checks;
    FarmAccess m_access;
    int m_session = 0;
};
