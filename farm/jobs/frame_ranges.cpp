#include "farm/jobs/frame_ranges.h"

#include <algorithm>
#include <numeric>

namespace farm {

namespace {

// All frames in the ranges of the jobs whose keys are in the JSON array ?1.
constexpr const char* WantedFrames
    = "WITH RECURSIVE wanted(job, number, last, step) AS ("
      "SELECT job, first, last, step FROM frame_ranges WHERE job IN (SELECT value FROM json_each(?1)) "
      "UNION ALL SELECT job, number + step, last, step FROM wanted WHERE number + step <= last) ";

/// Whether `frame`, the next wanted one, continues the range. Two frames with a gap between them form a range only if a
/// third one follows at the same distance.
bool Continues(const FrameRange& range, int frame, const std::vector<bool>& isWanted)
{
    const int gap = frame - range.last;
    if (range.first < range.last || gap == 1)
        return range.first == range.last || gap == range.step;
    const auto third = std::size_t(frame) + std::size_t(gap);
    return third < isWanted.size() && isWanted[third];
}

} // namespace

std::vector<FrameRange> Disjoint(const std::vector<FrameRange>& ranges)
{
    std::vector<bool> isWanted;
    for (const FrameRange& range : ranges) {
        isWanted.resize(std::max(isWanted.size(), std::size_t(range.last) + 1));
        for (int frame = range.first; frame <= range.last; frame += range.step)
            isWanted[frame] = true;
    }
    std::vector<FrameRange> disjoint;
    for (int frame = 1; frame < int(isWanted.size()); ++frame) {
        if (!isWanted[frame])
            continue;
        if (!disjoint.empty() && Continues(disjoint.back(), frame, isWanted))
            disjoint.back() = {disjoint.back().first, frame, frame - disjoint.back().last};
        else
            disjoint.push_back({frame, frame, 1});
    }
    return disjoint;
}

int FrameCount(const std::vector<FrameRange>& ranges)
{
    return std::accumulate(ranges.begin(), ranges.end(), 0,
        [](int sum, const FrameRange& range) { return sum + range.Count(); });
}

void AddFrames(
    SQLite::Database& connection, std::int64_t job, const std::vector<FrameRange>& ranges, bool prerender)
{
    for (const FrameRange& range : ranges)
        Execute(connection, "INSERT INTO frame_ranges(job, first, last, step) VALUES (?, ?, ?, ?)", job,
            range.first, range.last, range.step);
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
    SQLite::Statement query(
        connection, "SELECT first, last, step FROM frame_ranges WHERE job = ? ORDER BY first");
    Bind(query, job);
    std::vector<FrameRange> ranges;
    while (query.executeStep())
        ranges.push_back(
            {query.getColumn(0).getInt(), query.getColumn(1).getInt(), query.getColumn(2).getInt()});
    return ranges;
}

} // namespace farm
