#pragma once

#include "farm/slurm/batch.h"

#include <utility>
#include <vector>

namespace farm {

/// A run that is to be submitted.
struct WaitingRun
{
    RunId id;
    RunFiles files;
    QString type;
    /// The job of the farm, by its key.
    std::int64_t job = 0;
    Placement placement;
};

/// The runs that are to be submitted, in the order in which they came.
class WaitingRuns
{
public:
    void Add(const WaitingRun& run) { m_runs.push_back(run); }
    /// Returns false when the run does not wait.
    bool Remove(const RunId& run);
    bool IsEmpty() const { return m_runs.empty(); }

    /// Takes all, in batches of runs of one placement and one type. A task renders frames of one job only, as it is ended
    /// when the job is stopped.
    /// @param most is the largest number of tasks in a batch.
    std::vector<std::vector<WaitingRun>> TakeBatches(int most);

private:
    std::vector<WaitingRun> m_runs;
};

} // namespace farm
