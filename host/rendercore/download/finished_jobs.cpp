#include "host/rendercore/download/finished_jobs.h"

#include "host/rendercore/attempt.h"
#include "host/rendercore/download/download_store.h"

#include <QSet>

#include <utility>

FinishedJobs::FinishedJobs(DownloadStore* store, Report report)
    : m_store(store)
    , m_report(std::move(report))
{
}

void FinishedJobs::SetOwner(const QString& owner)
{
    m_owner = owner;
    m_arrived.clear();
}

void FinishedJobs::Count(const DownloadTask& task)
{
    m_arrived[task.job] = {task.file, m_arrived.value(task.job).count + 1};
}

void FinishedJobs::ReportSettled(const DownloadTasks& tasks)
{
    QSet<QString> jobs;
    for (const DownloadTask& task : tasks)
        jobs.insert(task.job);
    for (const QString& job : qAsConst(jobs)) {
        const auto arrived = m_arrived.constFind(job);
        bool isWaiting = true;
        if (arrived == m_arrived.cend()
            || !Attempt("count downloads", [&] { isWaiting = m_store->HasWaiting(m_owner, job); })
            || isWaiting)
            continue;
        m_report(arrived->file, arrived->count);
        m_arrived.erase(arrived);
    }
}
