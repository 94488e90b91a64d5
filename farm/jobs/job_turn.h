#pragma once

#include "farm/base/schema.h"

#include <cstdint>
#include <limits>

namespace farm {

/// The time of the next attempt at a frame that is passed by, because all its attempts have failed.
constexpr std::int64_t PassedBy = std::numeric_limits<std::int64_t>::max();

/// Brings what the queue looks for a job by up to date after the job's frames have changed: whether frames of it can be
/// rendered now, or else from when on. An open job that has nothing left to render ends: as failed when frames were
/// passed by, otherwise as finished. Call it inside a Database::Write().
/// @return whether the job has ended.
bool UpdateTurn(SQLite::Database& connection, std::int64_t job, std::int64_t now);

} // namespace farm
