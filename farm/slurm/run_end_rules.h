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
    /// The run's task, as Slurm reports it; none when Slurm no longer lists it.
    std::optional<ClusterTask> task;
    /// Whether the node has begun with the run.
    bool wasStarted = false;
    /// The report of quillstar-run-frame.
    std::optional<RunResult> outcome;
    /// The output of quillstar-run-frame when it failed to write a report; may be empty.
    QString complaint;
    bool isCancelWanted = false;
    /// Whether enough time has passed for an outcome written on a node to be visible in the shared folder.
    bool isLate = false;
};

/// The result of the run; none while it has not ended, or while its end is unknown.
std::optional<RunResult> EndOf(const RunEvidence& evidence);

} // namespace farm
