#pragma once

#include "farm/rendering/frame_task.h"

#include <map>
#include <mutex>
#include <set>

namespace farm {

/// The frames that are being rendered and since when, in seconds since the epoch. Thread-safe.
class FramesInWork
{
public:
    void Add(const FrameKey& frame, std::int64_t since)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_frames.emplace(frame, since);
    }

    void Remove(const FrameKey& frame)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_frames.erase(frame);
    }

    std::set<FrameKey> All() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::set<FrameKey> all;
        for (const auto& frame : m_frames)
            all.insert(frame.first);
        return all;
    }

    /// The numbers of the job's frames and since when each is being rendered.
    std::map<int, std::int64_t> OfJob(std::int64_t job) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::map<int, std::int64_t> ofJob;
        for (const auto& [frame, since] : m_frames) {
            if (frame.job == job)
                ofJob.emplace(frame.number, since);
        }
        return ofJob;
    }

private:
    mutable std::mutex m_mutex;
    std::map<FrameKey, std::int64_t> m_frames;
};

} // namespace farm
