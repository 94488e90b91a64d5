#include "farm/rendering/job_workers.h"

#include <algorithm>

namespace farm {

JobWorkers::JobWorkers(int threadCount)
{
    for (int number = 0; number < threadCount; ++number)
        m_threads.emplace_back([this] { Run(); });
}

JobWorkers::~JobWorkers()
{
    Stop();
}

void JobWorkers::Add(std::int64_t job, Work work)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isStopped)
        return;
    m_waiting[job].push_back(std::move(work));
    m_added.notify_one();
}

void JobWorkers::Stop()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isStopped = true;
        m_waiting.clear();
    }
    m_added.notify_all();
    for (std::thread& thread : m_threads) {
        if (thread.joinable())
            thread.join();
    }
}

std::map<std::int64_t, std::deque<JobWorkers::Work>>::iterator JobWorkers::Free()
{
    return std::find_if(m_waiting.begin(), m_waiting.end(),
        [this](const auto& waiting) { return m_busy.count(waiting.first) == 0; });
}

void JobWorkers::Run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_added.wait(lock, [this] { return m_isStopped || Free() != m_waiting.end(); });
        if (m_isStopped)
            return;
        const auto next = Free();
        const std::int64_t job = next->first;
        const Work work = std::move(next->second.front());
        next->second.pop_front();
        if (next->second.empty())
            m_waiting.erase(next);
        m_busy.insert(job);
        lock.unlock();
        work();
        lock.lock();
        m_busy.erase(job);
        // The job may have more work, which other threads had to leave alone.
        m_added.notify_one();
    }
}

} // namespace farm
