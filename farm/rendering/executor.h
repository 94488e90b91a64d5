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
    /// The folder it runs in.
    QString folder;
    int timeLimitSeconds = 3600;
    /// What it may touch; nothing for all that the farm may.
    std::optional<Reach> reach;
};

struct RenderResult
{
    bool ok = false;
    /// What went wrong, for people.
    QString message;
    /// Processor time that the frame took.
    std::int64_t coreMilliseconds = 0;
};

/// Runs renderer commands somewhere, each on one core.
class Executor
{
public:
    using Ended = std::function<void(const RenderResult&)>;

    virtual ~Executor() = default;

    /// How many frames it can render at a time.
    virtual int Slots() const = 0;
    /// Whether this renderer program can be run.
    virtual bool Has(const QString& program) const = 0;
    /// Calls `ended` once, later and in the caller's thread, unless the frame is cancelled.
    virtual void Start(const FrameKey& frame, const RenderCommand& command, Ended ended) = 0;
    /// Ends the frame's renderer at once; `ended` is not called any more. Harmless when nothing runs.
    virtual void Cancel(const FrameKey& frame) = 0;
};

} // namespace farm
