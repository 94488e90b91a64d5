#include "farm/slurm/waiting_runs.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace farm {

bool WaitingRuns::Remove(const RunId& run)
{
    const auto found = std::find_if(
        m_runs.begin(), m_runs.end(), [&run](const WaitingRun& waiting) { return waiting.id == run; });
    if (found == m_runs.end())
        return false;
    m_runs.erase(found);
    return true;
}

std::vector<std::vector<WaitingRun>> WaitingRuns::TakeBatches(int most)
{
    std::map<std::tuple<Placement, QString, std::int64_t>, std::vector<WaitingRun>> groups;
    for (const WaitingRun& run : std::exchange(m_runs, {})) {
        // Fewer batches need fewer commands, so jobs get separate batches only where they could otherwise share a task.
        const std::int64_t job = run.placement.framesPerTask > 1 ? run.job : 0;
        groups[{run.placement, run.type, job}].push_back(run);
    }
    std::vector<std::vector<WaitingRun>> batches;
    for (const auto& [key, runs] : groups) {
        const long size = long(most) * std::get<Placement>(key).framesPerTask;
        for (long first = 0; first < long(runs.size()); first += size)
            batches.emplace_back(
                runs.begin() + first, runs.begin() + std::min(long(runs.size()), first + size));
    }
    return batches;
}

} // namespace farm
