#include "farm/jobs/job_counts.h"

#include <limits>

namespace farm {

namespace {

// The database has counts for these blocks only, see the table `count_shifts`.
constexpr int SmallestShift = 6;
constexpr int LargestShift = 24;
constexpr int ShiftStep = 6;

std::string NumbersOf(std::int64_t block)
{
    const std::int64_t first = block << SmallestShift;
    const std::int64_t last = first + (std::int64_t {1} << SmallestShift) - 1;
    return " AND number BETWEEN " + std::to_string(first) + " AND " + std::to_string(last);
}

} // namespace

JobCounts::JobCounts(SQLite::Database& connection, std::int64_t account, const JobConditions& conditions)
    : m_connection(connection)
    , m_jobs(FilterFor(account, conditions))
    , m_counts(CountFilterFor(account, conditions))
{
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
    return {LargestShift, 0, std::numeric_limits<std::int32_t>::max()};
}

JobCounts::Blocks JobCounts::Blocks::Inside(std::int64_t block) const
{
    return {shift - ShiftStep, block << ShiftStep, (block << ShiftStep) + (1 << ShiftStep) - 1};
}

// Each row is a block, the number of its jobs that may meet the conditions, and the number of those that certainly do.
SQLite::Statement JobCounts::Query(const Blocks& blocks)
{
    SQLite::Statement query(m_connection,
        "SELECT block, sum(jobs), sum(iif(" + m_counts.all + ", jobs, 0)) FROM job_counts WHERE "
            + m_counts.some.where + " AND shift = " + std::to_string(blocks.shift) + " AND block BETWEEN "
            + std::to_string(blocks.first) + " AND " + std::to_string(blocks.last)
            + " GROUP BY block ORDER BY block DESC");
    m_counts.some.BindTo(query);
    return query;
}

std::int64_t JobCounts::Count(const Blocks& blocks)
{
    SQLite::Statement rows = Query(blocks);
    std::int64_t count = 0;
    while (rows.executeStep())
        count += Count(blocks, rows);
    return count;
}

std::int64_t JobCounts::Count(const Blocks& blocks, SQLite::Statement& row)
{
    const std::int64_t block = row.getColumn(0).getInt64();
    const std::int64_t most = row.getColumn(1).getInt64();
    if (row.getColumn(2).getInt64() == most)
        return most;
    return blocks.shift == SmallestShift ? CountJobs(block) : Count(blocks.Inside(block));
}

std::int64_t JobCounts::CountJobs(std::int64_t block)
{
    SQLite::Statement query(
        m_connection, "SELECT count(*) FROM jobs WHERE " + m_jobs.where + NumbersOf(block));
    m_jobs.BindTo(query);
    return query.executeStep() ? query.getColumn(0).getInt64() : 0;
}

void JobCounts::Collect(
    const Blocks& blocks, std::int64_t skip, std::size_t most, std::vector<std::int64_t>& numbers)
{
    SQLite::Statement rows = Query(blocks);
    while (numbers.size() < most && rows.executeStep()) {
        const std::int64_t count = skip > 0 ? Count(blocks, rows) : 0;
        if (skip > 0 && count <= skip) {
            skip -= count;
            continue;
        }
        const std::int64_t block = rows.getColumn(0).getInt64();
        if (blocks.shift == SmallestShift)
            CollectJobs(block, skip, most, numbers);
        else
            Collect(blocks.Inside(block), skip, most, numbers);
        skip = 0;
    }
}

void JobCounts::CollectJobs(
    std::int64_t block, std::int64_t skip, std::size_t most, std::vector<std::int64_t>& numbers)
{
    SQLite::Statement query(m_connection,
        "SELECT number FROM jobs WHERE " + m_jobs.where + NumbersOf(block)
            + " ORDER BY number DESC LIMIT -1 OFFSET " + std::to_string(skip));
    m_jobs.BindTo(query);
    while (numbers.size() < most && query.executeStep())
        numbers.push_back(query.getColumn(0).getInt64());
}

} // namespace farm
