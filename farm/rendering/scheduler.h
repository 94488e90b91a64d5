#pragma once

#include "farm/rendering/executor.h"
#include "farm/rendering/frame_worker.h"
#include "farm/rendering/job_pauses.h"
#include "farm/rendering/job_types.h"
#include "farm/rendering/run_table.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <map>
#include <optional>

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

    /// Takes over the runs of an earlier farm process.
    /// @param lookInterval is the time after which the scheduler looks at the jobs without a nudge.
    Scheduler(const Dependencies& dependencies, const JobTypes& types, const Renderers& renderers,
        std::chrono::milliseconds lookInterval);

    /// Looks at the jobs: pauses those in arrears, cancels frames that are no longer wanted and gives the executor
    /// other ones. Call it when jobs have changed.
    void Nudge();
    /// Calls Nudge() later in the scheduler's thread; several calls result in one Nudge(). May be called from any thread.
    void NudgeLater() { emit NudgeWanted(); }

    /// Ends all work; no frames start afterwards.
    void Stop();

signals:
    void NudgeWanted();

private:
    enum class State {
        Preparing, ///< its files are being provided
        Ready,     ///< to be passed to the executor
        Started,   ///< the executor has it
        Ended,     ///< its files are still to be settled
        Settling,  ///< its files are being settled
        Settled,   ///< its end is still to be recorded
    };

    /// The consequence of a run's end for its frame.
    enum class Fate {
        Finished,
        Failed,
        Postponed,
        Forgotten, ///< the run leaves no trace
    };

    struct Work
    {
        FrameTask task;
        State state = State::Preparing;
        /// Set once the frame is no longer wanted.
        FrameWorker::Flag isUnwanted = std::make_shared<std::atomic_bool>(false);
        /// Whether an earlier farm process has begun it.
        bool isOld = false;
        /// Whether its picture may be in its place already, because its files have been settled before.
        bool mayBeKept = false;
        RunResult result = {};
        std::optional<Picture> picture = {};
        Fate fate = Fate::Forgotten;
    };

    void AttachRuns();
    void Look();
    QStringList RunnableTypes();
    void ReportHindrances();
    void CancelUnwantedFrames();
    void BeginFrames();
    std::vector<FrameTask> ChooseFrames();
    void HandlePrepared(const RunId& id, const FileReport& report);
    void StartReady();
    void HandleStart(const RunId& id, const QString& host, qint64 at);
    void HandleEnd(const RunId& id, const RunResult& result);
    void HandleSettled(const RunId& id, const FileReport& report);
    void Judge(Work& work, const FileReport& report);
    void Conclude(const RunId& id);
    void Advance(const RunId& id);
    void Settle(const RunId& id, Work& work);
    void Record(const RunId& id, const Work& work);

    Dependencies m_deps;
    JobTypes m_types;
    /// The reasons why jobs wait whose types are no longer in `m_types`, by type.
    QMap<QString, QString> m_unknownTypes;
    JobPauses m_pauses;
    FrameWorker m_worker;
    /// The runs whose ends are not recorded yet.
    std::map<RunId, Work> m_work;
    /// Prepared runs, which start together.
    std::vector<Run> m_ready;
    QTimer m_startTimer;
    QTimer m_nudgeTimer;
    /// The disk or the database has failed: until the next look, nothing begins and no end is recorded.
    bool m_waits = false;
    bool m_isStopped = false;
    QTimer m_look;
};

} // namespace farm
