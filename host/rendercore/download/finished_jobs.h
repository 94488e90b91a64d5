#pragma once

#include "host/rendercore/download/download_task.h"

#include <QHash>

#include <functional>

class DownloadStore;

/// Counts the files of each job that have arrived, so that the user gets one notice per job and not one per frame.
class FinishedJobs
{
public:
    /// @param file is the one that arrived last.
    using Report = std::function<void(const QString& file, int count)>;

    /// @param store must outlive this object.
    FinishedJobs(DownloadStore* store, Report report);

    /// Starts over for another owner.
    void SetOwner(const QString& owner);

    void Count(const DownloadTask& task);

    /// Reports the jobs of these tasks, unless more files of a job are on their way.
    void ReportSettled(const DownloadTasks& tasks);

private:
    struct Arrived
    {
        QString file;
        int count = 0;
    };

    DownloadStore* m_store;
    Report m_report;
    QString m_owner;
    QHash<QString, Arrived> m_arrived; // by job
};
