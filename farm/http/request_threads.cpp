#include "farm/http/request_threads.h"

#include <system_error>
#include <utility>

namespace farm {

RequestThreads::RequestThreads(std::size_t most)
    : m_most(most)
{
    m_threads.reserve(most);
    StartThread();
}

void RequestThreads::enqueue(std::function<void()> task)
{
    const std::lock_guard lock(m_mutex);
    m_tasks.push_back(std::move(task));
    if (m_tasks.size() > m_idle && m_threads.size() < m_most) {
        try {
            StartThread();
        } catch (const std::system_error&) {
            // The system allows this process no more threads, so the task waits for one of the running ones.
        }
    }
    m_wake.notify_one();
}

void RequestThreads::shutdown()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_wake.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void RequestThreads::StartThread()
{
    m_threads.emplace_back([this] { Work(); });
}

void RequestThreads::Work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        ++m_idle;
        m_wake.wait(lock, [this] { return m_ends || !m_tasks.empty(); });
        --m_idle;
        if (m_tasks.empty())
            return;
        const std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

} // namespace farm
