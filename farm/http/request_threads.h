#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace farm {

/// Threads that each serve one connection at a time. One is started when none is idle, up to a limit, and then stays.
class RequestThreads : public httplib::TaskQueue
{
public:
    explicit RequestThreads(std::size_t most);

    void enqueue(std::function<void()> task) override;
    /// Returns when all tasks, also those that wait, are done.
    void shutdown() override;

private:
    void StartThread();
    void Work();

    const std::size_t m_most;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_tasks;
    std::vector<std::thread> m_threads;
    std::size_t m_idle = 0;
    bool m_ends = false;
};

} // namespace farm
