#pragma once

#include "host/rendercore/submit/checksum_cache.h"
#include "host/rendercore/submit/farm_stages.h"
#include "host/rendercore/submit/scene_reporter.h"
#include "host/rendercore/submit/stage_outcome.h"

#include <QElapsedTimer>

/// Runs one stage at a time. Lives in a thread of its own; every function is called there.
class SubmitWorker
{
public:
    /// @param database path of submissions.sqlite; without it, every file is packed anew.
    explicit SubmitWorker(const QString& database = {}, const SubmitLimits& limits = {})
        : m_farm(limits)
        , m_cache(database)
    {
    }

    /// Runs a stage to its end. Commands that arrive while it waits for the farm run meanwhile.
    /// @param onProgress is called at most four times a second.
    StageOutcome Run(const StageRequest& request, const StageProgress& onProgress);

    /// Ends a request to the farm at once when the flag of the running stage is set, and programs that read scenes.
    void Interrupt()
    {
        m_reporter.ForgetAll();
        m_farm.Interrupt();
    }

    /// Deletes the leftovers of a task.
    /// @param folder is that of the task's packages.
    void Discard(qint64 task, const QString& folder);

private:
    StageOutcome Analyze(const StageRequest& request, const StageProgress& onProgress);
    StageOutcome RunStage(const StageRequest& request, const StageProgress& onProgress);

    SceneReporter m_reporter;
    FarmStages m_farm;
    ChecksumCache m_cache;
    QElapsedTimer m_lastProgress;
};
