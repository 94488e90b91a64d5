#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace farm {

/// Threads that work on several jobs at a time, but do the work of each job one piece after another. Accounts take
/// turns, so that the large scenes of one do not hold up the others.
class JobWorkers
{
public:
    /// Must not throw.
    using Work = std::function<void()>;

    explicit JobWorkers(int threadCount);
    ~JobWorkers();
    JobWorkers(const JobWorkers&) = delete;
    JobWorkers& operator=(const JobWorkers&) = delete;

    void Add(std::int64_t account, std::int64_t job, Work work);
    /// Drops the work that has not begun and returns when all other work is done. More work is ignored.
    void Stop();

private:
    struct Waiting
    {
        std::int64_t account = 0;
        std::deque<Work> work;
    };
    using Jobs = std::map<std::int64_t, Waiting>;

    void Run();
    /// @return the job whose turn it is, among those that have work and no thread.
    Jobs::iterator Next();
    std::int64_t LastTurn(std::int64_t account) const;

    std::mutex m_mutex;
    std::condition_variable m_added;
    Jobs m_waiting;
    std::set<std::int64_t> m_busy;
    std::int64_t m_turns = 0;
    /// For each account, the number of its last turn.
    std::map<std::int64_t, std::int64_t> m_lastTurns;
    bool m_isStopped = false;
    std::vector<std::thread> m_threads;
};

} // namespace farm
