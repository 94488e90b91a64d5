#include "storage/queued_mutex.h"

namespace storage {

void QueuedMutex::lock()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_owner != std::this_thread::get_id()) {
        const std::uint64_t number = m_next++;
        m_moves.wait(lock, [&] { return m_first == number; });
        m_owner = std::this_thread::get_id();
    }
    ++m_depth;
}

void QueuedMutex::unlock()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (--m_depth > 0)
            return;
        m_owner = std::thread::id();
        ++m_first;
    }
    m_moves.notify_all();
}

int QueuedMutex::Waiting() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return int(m_next - m_first) - (m_depth > 0 ? 1 : 0);
}

} // namespace storage
