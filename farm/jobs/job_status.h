#pragma once

namespace farm {

/// The codes are part of the interface to clients and of the database; SQL statements name them as numbers.
enum class JobStatus {
    Waiting = 0,
    Running = 1,
    Paused = 2,
    Pending = 3,
    Finished = 4,
    Deleted = 5,
    ToFullRender = 6,
    Failed = 7,
    Arrears = 8,
    PausedInArrears = 9,
};

} // namespace farm
