#pragma once

#include "farm/slurm/slurm_settings.h"

#include <QStringList>

namespace farm {

/// Limits that the configuration of the cluster sets for the farm.
struct ClusterLimits
{
    int arraySize = 1001;  ///< one more than the highest index of an array
    int jobs = 10000;      ///< the most that Slurm keeps; each task of an array counts
    int secondsKept = 300; ///< how long Slurm knows a job after its end
    bool hasAccounting = false;
};

/// Reads the output of `scontrol show config`.
ClusterLimits ReadLimits(const QByteArray& config);

/// Sentences about limits that do not fit the settings.
QStringList Warnings(const ClusterLimits& limits, const SlurmSettings& settings);

} // namespace farm
