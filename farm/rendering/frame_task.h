#pragma once

#include <QString>

#include <cstdint>
#include <tuple>

namespace farm {

/// A frame of a job in one of the job's runs.
struct FrameKey
{
    std::int64_t job = 0;
    /// The frame's number in the scene, from 1.
    int number = 0;
    /// Counts from 1; each restart of the job begins another run.
    int run = 1;
};

inline bool operator<(const FrameKey& one, const FrameKey& other)
{
    return std::tie(one.job, one.number, one.run) < std::tie(other.job, other.number, other.run);
}

/// A frame to render and everything needed for it.
struct FrameTask
{
    FrameKey key;
    std::int64_t account = 0;
    QString jobId;
    QString type;
    QString scene;
    int width = 0;  // pixels
    int height = 0; // pixels
    /// The lowest and the highest number in the job's ranges, even when the frames with these numbers are missing.
    int firstFrame = 1;
    int lastFrame = 1;

    int FrameSpan() const { return lastFrame - firstFrame + 1; }
    int Number() const { return key.number; }
};

} // namespace farm
