#pragma once

namespace farm {

/// The migration that keeps sums for each job: its frames, its finished frames and its charges.
extern const char* const KeptSums;

} // namespace farm
