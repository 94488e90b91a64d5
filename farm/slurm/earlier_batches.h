#pragma once

#include "farm/rendering/executor.h"
#include "farm/slurm/batch.h"
#include "farm/slurm/batch_lists.h"

#include <set>
#include <vector>

namespace farm {

/// A batch that was submitted before the farm was restarted.
struct EarlierBatch
{
    Batch batch;
    /// The files of its runs, in their order.
    std::vector<RunFiles> files;
    /// The runs whose ends have not been recorded.
    std::set<RunId> held;
};

/// The batches in the lists. Their placements come from the current settings.
/// @param runs are all runs whose ends have not been recorded.
std::vector<EarlierBatch> EarlierBatches(const BatchLists& lists, const std::vector<RecordedRun>& runs,
    const SlurmSettings& settings, const JobTypes& types);

} // namespace farm
