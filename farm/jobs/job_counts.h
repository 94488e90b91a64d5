#pragma once

#include "farm/jobs/job_filter.h"

#include <vector>

namespace farm {

/// Counts the jobs of an account that meet conditions, and finds those at a place of their list, without reading them all.
/// The database keeps the number of jobs of each kind for each block of running numbers, and for blocks of blocks; a
/// block is opened only when the place is inside it or when it is not known which of its jobs meet a bound of time.
/// Use it within one Database::Read(). Conditions on number, name and ids are not considered.
class JobCounts
{
public:
    JobCounts(SQLite::Database& connection, std::int64_t account, const JobConditions& conditions);

    std::int64_t Total();
    /// The running numbers of the jobs at index `offset` and following of the list, which begins with the highest
    /// number.
    std::vector<std::int64_t> Numbers(std::int64_t offset, std::int64_t count);

private:
    /// A sequence of blocks of 2^shift running numbers each.
    struct Blocks
    {
        int shift = 0;
        std::int64_t first = 0;
        std::int64_t last = 0;

        /// The smaller blocks inside one of the blocks.
        Blocks Inside(std::int64_t block) const;
    };
    static Blocks All();

    SQLite::Statement Query(const Blocks& blocks);
    std::int64_t Count(const Blocks& blocks);
    std::int64_t Count(const Blocks& blocks, SQLite::Statement& row);
    std::int64_t CountJobs(std::int64_t block);
    void Collect(
        const Blocks& blocks, std::int64_t skip, std::size_t most, std::vector<std::int64_t>& numbers);
    void CollectJobs(
        std::int64_t block, std::int64_t skip, std::size_t most, std::vector<std::int64_t>& numbers);

    SQLite::Database& m_connection;
    const JobFilter m_jobs;
    const CountFilter m_counts;
};

} // namespace farm
