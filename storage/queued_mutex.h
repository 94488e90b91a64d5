#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace storage {

/// A recursive mutex that threads get in the order in which they ask for it. With one of the standard library, a thread
/// that takes it again at once may do so many times before any that waits.
class QueuedMutex
{
public:
    // Named as in the standard library, for std::lock_guard.
    void lock();
    void unlock();

    /// The number of threads that wait at the moment.
    int Waiting() const;

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_moves;
    std::uint64_t m_next = 0;  // the number of the next thread that asks
    std::uint64_t m_first = 0; // the number of the thread that has the mutex or gets it next
    std::thread::id m_owner {};
    int m_depth = 0;
};

} // namespace storage
