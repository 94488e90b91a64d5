#pragma once

#include "farm/base/schema.h"

#include <cstdint>
#include <limits>

namespace farm {

/// The `retry_at` of a frame whose attempts have all failed: the job passes it by and does not try it again.
constexpr std::int64_t PassedBy = std::numeric_limits<std::int64_t>::max();

/// Updates the columns by which the queue finds a job, after the job's frames have changed: whether frames can be
/// rendered now and, if not, from what time on. An open job with nothing left to render ends: as failed when frames were
/// passed by, otherwise as finished. Call it inside a Database::Write().
/// @return whether the job has ended.
bool UpdateTurn(SQLite::Database& connection, std::int64_t job, std::int64_t now);

} // namespace farm
