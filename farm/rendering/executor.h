#pragma once

#include "farm/rendering/confinement.h"
#include "farm/rendering/frame_task.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace farm {

struct RenderCommand
{
    QString program;
    QStringList arguments;
    /// The folder in which the program runs.
    QString folder;
    int timeLimit = 3600; // s
    /// If absent, the program may read and write all files that the farm may.
    std::optional<Reach> reach;
};

struct RenderResult
{
    bool ok = false;
    /// The reason for a failure, for the user.
    QString message;
    /// The end of what the renderer wrote.
    QString log;
    /// The processor time that the frame took.
    std::int64_t coreMilliseconds = 0;
};

/// Runs renderers, each on one core. Not thread-safe.
class Executor
{
public:
    using Ended = std::function<void(const RenderResult&)>;

    virtual ~Executor() = default;

    /// The number of frames that can be rendered at a time.
    virtual int Slots() const = 0;
    /// Whether this renderer program can be run.
    virtual bool Has(const QString& program) const = 0;
    /// Calls `ended` once, after this call has returned and in the caller's thread, unless the frame is cancelled.
    /// Throws std::runtime_error when the command cannot be run.
    virtual void Start(const FrameKey& frame, const RenderCommand& command, Ended ended) = 0;
    /// Ends the frame's renderer at once; `ended` is not called any more. Does nothing when the frame is not rendered.
    virtual void Cancel(const FrameKey& frame) = 0;
};

} // namespace farm
