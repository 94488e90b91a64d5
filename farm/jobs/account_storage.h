#pragma once

#include "farm/base/schema.h"

#include <vector>

namespace farm {

/// The space that an account takes on the farm's disk, in bytes.
struct AccountStorage
{
    struct Job
    {
        QString id;
        std::int64_t number = 0;
        QString name;
        int status = 0;
        /// The size of the jobs' files. A file that several jobs use counts for each of them.
        std::int64_t sceneBytes = 0;
        std::int64_t pictureBytes = 0;
    };

    /// The size of the stored contents, each counted once. They and the unfinished uploads count against the quota.
    std::int64_t contents = 0;
    std::int64_t uploads = 0;
    /// The part of the contents that no job needs.
    std::int64_t unneeded = 0;
    std::int64_t pictures = 0;
    /// The jobs that use the most space, largest first.
    std::vector<Job> jobs;
    /// Whether other jobs use space, too.
    bool hasMoreJobs = false;
};

/// @param mostJobs that are listed.
AccountStorage StorageOf(Database& database, std::int64_t account, int mostJobs);

} // namespace farm
