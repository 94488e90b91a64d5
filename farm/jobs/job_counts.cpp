#include "farm/jobs/job_counts.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace farm {

namespace {

// The database has counts for these blocks only, see the table `count_shifts`.
constexpr int SmallestShift = 6;
constexpr int LargestShift = 24;
constexpr int ShiftStep = 3;

} // namespace

JobCounts::JobCounts(SQLite::Database& connection, std::int64_t account, const JobConditions& conditions)
    : m_jobFilter(FilterFor(account, conditions))
    , m_countFilter(CountFilterFor(account, conditions))
    , m_jobs(connection,
          "SELECT number FROM jobs WHERE " + m_jobFilter.where
              + " AND number BETWEEN ? AND ? ORDER BY number DESC")
    , m_blocks(connection,
          "SELECT block, sum(jobs), sum(iif(" + m_countFilter.all + ", jobs, 0)) FROM job_counts WHERE "
              + m_countFilter.some.where
              + " AND shift = ? AND block BETWEEN ? AND ? GROUP BY block ORDER BY block DESC")
{
    m_jobFilter.BindTo(m_jobs);
    m_countFilter.some.BindTo(m_blocks);
}

std::int64_t JobCounts::Total()
{
    return Count(All());
}

std::vector<std::int64_t> JobCounts::Numbers(std::int64_t offset, std::int64_t count)
{
    std::vector<std::int64_t> numbers;
    Collect(All(), offset, std::size_t(count), numbers);
    return numbers;
}

JobCounts::Blocks JobCounts::All()
{
    return Read(LargestShift, 0, std::numeric_limits<std::int32_t>::max());
}

JobCounts::Blocks JobCounts::Inside(const Block& block)
{
    const std::int64_t first = block.place << ShiftStep;
    return Read(block.shift - ShiftStep, first, first + (1 << ShiftStep) - 1);
}

JobCounts::Blocks JobCounts::Read(int shift, std::int64_t first, std::int64_t last)
{
    int index = int(m_countFilter.some.texts.size());
    m_blocks.bind(++index, shift);
    m_blocks.bind(++index, first);
    m_blocks.bind(++index, last);
    Blocks blocks;
    while (m_blocks.executeStep())
        blocks.push_back({shift, m_blocks.getColumn(0).getInt64(), m_blocks.getColumn(1).getInt64(),
            m_blocks.getColumn(2).getInt64()});
    m_blocks.reset();
    return blocks;
}

std::vector<std::int64_t> JobCounts::Jobs(const Block& block)
{
    int index = int(m_jobFilter.texts.size());
    m_jobs.bind(++index, block.place << SmallestShift);
    m_jobs.bind(++index, ((block.place + 1) << SmallestShift) - 1);
    std::vector<std::int64_t> numbers;
    while (m_jobs.executeStep())
        numbers.push_back(m_jobs.getColumn(0).getInt64());
    m_jobs.reset();
    return numbers;
}

std::int64_t JobCounts::Count(const Blocks& blocks)
{
    return std::accumulate(blocks.begin(), blocks.end(), std::int64_t {0},
        [this](std::int64_t count, const Block& block) { return count + Count(block); });
}

std::int64_t JobCounts::Count(const Block& block)
{
    return block.certain == block.most ? block.most : Open(block);
}

std::int64_t JobCounts::Open(const Block& block)
{
    const std::pair key {block.shift, block.place};
    const auto opened = m_opened.find(key);
    if (opened != m_opened.end())
        return opened->second;
    const std::int64_t count
        = block.shift == SmallestShift ? std::int64_t(Jobs(block).size()) : Count(Inside(block));
    return m_opened.emplace(key, count).first->second;
}

void JobCounts::Collect(
    const Blocks& blocks, std::int64_t skip, std::size_t most, std::vector<std::int64_t>& numbers)
{
    for (const Block& block : blocks) {
        if (numbers.size() == most)
            return;
        const std::int64_t count = skip > 0 ? Count(block) : 0;
        if (skip > 0 && count <= skip) {
            skip -= count;
            continue;
        }
        if (block.shift > SmallestShift) {
            Collect(Inside(block), skip, most, numbers);
        } else {
            const std::vector<std::int64_t> jobs = Jobs(block);
            const auto first = jobs.begin() + skip;
            const auto rest = std::min(std::size_t(jobs.end() - first), most - numbers.size());
            numbers.insert(numbers.end(), first, first + std::ptrdiff_t(rest));
        }
        skip = 0;
    }
}

} // namespace farm
