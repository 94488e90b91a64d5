#include "farm/rendering/job_pauses.h"

#include <algorithm>

namespace farm {

namespace {

// The longest pause is 64 times the shortest.
constexpr int MostDoublings = 6;

} // namespace

JobPauses::JobPauses(std::chrono::milliseconds shortest)
    : m_shortest(shortest)
{
}

void JobPauses::AddFault(std::int64_t job, Clock::time_point now)
{
    Faults& faults = m_jobs[job];
    if (now < faults.until)
        return;
    ++faults.count;
    if (faults.count >= FaultsToPause)
        faults.until = now + m_shortest * (1 << std::min(faults.count - FaultsToPause, MostDoublings));
}

std::set<std::int64_t> JobPauses::Paused(Clock::time_point now) const
{
    std::set<std::int64_t> paused;
    for (const auto& [job, faults] : m_jobs) {
        if (now < faults.until)
            paused.insert(job);
    }
    return paused;
}

} // namespace farm
