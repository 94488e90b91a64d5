#pragma once

#include "farm/base/schema.h"

#include <vector>

namespace farm {

/// Every `step`-th frame from `first` to at most `last`; frames are numbered from 1.
struct FrameRange
{
    int first = 1;
    int last = 1;
    int step = 1;

    int Count() const { return (last - first) / step + 1; }
};

/// The same frames as ascending ranges that do not overlap; the `last` of each is one of its frames.
std::vector<FrameRange> Disjoint(const std::vector<FrameRange>& ranges);

/// The number of frames in ranges that do not overlap.
int FrameCount(const std::vector<FrameRange>& ranges);

/// Gives a new job its ranges, which must not overlap, and its frames: all of them, or the first, the middle and the last
/// one when it is a prerender job. These three are called early: they are rendered first, so that a mistake shows soon.
void AddFrames(
    SQLite::Database& connection, std::int64_t job, const std::vector<FrameRange>& ranges, bool prerender);

/// Adds the frames of the jobs' ranges that the jobs do not have yet. @param jobs is a JSON array of keys.
void AddMissingFrames(SQLite::Database& connection, const QString& jobs, std::int64_t now);

/// The ranges of a job in ascending order.
std::vector<FrameRange> RangesOf(SQLite::Database& connection, std::int64_t job);

} // namespace farm
