#pragma once

namespace farm {

/// The migration that keeps the frames, the finished ones and the charges of each job added up.
extern const char* const KeptSums;

} // namespace farm
