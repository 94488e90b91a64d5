#pragma once

#include "farm/base/schema.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace farm {

class ContentStore;
class DataMark;
class JobFolders;

/// Removes files and records that are no longer needed, in a thread of its own.
class Housekeeping
{
public:
    struct Dependencies
    {
        Database& database;
        JobFolders& folders;
        ContentStore& contents;
        DataMark& mark;
    };
    /// The times for which unneeded contents and entries of the audit are kept.
    struct Times
    {
        std::chrono::hours contents;
        std::chrono::hours audit;
    };

    Housekeeping(const Dependencies& dependencies, const Times& times);
    /// Waits for the file that is being removed.
    ~Housekeeping();
    Housekeeping(const Housekeeping&) = delete;
    Housekeeping& operator=(const Housekeeping&) = delete;

    /// Makes it look soon for files to free, because jobs have changed. Thread-safe.
    void Wake();

private:
    void Run();
    std::chrono::milliseconds Work();

    Dependencies m_deps;
    const Times m_times;
    std::atomic<bool> m_isStopped {false};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isWoken = false;
    std::chrono::steady_clock::time_point m_nextMark;
    bool m_areRunsLeft = true; ///< an earlier farm may have left runs
    std::thread m_thread;
};

} // namespace farm
