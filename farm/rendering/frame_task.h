#pragma once

#include <QString>

#include <cstdint>
#include <tuple>

namespace farm {

/// A frame of a job, in one of the job's runs: a restart begins a new one.
struct FrameKey
{
    std::int64_t job = 0;
    /// As the renderer knows it, from 1.
    int number = 0;
    /// From 1.
    int run = 1;
};

inline bool operator<(const FrameKey& one, const FrameKey& other)
{
    return std::tie(one.job, one.number, one.run) < std::tie(other.job, other.number, other.run);
}

/// A finished picture: its name in the job's folder, its size in bytes and its SHA-256.
struct Picture
{
    QString name;
    std::int64_t size = 0;
    QString checksum;
};

/// A frame to render and what is needed for it.
struct FrameTask
{
    FrameKey key;
    QString jobId;
    QString type;
    QString scene;
    int width = 0;
    int height = 0;
    /// The first and the last frame of the job, whichever of those between it has.
    int firstFrame = 1;
    int lastFrame = 1;
    /// No frame of the run is finished yet.
    bool beginsRun = false;

    int FrameSpan() const { return lastFrame - firstFrame + 1; }
    int Number() const { return key.number; }
};

} // namespace farm
