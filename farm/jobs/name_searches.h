#pragma once

#include "farm/jobs/job_filter.h"
#include "farm/jobs/number_set.h"

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace farm {

/// Finds jobs by a part of their names. Results of expensive searches are kept; as names never change, later ones for the
/// same text look only at the jobs that have changed since. Thread-safe.
class NameSearches
{
public:
    struct Found
    {
        std::int64_t total = 0;
        std::vector<std::int64_t> numbers;
    };

    /// The running numbers at index `offset` and following in the list of jobs that meet the conditions, which contain a
    /// part of the name, beginning with the highest number. Call it within a Database::Read().
    Found Find(SQLite::Database& connection, std::int64_t account, const JobConditions& conditions,
        std::int64_t offset, std::int64_t count);

private:
    struct Search
    {
        std::mutex mutex;
        NumberSet numbers;
        /// The last entry of `job_changes` that the numbers include; -1 before the first search.
        std::int64_t lastChange = -1;
        bool isExpensive = false;
    };
    using Kept = std::list<std::pair<std::string, std::shared_ptr<Search>>>;

    std::shared_ptr<Search> Take(const std::string& key);
    void Forget(const std::string& key);

    std::mutex m_mutex;
    Kept m_kept; // most recently used first
};

} // namespace farm
