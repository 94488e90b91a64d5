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

/// Threads that work for jobs: on several jobs at a time, but for each job on one thing after another.
class JobWorkers
{
public:
    /// Must not throw.
    using Work = std::function<void()>;

    explicit JobWorkers(int threadCount);
    ~JobWorkers();
    JobWorkers(const JobWorkers&) = delete;
    JobWorkers& operator=(const JobWorkers&) = delete;

    void Add(std::int64_t job, Work work);
    /// Drops the work that has not begun and returns when all other work is done. More work is ignored.
    void Stop();

private:
    void Run();
    /// @return a job with work that no thread works for.
    std::map<std::int64_t, std::deque<Work>>::iterator Free();

    std::mutex m_mutex;
    std::condition_variable m_added;
    std::map<std::int64_t, std::deque<Work>> m_waiting;
    std::set<std::int64_t> m_busy;
    bool m_isStopped = false;
    std::vector<std::thread> m_threads;
};

} // namespace farm
