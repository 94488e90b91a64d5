#pragma once

#include "farm/rendering/executor.h"
#include "farm/slurm/batch.h"
#include "farm/slurm/batch_lists.h"

#include <set>
#include <vector>

namespace farm {

/// A batch that an earlier farm has submitted.
struct EarlierBatch
{
    Batch batch;
    /// The files of its runs, in their order.
    std::vector<RunFiles> files;
    /// The runs whose ends have not been recorded.
    std::set<RunId> held;
};

/// The batches in the lists. Their placements are those that the settings say now.
/// @param runs are all whose ends have not been recorded.
std::vector<EarlierBatch> EarlierBatches(const BatchLists& lists, const std::vector<RecordedRun>& runs,
    const SlurmSettings& settings, const JobTypes& types);

} // namespace farm
