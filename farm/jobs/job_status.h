#pragma once

namespace farm {

/// The codes that the client shows; stored and sent as they are, also in the texts of SQL statements.
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
