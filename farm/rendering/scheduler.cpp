#include "farm/rendering/scheduler.h"

#include "farm/base/local_time.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/frames_in_work.h"
#include "farm/rendering/hindrances.h"
#include "farm/rendering/render_queue.h"

#include <spdlog/spdlog.h>

#include <algorithm>
#include <utility>

namespace farm {

namespace {

/// Whether another attempt at the frame would probably end in the same way at once.
bool WouldRepeat(RunEnd end)
{
    return end == RunEnd::FarmFault || end == RunEnd::LicenceMissing;
}

std::string NameOf(const FrameTask& task)
{
    return "job " + task.jobId.toStdString() + " frame " + std::to_string(task.Number());
}

/// The running time of a failed renderer; none when it did not run. After the cluster's own time limit there is no
/// report of it, so it counts as longer than quick.
std::optional<std::int64_t> SecondsOf(const RunResult& result)
{
    if (result.host.isEmpty())
        return std::nullopt;
    return result.end == RunEnd::TimeLimit ? std::max(result.seconds, TypeHealth::QuickSeconds + 1)
                                           : result.seconds;
}

QString FirstLine(const QString& text)
{
    return text.section(QLatin1Char('\n'), 0, 0);
}

} // namespace

Scheduler::Scheduler(const Dependencies& dependencies, const JobTypes& types, const Renderers& renderers,
    std::chrono::milliseconds lookInterval)
    : m_deps(dependencies)
    , m_types(types)
    , m_pauses(lookInterval)
    , m_worker(dependencies.files, types, renderers)
{
    m_nudgeTimer.setSingleShot(true);
    connect(&m_nudgeTimer, &QTimer::timeout, this, &Scheduler::Nudge);
    connect(this, &Scheduler::NudgeWanted, &m_nudgeTimer, qOverload<>(&QTimer::start), Qt::QueuedConnection);
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
        work.state = State::Started;
        work.isOld = work.mayBeKept = true;
        recorded.push_back({run.id, run.task, m_deps.files.FilesOf(run.task.jobId, run.id), run.handle});
    }
    m_deps.executor.Attach(recorded);
}

void Scheduler::Look()
{
    m_waits = false;
    std::vector<RunId> ended;
    for (const auto& [id, work] : m_work) {
        if (work.state == State::Ended || work.state == State::Settled)
            ended.push_back(id);
    }
    for (const RunId& id : ended)
        Advance(id);
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
    // Keyed by job and run, because a cluster holds thousands of frames, but of few jobs.
    std::map<std::pair<std::int64_t, int>, bool> wanted;
    for (auto& [id, work] : m_work) {
        if (*work.isUnwanted)
            continue;
        const auto known = wanted.try_emplace({work.task.key.job, work.task.key.run}, true);
        if (known.second)
            known.first->second = m_deps.queue.IsWanted(work.task.key);
        if (known.first->second)
            continue;
        *work.isUnwanted = true;
        m_deps.inWork.Remove(work.task.key);
        if (work.state == State::Started)
            m_deps.executor.Cancel(id);
    }
}

std::vector<FrameTask> Scheduler::ChooseFrames()
{
    const std::size_t capacity = std::size_t(std::max(0, m_deps.executor.Capacity()));
    if (m_work.size() >= capacity)
        return {};
    std::set<FrameKey> taken;
    for (const auto& work : m_work)
        taken.insert(work.second.task.key);
    return m_deps.queue.Choose(
        {RunnableTypes(), capacity - m_work.size(), m_pauses.Paused(JobPauses::Clock::now())}, taken, Now());
}

void Scheduler::BeginFrames()
{
    std::vector<RunTable::Entry> runs;
    std::set<std::int64_t> jobs;
    for (const FrameTask& task : ChooseFrames()) {
        runs.push_back({RunTable::NewRunId(task.key), task, {}});
        jobs.insert(task.key.job);
    }
    if (runs.empty())
        return;
    m_deps.runs.Begin(runs, [&] { m_deps.queue.Start(jobs); });
    for (const RunTable::Entry& run : runs) {
        Work& work = m_work[run.id];
        work.task = run.task;
        m_worker.Prepare(run.id, run.task, work.isUnwanted);
    }
}

void Scheduler::HandlePrepared(const RunId& id, const FileReport& report)
{
    const auto found = m_work.find(id);
    if (found == m_work.end() || m_isStopped)
        return;
    Work& work = found->second;
    if (report.run && !*work.isUnwanted) {
        work.state = State::Ready;
        m_ready.push_back(*report.run);
        m_startTimer.start(0);
        return;
    }
    work.state = State::Settled;
    if (!*work.isUnwanted)
        Judge(work, report);
    Conclude(id);
}

void Scheduler::StartReady()
{
    std::vector<Run> wanted;
    std::vector<RunId> unwanted;
    for (const Run& run : std::exchange(m_ready, {})) {
        const auto work = m_work.find(run.id);
        if (work == m_work.end() || m_isStopped)
            continue;
        work->second.state = *work->second.isUnwanted ? State::Settled : State::Started;
        if (work->second.state == State::Started)
            wanted.push_back(run);
        else
            unwanted.push_back(run.id);
    }
    if (!wanted.empty())
        m_deps.executor.Start(wanted);
    // This comes last, because it may cancel runs, which the executor must know by then.
    for (const RunId& id : unwanted)
        Conclude(id);
}

