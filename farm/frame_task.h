#pragma once

#include <QString>

#include <cstdint>
#include <utility>

namespace farm {

/// A frame of a job: the job's key and the frame's number, from 1.
using FrameKey = std::pair<std::int64_t, int>;

/// A frame to render and what is needed for it.
struct FrameTask
{
    FrameKey key;
    QString jobId;
    QString type;
    QString scene;
    int width = 0;
    int height = 0;
    int frames = 0;

    int Number() const { return key.second; }
};

} // namespace farm
