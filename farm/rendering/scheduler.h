#pragma once

#include "farm/rendering/executor.h"
#include "farm/rendering/frame_worker.h"
#include "farm/rendering/job_types.h"
#include "farm/rendering/run_table.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <map>
#include <set>

namespace farm {

class FrameFiles;
class FramesInWork;
class Hindrances;
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
        Hindrances& hindrances;
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
        /// Set once the frame is no longer wanted.
        FrameWorker::Flag isUnwanted = std::make_shared<std::atomic_bool>(false);
        /// Whether the executor has it.
        bool isStarted = false;
        /// Whether an earlier farm has begun it.
        bool isOld = false;
        /// How it ended; its files are being looked at.
        RunResult result = {};
    };

    void AttachRuns();
    void Look();
    QStringList RunnableTypes();
    void ReportHindrances();
    void CancelUnwantedFrames();
    void BeginFrames();
    std::vector<RunTable::Entry> ChooseFrames();
    void HandlePrepared(const RunId& id, const FileReport& report);
    void RecordUnprepared(const RunId& id, const FrameTask& task, const FileReport& report);
    void StartReady();
    void HandleStart(const RunId& id, const QString& host, qint64 at);
    void HandleEnd(const RunId& id, const RunResult& result);
    void HandleSettled(const RunId& id, const FileReport& report);
    /// Records the end of a run by `record`, or forgets it when that fails, and goes on.
    void Finish(const RunId& id, const FrameTask& task, const std::function<void()>& record);
    void Record(const RunId& id, const Work& work, const FileReport& report);
    void RecordOther(const RunId& id, const FrameTask& task, const RunResult& result);
    void RecordFailure(const RunId& id, const FrameTask& task, const RunResult& result);
    void Postpone(const RunId& id, const FrameTask& task, const RunResult& result);
    void Forget(const RunId& id, const FrameTask& task);
    void TryToForget(const RunId& id, const FrameTask& task);

    Dependencies m_deps;
    JobTypes m_types;
    /// Why jobs wait whose types are not among `m_types` any more.
    QMap<QString, QString> m_unknownTypes;
    FrameWorker m_worker;
    /// The runs whose ends are awaited.
    std::map<RunId, Work> m_work;
    /// Prepared runs, which start together.
    std::vector<Run> m_ready;
    QTimer m_startTimer;
    /// After a fault that another try would meet at once, nothing starts until the next look.
    bool m_waits = false;
    bool m_isStopped = false;
    QTimer m_look;
};

} // namespace farm
