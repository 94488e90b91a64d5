#pragma once

#include "farm/base/schema.h"

#include <vector>

namespace farm {

/// Frames with these numbers and those between, from 1.
struct FrameRange
{
    int first = 1;
    int last = 1;
};

/// The same frames in ascending ranges that have none in common.
std::vector<FrameRange> Disjoint(std::vector<FrameRange> ranges);

/// How many frames disjoint ranges hold.
int FrameCount(const std::vector<FrameRange>& ranges);

/// Gives a new job its ranges, which are disjoint, and their frames; of a prerender job the first, the middle and the
/// last one.
void AddFrames(
    SQLite::Database& connection, std::int64_t job, const std::vector<FrameRange>& ranges, bool prerender);

/// Adds the frames of the jobs' ranges that are missing. @param jobs is a JSON array of keys.
void AddMissingFrames(SQLite::Database& connection, const QString& jobs);

std::vector<FrameRange> RangesOf(SQLite::Database& connection, std::int64_t job);

} // namespace farm
