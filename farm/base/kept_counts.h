#pragma once

namespace farm {

/// The migration that makes the database count jobs and index their names.
extern const char* const KeptCounts;

} // namespace farm
