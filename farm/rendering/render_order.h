#pragma once

#include "farm/rendering/frame_files.h"
#include "farm/rendering/job_types.h"
#include "farm/runner/run_order.h"

namespace farm {

/// Settings that all renderers share.
struct Renderers
{
    /// The farm's data folder, of which renderers reach only their scenes and pictures.
    QString hidden;
    /// The user who runs them; empty for the farm's own.
    QString user;
};

/// The order to render the task's frame with the files of `place`.
RunOrder OrderFor(const RunId& id, const FrameTask& task, const JobType& type, const RenderPlace& place,
    const Renderers& renderers);

} // namespace farm
