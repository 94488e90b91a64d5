#pragma once

namespace farm {

/// The step of the schema by which the database counts jobs and indexes their names.
extern const char* const KeptCounts;

} // namespace farm
