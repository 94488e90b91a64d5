#pragma once

#include "farm/slurm/batch.h"

#include <vector>

namespace farm {

/// A run that has to be submitted.
struct WaitingRun
{
    RunId id;
    RunFiles files;
    QString type;
    /// The key of the farm's job.
    std::int64_t job = 0;
    Placement placement;
};

/// The runs that have to be submitted, in the order of their arrival.
class WaitingRuns
{
public:
    void Add(const WaitingRun& run) { m_runs.push_back(run); }
    /// Returns false when the run is not waiting.
    bool Remove(const RunId& run);
    bool IsEmpty() const { return m_runs.empty(); }

    /// Takes all runs, in batches of one placement and one type. A task renders frames of one job only, as it is ended
    /// when the job is stopped.
    /// @param most is the largest number of tasks in a batch.
    std::vector<std::vector<WaitingRun>> TakeBatches(int most);

private:
    std::vector<WaitingRun> m_runs;
};

} // namespace farm
