#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace farm {

class ContentStore;
class DataMark;
class JobFolders;

/// Frees in a thread of its own what nobody needs any more in the data folder.
class Housekeeping
{
public:
    /// @param keepContents is the time for which contents are kept that no job needs.
    Housekeeping(
        JobFolders& folders, ContentStore& contents, DataMark& mark, std::chrono::hours keepContents);
    /// Waits for the file that is being removed.
    ~Housekeeping();
    Housekeeping(const Housekeeping&) = delete;
    Housekeeping& operator=(const Housekeeping&) = delete;

    /// Looks soon, because jobs have changed. Thread-safe.
    void Wake();

private:
    void Run();
    std::chrono::milliseconds Work();

    JobFolders& m_folders;
    ContentStore& m_contents;
    DataMark& m_mark;
    const std::chrono::hours m_keepContents;
    std::atomic<bool> m_isStopped {false};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isWoken = false;
    std::chrono::steady_clock::time_point m_nextMark;
    bool m_areRunsLeft = true; ///< of an earlier farm, perhaps
    std::thread m_thread;
};

} // namespace farm
