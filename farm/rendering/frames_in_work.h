#pragma once

#include "farm/rendering/frame_progress.h"
#include "farm/rendering/frame_task.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace farm {

/// Where and since when a frame is being rendered.
struct FrameInWork
{
    QString host;
    std::int64_t since = 0; // seconds since the epoch
    FrameProgress progress = {};

    /// How long it has been rendered, in seconds; not negative even if the clock was set back.
    std::int64_t Seconds(std::int64_t now) const { return std::max<std::int64_t>(now - since, 0); }
};

/// The frames that are being rendered. Thread-safe.
class FramesInWork
{
public:
    void Add(const FrameKey& frame, const FrameInWork& work)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_frames.insert_or_assign(frame, work);
    }

    void Remove(const FrameKey& frame)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_frames.erase(frame);
    }

    std::map<FrameKey, FrameInWork> All() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_frames;
    }

    /// The job's frames, by their numbers.
    std::map<int, FrameInWork> OfJob(std::int64_t job) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::map<int, FrameInWork> ofJob;
        for (auto frame = m_frames.lower_bound({job, 0, 0});
             frame != m_frames.end() && frame->first.job == job; ++frame)
            ofJob.insert_or_assign(frame->first.number, frame->second);
        return ofJob;
    }

private:
    mutable std::mutex m_mutex;
    std::map<FrameKey, FrameInWork> m_frames;
};

} // namespace farm
