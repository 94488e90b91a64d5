#pragma once

#include "host/rendercore/farm_access.h"
#include "host/rendercore/submit/submit_task.h"

#include <atomic>
#include <functional>
#include <memory>

/// Set from the GUI thread to end a stage early.
using InterruptFlag = std::shared_ptr<std::atomic<bool>>;

/// One stage of one task, to be done now.
struct StageOrder
{
    SubmitTask task; ///< as it is now; its `next` is the stage
    FarmAccess access;
    QString folder; ///< for the task's packages
    InterruptFlag interrupted;
};

/// What became of it.
struct StageOutcome
{
    enum class Kind {
        Done,
        Interrupted,
        TryAgain, ///< the farm cannot just now
        Failed
    };

    /// What it takes to try again.
    enum class Obstacle {
        Request, ///< the farm answers, but cannot do this
        Farm,    ///< it cannot be reached or wants to be left alone
        Session  ///< it does not know who asks
    };

    Kind kind = Kind::Interrupted;
    SubmitStage stage = SubmitStage::Wait; ///< that it is the outcome of
    SubmitStage next = SubmitStage::Wait;  ///< to go on with; not after Failed
    bool cameForward = false;              ///< the farm has more of the task than before
    Obstacle obstacle = Obstacle::Request; ///< of TryAgain
    int retryAfter = 0;                    ///< seconds that the farm asks for
    SubmitError error = SubmitError::None;
    QString message; ///< of a failure or a wait; of the last stage, the job's running number
    SubmitWork work;
    QVariantList arguments; ///< of the analysis
    QStringList refused;    ///< files that could not be sent
};

/// Tells how far the stage is, in percent, with a text about the upload where it is one.
using StageProgress = std::function<void(int percent, const QString& text)>;

Q_DECLARE_METATYPE(StageOutcome)
