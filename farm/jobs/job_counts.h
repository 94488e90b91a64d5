#pragma once

#include "farm/jobs/job_filter.h"

#include <map>
#include <utility>
#include <vector>

namespace farm {

/// Counts the jobs of an account that meet conditions, and finds those at an offset in their list, without reading them
/// all. The database keeps the number of jobs of each kind for each block of running numbers, and for blocks of blocks;
/// a block is opened only when the offset is inside it, or when it is not known which of its jobs meet a bound of time.
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
    /// 2^shift running numbers.
    struct Block
    {
        int shift = 0;
        std::int64_t place = 0;   // among the blocks of its size
        std::int64_t most = 0;    // jobs that may meet the conditions
        std::int64_t certain = 0; // those of them that do
    };
    using Blocks = std::vector<Block>;

    Blocks All();
    Blocks Inside(const Block& block);
    Blocks Read(int shift, std::int64_t first, std::int64_t last);
    /// The running numbers of a smallest block's jobs, the highest first.
    std::vector<std::int64_t> Jobs(const Block& block);
    std::int64_t Count(const Blocks& blocks);
    std::int64_t Count(const Block& block);
    std::int64_t Open(const Block& block);
    void Collect(
        const Blocks& blocks, std::int64_t skip, std::size_t most, std::vector<std::int64_t>& numbers);

    const JobFilter m_jobFilter;
    const CountFilter m_countFilter;
    SQLite::Statement m_jobs;
    SQLite::Statement m_blocks;
    std::map<std::pair<int, std::int64_t>, std::int64_t> m_opened; // jobs by shift and place of a block
};

} // namespace farm
