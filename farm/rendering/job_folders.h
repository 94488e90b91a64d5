#pragma once

#include "farm/base/schema.h"

#include <QString>

#include <functional>
#include <mutex>
#include <optional>
#include <set>

namespace farm {

/// Frees the files of deleted jobs and, in the folders of jobs that have ended or are paused, the scene and what
/// renderers have left behind. What has to be freed is marked in the database, so that a restarted farm goes on with
/// it. A job with runs in work is left for later. Thread-safe.
class JobFolders
{
public:
    using GoOn = std::function<bool()>;

    /// @param folder holds the jobs' folders.
    JobFolders(Database& database, const QString& folder);

    /// Frees the files of deleted jobs: folder, frame logs and list of scene files. `goOn` is called before each file; false
    /// stops the work. Returns whether all is done; otherwise call it again later.
    bool FreeDeleted(const GoOn& goOn);
    /// Removes the leftovers in the folders of jobs that do not render, and their scenes, which may be copies.
    bool Tidy(const GoOn& goOn);
    /// Removes the folders of runs whose ends an earlier process has recorded, from the folders of jobs that go on.
    bool RemoveEndedRuns(const GoOn& goOn);

private:
    struct Job
    {
        std::int64_t key = 0;
        QString id;
    };

    std::optional<Job> Next(const char* jobs, std::int64_t after);
    bool Each(const char* jobs, const GoOn& goOn, const std::function<bool(const Job&)>& work);
    bool Free(const Job& job, const GoOn& goOn);
    bool TidyOne(const Job& job);
    bool RemoveEndedRunsOf(const Job& job, const GoOn& goOn);
    bool SetAside(const char* jobs, const Job& job, const QStringList& names);
    bool RemoveSetAside(const GoOn& goOn);
    bool ForgetFiles(std::int64_t job, const GoOn& goOn);

    Database& m_database;
    QString m_folder;
    std::mutex m_removing;
    std::set<QString> m_unremovable;
};

} // namespace farm