void Scheduler::HandleStart(const RunId& id, const QString& host, qint64 at)
{
    const auto work = m_work.find(id);
    if (work == m_work.end() || *work->second.isUnwanted)
        return;
    // The node's clock may be ahead of the farm's.
    const std::int64_t since = std::min<std::int64_t>(at, Now());
    const FrameTask& task = work->second.task;
    const FrameProgress progress {
        m_deps.files.FilesOf(task.jobId, id).Log(), m_types.value(task.type).progress};
    m_deps.inWork.Add(task.key, {host, since, progress});
    m_deps.queue.NoteStart(task.key, since);
    spdlog::debug("{} started on {}", NameOf(task), host.toStdString());
}

void Scheduler::HandleEnd(const RunId& id, const RunResult& result)
{
    const auto work = m_work.find(id);
    if (work == m_work.end() || m_isStopped)
        return;
    m_deps.inWork.Remove(work->second.task.key);
    work->second.result = result;
    work->second.state = State::Ended;
    Conclude(id);
}

void Scheduler::HandleSettled(const RunId& id, const FileReport& report)
{
    const auto work = m_work.find(id);
    if (work == m_work.end() || m_isStopped)
        return;
    work->second.state = State::Settled;
    Judge(work->second, report);
    Conclude(id);
}

/// Decides by the files of a run what becomes of its frame.
void Scheduler::Judge(Work& work, const FileReport& report)
{
    m_waits = m_waits || report.fault == FileReport::Fault::Farm;
    if (report.fault != FileReport::Fault::None)
        work.result.message = report.message;
    if (report.picture) {
        m_pauses.End(work.task.key.job);
        work.picture = report.picture;
        work.fate = Fate::Finished;
    } else if (report.isPictureLeft) {
        spdlog::error("the picture of {} could not be kept; the farm tries again soon: {}", NameOf(work.task),
            report.message.toStdString());
        work.state = State::Ended;
        work.mayBeKept = true;
    } else if (work.isOld && work.result.end == RunEnd::Done) {
        // The disk may have lost the picture when the machine lost its power.
        work.fate = Fate::Forgotten;
    } else {
        work.fate = report.fault == FileReport::Fault::Farm ? Fate::Postponed : Fate::Failed;
    }
}

/// Advances a run that has ended, and goes on with others.
void Scheduler::Conclude(const RunId& id)
{
    Advance(id);
    if (!m_waits)
        m_nudgeTimer.start(0);
}

/// Takes an ended run through the settling of its files to the record of its end. When the disk or the database fails,
/// the run stays where it is, and the next look tries again: a finished frame is never rendered twice for such a
/// reason.
void Scheduler::Advance(const RunId& id)
{
    const auto found = m_work.find(id);
    if (m_waits || found == m_work.end())
        return;
    Work& work = found->second;
    try {
        if (work.state == State::Ended)
            Settle(id, work);
        if (work.state == State::Settled) {
            Record(id, work);
            m_work.erase(found);
        }
    } catch (const std::exception& error) {
        spdlog::error("the end of {} could not be recorded; the farm tries again soon: {}", NameOf(work.task),
            error.what());
        m_waits = true;
    }
}

void Scheduler::Settle(const RunId& id, Work& work)
{
    const RunEnd end = work.result.end;
    const bool isOvertaken = m_deps.queue.IsOvertaken(work.task.key);
    if (!isOvertaken && (end == RunEnd::Done || CountsAsAttempt(end))) {
        work.state = State::Settling;
        m_worker.Settle(id, work.task, end, work.mayBeKept);
        return;
    }
    work.state = State::Settled;
    // If frames began again at once, an administrator could never cancel them on the cluster. But an earlier farm
    // process may have cancelled its own frames when it shut down.
    const bool isTakenAway = end == RunEnd::Cancelled && !*work.isUnwanted && !work.isOld;
    work.fate = !isOvertaken && (isTakenAway || WouldRepeat(end)) ? Fate::Postponed : Fate::Forgotten;
    if (work.fate == Fate::Postponed)
        m_pauses.AddFault(work.task.key.job, JobPauses::Clock::now());
}

void Scheduler::Record(const RunId& id, const Work& work)
{
    const RunResult& result = work.result;
    const FrameKey& frame = work.task.key;
    const QString reason = FirstLine(result.message);
    bool hasFailed = false;
    m_deps.runs.End(id, [&] {
        if (work.fate == Fate::Finished)
            m_deps.queue.Finish(frame, *work.picture, result.coreMilliseconds, Now(), result.log);
        if (work.fate == Fate::Failed)
            hasFailed = m_deps.queue.Fail(frame, result.message, Now(),
                reason + QLatin1Char('\n') + result.log, result.coreMilliseconds, SecondsOf(result));
        if (work.fate == Fate::Postponed)
            m_deps.queue.Postpone(frame, result.message, Now(), result.log, result.coreMilliseconds);
    });
    // The log of a frame that is not wanted could replace that of the job's next run.
    m_worker.Discard(id, work.task, !*work.isUnwanted);
    if (work.fate == Fate::Finished)
        spdlog::debug("{} finished in {} ms", NameOf(work.task), result.coreMilliseconds);
    else if (work.fate != Fate::Forgotten)
        spdlog::warn("{} {}: {}", NameOf(work.task), work.fate == Fate::Failed ? "failed" : "pauses",
            reason.toStdString());
    else if (!*work.isUnwanted)
        spdlog::warn("{} will be tried again: {}", NameOf(work.task), reason.toStdString());
    if (hasFailed)
        spdlog::warn("job {} has failed", work.task.jobId.toStdString());
}

} // namespace farm
