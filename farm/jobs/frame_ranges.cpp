#include "farm/jobs/frame_ranges.h"

#include <algorithm>
#include <numeric>

namespace farm {

namespace {

// All frames in the ranges of the jobs whose keys are in the JSON array ?1.
constexpr const char* WantedFrames
    = "WITH RECURSIVE wanted(job, number, last) AS ("
      "SELECT job, first, last FROM frame_ranges WHERE job IN (SELECT value FROM json_each(?1)) "
      "UNION ALL SELECT job, number + 1, last FROM wanted WHERE number < last) ";

} // namespace

std::vector<FrameRange> Disjoint(std::vector<FrameRange> ranges)
{
    std::sort(ranges.begin(), ranges.end(),
        [](const FrameRange& one, const FrameRange& other) { return one.first < other.first; });
    std::vector<FrameRange> disjoint;
    for (const FrameRange& range : ranges) {
        if (!disjoint.empty() && range.first <= disjoint.back().last)
            disjoint.back().last = std::max(disjoint.back().last, range.last);
        else
            disjoint.push_back(range);
    }
    return disjoint;
}

int FrameCount(const std::vector<FrameRange>& ranges)
{
    return std::accumulate(ranges.begin(), ranges.end(), 0,
        [](int sum, const FrameRange& range) { return sum + range.last - range.first + 1; });
}

void AddFrames(
    SQLite::Database& connection, std::int64_t job, const std::vector<FrameRange>& ranges, bool prerender)
{
    for (const FrameRange& range : ranges)
        Execute(connection, "INSERT INTO frame_ranges(job, first, last) VALUES (?, ?, ?)", job, range.first,
            range.last);
    const std::string sql = std::string(WantedFrames)
        + "INSERT INTO frames(job, number, early) SELECT job, number, place IN (1, (total + 1) / 2, total) "
          "FROM (SELECT job, number, row_number() OVER (ORDER BY number) AS place, count(*) OVER () AS total "
          "FROM wanted) WHERE NOT ?2 OR place IN (1, (total + 1) / 2, total)";
    Execute(connection, sql.c_str(), QStringLiteral("[%1]").arg(job), int(prerender));
}

void AddMissingFrames(SQLite::Database& connection, const QString& jobs, std::int64_t now)
{
    const std::string sql = std::string(WantedFrames)
        + "INSERT OR IGNORE INTO frames(job, number, changed_at) SELECT job, number, ?2 FROM wanted";
    Execute(connection, sql.c_str(), jobs, now);
}

std::vector<FrameRange> RangesOf(SQLite::Database& connection, std::int64_t job)
{
    SQLite::Statement query(connection, "SELECT first, last FROM frame_ranges WHERE job = ? ORDER BY first");
    Bind(query, job);
    std::vector<FrameRange> ranges;
    while (query.executeStep())
        ranges.push_back({query.getColumn(0).getInt(), query.getColumn(1).getInt()});
    return ranges;
}

} // namespace farm
