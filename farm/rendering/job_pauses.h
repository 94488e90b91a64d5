#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <set>

namespace farm {

/// Pauses a job whose frames keep failing through faults of the farm, such as a node without the shared folder or a
/// partition that is gone. Each pause is twice as long as the one before, so that such a job leaves the machines to
/// others.
class JobPauses
{
public:
    using Clock = std::chrono::steady_clock;

    /// A job pauses after this many faults without a finished frame in between.
    static constexpr int FaultsToPause = 3;

    explicit JobPauses(std::chrono::milliseconds shortest);

    /// Faults during a pause come from frames that began before it, so they do not lengthen it.
    void AddFault(std::int64_t job, Clock::time_point now);
    /// A frame of the job has been finished.
    void End(std::int64_t job) { m_jobs.erase(job); }
    /// The jobs that are paused now.
    std::set<std::int64_t> Paused(Clock::time_point now) const;

private:
    struct Faults
    {
        int count = 0;
        Clock::time_point until = {};
    };

    std::chrono::milliseconds m_shortest;
    std::map<std::int64_t, Faults> m_jobs;
};

} // namespace farm
