#pragma once

#include <QString>

#include <chrono>

namespace farm {

/// How the farm uses a Slurm cluster. The partition, account, QOS, constraint and the number of frames of a task may be
/// other ones for a job type.
struct SlurmSettings
{
    QString partition;
    QString account;
    QString qos;
    QString constraint;
    /// The frames that a task of the cluster renders, one after another.
    int framesPerTask = 1;
    /// The frames to hold on the cluster at a time, rendering and queued.
    int frames = 1000;
    /// The least time from one question about the farm's jobs to the next.
    std::chrono::milliseconds interval {10'000};
    /// A command of the cluster that takes longer is ended.
    std::chrono::milliseconds commandTimeout {30'000};
    /// The time that the nodes' files may take to be seen here.
    std::chrono::milliseconds fileDelay {60'000};
    /// The path of quillstar-run-frame on the nodes.
    QString runner;
    /// Holds the lists of what each task has to do; all nodes see it.
    QString folder;
};

} // namespace farm
