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
    /// Without it the program may read and write whatever the farm may.
    std::optional<Reach> reach;
};

struct RenderResult
{
    bool ok = false;
    /// The reason of a failure, for people.
    QString message;
    /// The processor time that the frame took.
    std::int64_t coreMilliseconds = 0;
};

/// Runs renderers somewhere, each on one core. Used by one thread.
class Executor
{
public:
    using Ended = std::function<void(const RenderResult&)>;

    virtual ~Executor() = default;

    /// How many frames can be rendered at a time.
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
