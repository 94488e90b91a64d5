#pragma once

#include "farm/rendering/executor.h"
#include "farm/rendering/job_types.h"

#include <QObject>
#include <QTimer>

#include <set>

namespace farm {

class FrameFiles;
class RenderQueue;

/// Keeps the executor's slots busy with the frames of the open jobs.
class Scheduler : public QObject
{
    Q_OBJECT

public:
    Scheduler(RenderQueue& queue, Executor& executor, const FrameFiles& files, const JobTypes& types);

    /// Looks at the jobs anew: pauses those in arrears, ends the frames that are no longer wanted, then fills the
    /// free slots. To be called after a change to the jobs; a look is also taken every few seconds.
    void Nudge();
    /// Does so as soon as the scheduler's thread comes to it. May be called in any thread.
    void NudgeLater() { emit NudgeWanted(); }

    /// Ends all frames being rendered and starts no more.
    void Stop();

signals:
    void NudgeWanted();

private:
    QStringList RunnableTypes();
    void CancelUnwantedFrames();
    void StartFrame(const FrameTask& task);
    void FrameEnded(const FrameTask& task, const RenderResult& result);
    void Record(const FrameTask& task, const RenderResult& result);
    void FrameFailed(const FrameTask& task, const QString& message);

    RenderQueue& m_queue;
    Executor& m_executor;
    const FrameFiles& m_files;
    JobTypes m_types;
    std::set<FrameKey> m_rendering;
    std::set<QString> m_missingPrograms;
    std::int64_t m_lastJob = 0;
    QTimer m_look;
};

} // namespace farm
