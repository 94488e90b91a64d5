#pragma once

#include "farm/rendering/executor.h"
#include "farm/rendering/job_types.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <set>

namespace farm {

class FrameFiles;
class FramesInWork;
class RenderQueue;

/// Keeps the executor's slots busy with the frames of the open jobs.
class Scheduler : public QObject
{
    Q_OBJECT

public:
    /// @param inWork receives the frames being rendered; only the scheduler changes it.
    /// @param lookInterval is the time after which the scheduler looks at the jobs without a nudge.
    Scheduler(RenderQueue& queue, Executor& executor, const FrameFiles& files, FramesInWork& inWork,
        const JobTypes& types, std::chrono::milliseconds lookInterval);

    /// Looks at the jobs: pauses those in arrears, cancels the frames that are no longer wanted and fills the free slots.
    /// Call it when jobs have changed.
    void Nudge();
    /// Calls Nudge() later in the scheduler's thread. May be called from any thread.
    void NudgeLater() { emit NudgeWanted(); }

    /// Cancels all frames being rendered. Their slots stay taken, so no other frames start.
    void Stop();

signals:
    void NudgeWanted();

private:
    QStringList RunnableTypes();
    void CancelUnwantedFrames();
    bool StartFrame(const FrameTask& task);
    void FrameEnded(const FrameTask& task, const RenderResult& result);
    void Record(const FrameTask& task, const RenderResult& result);
    void FrameFailed(const FrameTask& task, const QString& message, const QString& log);

    RenderQueue& m_queue;
    Executor& m_executor;
    const FrameFiles& m_files;
    FramesInWork& m_inWork;
    JobTypes m_types;
    std::set<QString> m_missingPrograms;
    std::int64_t m_lastJob = 0;
    QTimer m_look;
};

} // namespace farm
