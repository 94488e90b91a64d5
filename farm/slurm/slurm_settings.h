#pragma once

#include <QString>

#include <chrono>

namespace farm {

/// Settings for a Slurm cluster. A job type may have its own partition, account, QOS, constraint and number of frames per
/// task.
struct SlurmSettings
{
    QString partition;
    QString account;
    QString qos;
    QString constraint;
    /// The number of frames that a task of the cluster renders, one after another.
    int framesPerTask = 1;
    /// The most frames to keep on the cluster at a time, rendering and queued.
    int frames = 1000;
    /// The least time between two queries about the farm's jobs.
    std::chrono::milliseconds interval {10'000};
    /// A command of the cluster that takes longer is killed.
    std::chrono::milliseconds commandTimeout {30'000};
    /// The time after which files written on a node are visible here.
    std::chrono::milliseconds fileDelay {60'000};
    /// The path of quillstar-run-frame on the nodes.
    QString runner;
    /// The folder with the lists of each task's runs; all nodes see it.
    QString folder;
};

} // namespace farm
