#pragma once

#include "farm/rendering/executor.h"
#include "farm/rendering/job_types.h"
#include "farm/rendering/run_table.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <map>
#include <optional>
#include <set>

namespace farm {

class FrameFiles;
class FramesInWork;
struct RenderPlace;
class RenderQueue;

/// Keeps the executor busy with the frames of the open jobs.
class Scheduler : public QObject
{
    Q_OBJECT

public:
    struct Dependencies
    {
        RenderQueue& queue;
        RunTable& runs;
        Executor& executor;
        const FrameFiles& files;
        /// Receives the frames being rendered; only the scheduler changes it.
        FramesInWork& inWork;
    };

    /// What all renderers have in common.
    struct Renderers
    {
        /// Renderers reach nothing of this folder but their scenes and pictures.
        QString hidden;
        /// The user who runs them; empty for the farm's own.
        QString user;
    };

    /// Takes over the runs of an earlier farm.
    /// @param lookInterval is the time after which the scheduler looks at the jobs without a nudge.
    Scheduler(const Dependencies& dependencies, const JobTypes& types, const Renderers& renderers,
        std::chrono::milliseconds lookInterval);

    /// Looks at the jobs: pauses those in arrears, cancels the frames that are no longer wanted and gives the executor
    /// other ones. Call it when jobs have changed.
    void Nudge();
    /// Calls Nudge() later in the scheduler's thread. May be called from any thread.
    void NudgeLater() { emit NudgeWanted(); }

    /// Ends the work; no frames start any more.
    void Stop();

signals:
    void NudgeWanted();

private:
    struct Work
    {
        FrameTask task;
        bool isCancelled = false;
    };

    void AttachRuns();
    void Look();
    QStringList RunnableTypes();
    void CancelUnwantedFrames();
    void BeginFrames();
    std::vector<RunTable::Entry> ChooseFrames();
    std::optional<Run> Prepared(const RunId& id, const FrameTask& task);
    RunOrder OrderFor(
        const RunId& id, const FrameTask& task, const JobType& type, const RenderPlace& place) const;
    void HandleStart(const RunId& id, const QString& host, qint64 at);
    void HandleEnd(const RunId& id, const RunResult& result);
    void Record(const RunId& id, const FrameTask& task, const RunResult& result);
    void RecordFailure(const RunId& id, const FrameTask& task, const RunResult& result);
    void Postpone(const RunId& id, const FrameTask& task, const RunResult& result);
    void Forget(const RunId& id, const FrameTask& task);
    void TryToForget(const RunId& id, const FrameTask& task);

    Dependencies m_deps;
    JobTypes m_types;
    Renderers m_renderers;
    std::set<QString> m_missingPrograms;
    /// The runs whose ends are awaited.
    std::map<RunId, Work> m_work;
    /// After a fault that another try would meet at once, nothing starts until the next look.
    bool m_waits = false;
    bool m_isStopped = false;
    QTimer m_look;
};

} // namespace farm
