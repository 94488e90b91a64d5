#include "farm/rendering/job_workers.h"

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

void JobWorkers::Add(std::int64_t account, std::int64_t job, Work work)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isStopped)
        return;
    Waiting& waiting = m_waiting[job];
    waiting.account = account;
    waiting.work.push_back(std::move(work));
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

JobWorkers::Jobs::iterator JobWorkers::Next()
{
    auto next = m_waiting.end();
    for (auto job = m_waiting.begin(); job != m_waiting.end(); ++job) {
        const bool isFirst
            = next == m_waiting.end() || LastTurn(job->second.account) < LastTurn(next->second.account);
        if (isFirst && m_busy.count(job->first) == 0)
            next = job;
    }
    return next;
}

std::int64_t JobWorkers::LastTurn(std::int64_t account) const
{
    const auto turn = m_lastTurns.find(account);
    return turn != m_lastTurns.end() ? turn->second : 0;
}

void JobWorkers::Run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_added.wait(lock, [this] { return m_isStopped || Next() != m_waiting.end(); });
        if (m_isStopped)
            return;
        const auto next = Next();
        const std::int64_t job = next->first;
        m_lastTurns[next->second.account] = ++m_turns;
        const Work work = std::move(next->second.work.front());
        next->second.work.pop_front();
        if (next->second.work.empty())
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
