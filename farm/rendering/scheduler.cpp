#include "farm/rendering/scheduler.h"

#include "farm/base/local_time.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/frames_in_work.h"
#include "farm/rendering/hindrances.h"
#include "farm/rendering/render_queue.h"

#include <spdlog/spdlog.h>

#include <utility>

namespace farm {

namespace {

/// Whether the next try at the frame, or at any other, would probably end in the same way at once.
bool WouldRepeat(RunEnd end)
{
    return end == RunEnd::FarmFault || end == RunEnd::LicenceMissing;
}

} // namespace

Scheduler::Scheduler(const Dependencies& dependencies, const JobTypes& types, const Renderers& renderers,
    std::chrono::milliseconds lookInterval)
    : m_deps(dependencies)
    , m_types(types)
    , m_worker(dependencies.files, types, renderers)
{
    connect(this, &Scheduler::NudgeWanted, this, &Scheduler::Nudge, Qt::QueuedConnection);
    connect(&m_deps.executor, &Executor::AvailabilityChanged, this, &Scheduler::Nudge);
    connect(&m_deps.executor, &Executor::Started, this, &Scheduler::HandleStart);
    connect(&m_deps.executor, &Executor::Ended, this, &Scheduler::HandleEnd);
    connect(&m_deps.executor, &Executor::Accepted, this,
        [this](const RunId& id, const QString& handle) { m_deps.runs.SetHandle(id, handle); });
    connect(&m_worker, &FrameWorker::Prepared, this, &Scheduler::HandlePrepared);
    connect(&m_worker, &FrameWorker::Settled, this, &Scheduler::HandleSettled);
    connect(&m_startTimer, &QTimer::timeout, this, &Scheduler::StartReady);
    m_startTimer.setSingleShot(true);
    connect(&m_look, &QTimer::timeout, this, &Scheduler::Look);
    m_look.start(lookInterval);
    const QStringList open = m_deps.hindrances.OpenTypes();
    for (const QString& type : open) {
        if (!m_types.contains(type))
            m_unknownTypes.insert(
                type, QStringLiteral("the farm's job types have no type \"%1\" any more").arg(type));
    }
    AttachRuns();
}

void Scheduler::AttachRuns()
{
    std::vector<RecordedRun> recorded;
    for (const RunTable::Entry& run : m_deps.runs.All()) {
        Work& work = m_work[run.id];
        work.task = run.task;
        work.isStarted = work.isOld = true;
        recorded.push_back({run.id, run.task, m_deps.files.FilesOf(run.task.jobId, run.id), run.handle});
    }
    m_deps.executor.Attach(recorded);
}

void Scheduler::Look()
{
    m_waits = false;
    Nudge();
}

void Scheduler::Nudge()
{
    if (m_isStopped)
        return;
    try {
        m_deps.queue.PauseJobsInArrears();
        CancelUnwantedFrames();
        if (!m_waits)
            BeginFrames();
        ReportHindrances();
    } catch (const std::exception& error) {
        spdlog::error("the jobs cannot be read; the scheduler tries again soon: {}", error.what());
    }
}

void Scheduler::Stop()
{
    m_isStopped = true;
    m_deps.executor.Stop();
    m_worker.Stop();
}

QStringList Scheduler::RunnableTypes()
{
    QStringList runnable;
    for (auto type = m_types.cbegin(); type != m_types.cend(); ++type) {
        const Availability availability = m_deps.executor.Has(*type);
        if (availability == Availability::Present)
            runnable.append(type.key());
    }
    return runnable;
}

void Scheduler::ReportHindrances()
{
    QMap<QString, QString> hindrances = m_unknownTypes;
    for (auto type = m_types.cbegin(); type != m_types.cend(); ++type) {
        const QString hindrance = m_deps.executor.HindranceOf(*type);
        if (!hindrance.isEmpty())
            hindrances.insert(type.key(), hindrance);
    }
    m_deps.hindrances.Set(hindrances);
}

void Scheduler::CancelUnwantedFrames()
{
    for (auto& [id, work] : m_work) {
        if (*work.isUnwanted || m_deps.queue.IsWanted(work.task.key))
            continue;
        *work.isUnwanted = true;
        m_deps.inWork.Remove(work.task.key);
        if (work.isStarted)
            m_deps.executor.Cancel(id);
    }
}

std::vector<RunTable::Entry> Scheduler::ChooseFrames()
{
    std::set<FrameKey> taken;
    for (const auto& work : m_work)
        taken.insert(work.second.task.key);
    const QStringList types = RunnableTypes();
    std::vector<RunTable::Entry> chosen;
    while (m_work.size() + chosen.size() < std::size_t(std::max(0, m_deps.executor.Capacity()))) {
        const auto task = m_deps.queue.Next(types, taken, Now());
        if (!task)
            break;
        taken.insert(task->key);
        m_deps.queue.Start(task->key.job);
        chosen.push_back({RunTable::NewRunId(task->key), *task, {}});
    }
    return chosen;
}

void Scheduler::BeginFrames()
{
    const std::vector<RunTable::Entry> chosen = ChooseFrames();
    if (chosen.empty())
        return;
    m_deps.runs.Begin(chosen);
    for (const RunTable::Entry& run : chosen) {
        Work& work = m_work[run.id];
        work.task = run.task;
        m_worker.Prepare(run.id, run.task, work.isUnwanted);
    }
}

void Scheduler::HandlePrepared(const RunId& id, const FileReport& report)
{
    const auto work = m_work.find(id);
    if (work == m_work.end() || m_isStopped)
        return;
    if (report.run && !*work->second.isUnwanted) {
        work->second.isStarted = true;
        m_ready.push_back(*report.run);
        m_startTimer.start(0);
        return;
    }
    const auto ended = m_work.extract(work);
    const FrameTask& task = ended.mapped().task;
    if (*ended.mapped().isUnwanted)
        Finish(id, task, [&] { Forget(id, task); });
    else
        Finish(id, task, [&] { RecordUnprepared(id, task, report); });
}

void Scheduler::RecordUnprepared(const RunId& id, const FrameTask& task, const FileReport& report)
{
    if (!report.isDiskFull) {
        RunResult fault;
        fault.message = report.message;
        RecordFailure(id, task, fault);
        return;
    }
    // A full disk is no fault of the job: the frame keeps its attempts, and the timer starts it again.
    spdlog::error(
        "job {} waits for space on the disk: {}", task.jobId.toStdString(), report.message.toStdString());
    m_waits = true;
    Forget(id, task);
}

void Scheduler::StartReady()
{
    if (!m_isStopped)
        m_deps.executor.Start(std::exchange(m_ready, {}));
}

void Scheduler::HandleStart(const RunId& id, const QString& host, qint64 at)
{
    const auto work = m_work.find(id);
    if (work == m_work.end() || *work->second.isUnwanted)
        return;
    m_deps.inWork.Add(work->second.task.key, {host, at});
    spdlog::debug("job {} frame {} started on {}", work->second.task.jobId.toStdString(),
        work->second.task.Number(), host.toStdString());
}

void Scheduler::HandleEnd(const RunId& id, const RunResult& result)
{
    const auto work = m_work.find(id);
    if (work == m_work.end() || m_isStopped)
        return;
    m_deps.inWork.Remove(work->second.task.key);
    if (result.end == RunEnd::Done || CountsAsAttempt(result.end)) {
        work->second.result = result;
        m_worker.Settle(id, work->second.task, result.end, work->second.isOld);
        return;
    }
    const auto ended = m_work.extract(work);
    const FrameTask& task = ended.mapped().task;
    m_waits = m_waits || WouldRepeat(result.end);
    Finish(id, task, [&] { RecordOther(id, task, result); });
}

void Scheduler::HandleSettled(const RunId& id, const FileReport& report)
{
    const auto ended = m_work.extract(id);
    if (ended.empty() || m_isStopped)
        return;
    const Work& work = ended.mapped();
    Finish(id, work.task, [&] { Record(id, work, report); });
}

void Scheduler::Finish(const RunId& id, const FrameTask& task, const std::function<void()>& record)
{
    try {
        record();
    } catch (const std::exception& error) {
        // No nudge: rendering again at once could loop forever.
        spdlog::error("a finished frame could not be recorded and will be rendered again: {}", error.what());
        m_waits = true;
        TryToForget(id, task);
        return;
    }
    Nudge();
}

void Scheduler::Record(const RunId& id, const Work& work, const FileReport& report)
{
    if (report.isDiskFull)
        throw std::runtime_error(report.message.toStdString());
    if (report.picture) {
        const RunResult& result = work.result;
        m_deps.runs.End(id, [&] {
            m_deps.queue.Finish(work.task.key, *report.picture, result.coreMilliseconds, Now(), result.log);
        });
        m_worker.Discard(id, work.task);
        spdlog::debug("job {} frame {} finished in {} ms", work.task.jobId.toStdString(), work.task.Number(),
            result.coreMilliseconds);
        return;
    }
    // The disk may have lost the picture when the machine lost its power.
    if (work.isOld && work.result.end == RunEnd::Done) {
        Forget(id, work.task);
        return;
    }
    RunResult failure = work.result;
    if (!report.ok)
        failure.message = report.message;
    RecordFailure(id, work.task, failure);
}

/// Records an end that is not the frame's fault.
void Scheduler::RecordOther(const RunId& id, const FrameTask& task, const RunResult& result)
{
    if (WouldRepeat(result.end)) {
        Postpone(id, task, result);
        return;
    }
    if (result.end != RunEnd::Cancelled)
        spdlog::warn("job {} frame {} will be tried again: {}", task.jobId.toStdString(), task.Number(),
            result.message.toStdString());
    Forget(id, task);
}

void Scheduler::RecordFailure(const RunId& id, const FrameTask& task, const RunResult& result)
{
    const QString reason = result.message.section(QLatin1Char('\n'), 0, 0);
    spdlog::warn("job {} frame {} failed: {}", task.jobId.toStdString(), task.Number(), reason.toStdString());
    m_deps.runs.End(id, [&] {
        if (m_deps.queue.Fail(task.key, result.message, Now(), reason + QLatin1Char('\n') + result.log,
                result.coreMilliseconds))
            spdlog::warn("job {} has failed", task.jobId.toStdString());
    });
    m_worker.Discard(id, task);
}

void Scheduler::Postpone(const RunId& id, const FrameTask& task, const RunResult& result)
{
    spdlog::warn(
        "job {} frame {} pauses: {}", task.jobId.toStdString(), task.Number(), result.message.toStdString());
    m_deps.runs.End(id,
        [&] { m_deps.queue.Postpone(task.key, result.message, Now(), result.log, result.coreMilliseconds); });
    m_worker.Discard(id, task);
}

/// Ends a run that is to leave no trace.
void Scheduler::Forget(const RunId& id, const FrameTask& task)
{
    m_deps.runs.End(id, [] {});
    m_worker.Discard(id, task);
}

/// The database may be at fault. What is not forgotten is attached, and ends, when the farm starts again.
void Scheduler::TryToForget(const RunId& id, const FrameTask& task)
{
    try {
        Forget(id, task);
    } catch (const std::exception& error) {
        spdlog::error("the end of a run could not be recorded: {}", error.what());
    }
}

} // namespace farm
