#pragma once

#include "farm/runner/run.h"
#include "farm/slurm/cluster_task.h"

#include <optional>

namespace farm {

enum class TaskPhase {
    Queued,
    Running,
    Ended,
};

/// A state that this version of the farm does not know counts as running: the task leaves the queue at its end.
TaskPhase PhaseOf(const QString& state);

/// Evidence about a run on the cluster.
struct RunEvidence
{
    /// Its task, as Slurm reports it; nothing when Slurm does not know it any more.
    std::optional<ClusterTask> task;
    /// Whether the node has begun with the run.
    bool wasStarted = false;
    /// The report of quillstar-run-frame.
    std::optional<RunResult> outcome;
    /// The text that it wrote when it could not even report; may be empty.
    QString complaint;
    bool isCancelWanted = false;
    /// Whether an outcome that a node has written would have been seen by now, although shared folders show new files late.
    bool isLate = false;
};

/// How the run has ended; nothing as long as it has not, or as that is unknown.
std::optional<RunResult> EndOf(const RunEvidence& evidence);

} // namespace farm
