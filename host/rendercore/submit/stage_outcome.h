#pragma once

#include "host/base/interrupt_flag.h"
#include "host/farmclient/farm_access.h"
#include "host/rendercore/submit/submit_task.h"

#include <functional>

/// A command to run one stage of one task.
struct StageRequest
{
    SubmitTask task; ///< a copy of the task as it is now; its `next` is the stage to run
    FarmAccess access;
    QString folder; ///< the folder of the task's packages
    InterruptFlag interrupted;
};

/// The result of a stage.
struct StageOutcome
{
    enum class Kind {
        Done,
        Interrupted,
        TryAgain, ///< the farm cannot do it at the moment
        Failed
    };

    /// The reason why a stage has to be tried again.
    enum class Obstacle {
        Request, ///< the farm answers, but cannot fulfil this request
        Farm,    ///< the farm cannot be reached, its disk is full, or it asks clients to wait
        Session, ///< the farm does not know the session
        Program  ///< a program is still reading the scene
    };

    Kind kind = Kind::Interrupted;
    SubmitStage stage = SubmitStage::Wait; ///< the stage that ended
    SubmitStage next = SubmitStage::Wait;  ///< the stage to run next; unused after a failure
    bool advanced = false;                 ///< the farm has received more of the task than before
    Obstacle obstacle = Obstacle::Request; ///< set for TryAgain
    int retryAfter = 0;                    ///< the wait in seconds that the farm asks for
    SubmitError error = SubmitError::None;
    TaskMessage message; ///< the reason for a failure or a wait
    QString job;         ///< after the last stage, the number of the new job
    SubmitWork work;
    QVariantList arguments; ///< the scene's own arguments, set by the analysis
    QStringList refused;    ///< files that could not be uploaded
};

/// Reports the stage's progress in percent; the text describes an upload and is empty otherwise.
using StageProgress = std::function<void(int percent, const QString& text)>;
