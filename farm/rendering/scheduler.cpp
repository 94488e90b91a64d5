#include "farm/rendering/scheduler.h"

#include "farm/base/local_time.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/frames_in_work.h"
#include "farm/rendering/render_queue.h"
#include "storage/disk_full.h"

#include <QFileInfo>

#include <spdlog/spdlog.h>

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
    , m_renderers(renderers)
{
    connect(this, &Scheduler::NudgeWanted, this, &Scheduler::Nudge, Qt::QueuedConnection);
    connect(&m_deps.executor, &Executor::AvailabilityChanged, this, &Scheduler::Nudge);
    connect(&m_deps.executor, &Executor::Started, this, &Scheduler::HandleStart);
    connect(&m_deps.executor, &Executor::Ended, this, &Scheduler::HandleEnd);
    connect(&m_deps.executor, &Executor::Accepted, this,
        [this](const RunId& id, const QString& handle) { m_deps.runs.SetHandle(id, handle); });
    connect(&m_look, &QTimer::timeout, this, &Scheduler::Look);
    m_look.start(lookInterval);
    AttachRuns();
}

void Scheduler::AttachRuns()
{
    std::vector<RecordedRun> recorded;
    for (const RunTable::Entry& run : m_deps.runs.All()) {
        m_work[run.id].task = run.task;
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
    } catch (const std::exception& error) {
        spdlog::error("the jobs cannot be read; the scheduler tries again soon: {}", error.what());
    }
}

void Scheduler::Stop()
{
    m_isStopped = true;
    m_deps.executor.Stop();
}

QStringList Scheduler::RunnableTypes()
{
    QStringList runnable;
    for (auto type = m_types.cbegin(); type != m_types.cend(); ++type) {
        const Availability availability = m_deps.executor.Has(*type);
        if (availability == Availability::Present) {
            m_missingPrograms.erase(type->program);
            runnable.append(type.key());
        } else if (availability == Availability::Missing && m_missingPrograms.insert(type->program).second) {
            spdlog::warn("the renderer {} is not installed; jobs of type {} wait for it",
                type->program.toStdString(), type.key().toStdString());
        }
    }
    return runnable;
}

void Scheduler::CancelUnwantedFrames()
{
    for (auto& [id, work] : m_work) {
        if (work.isCancelled || m_deps.queue.IsWanted(work.task.key))
            continue;
        work.isCancelled = true;
        m_deps.inWork.Remove(work.task.key);
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
    for (const RunTable::Entry& run : chosen)
        m_work[run.id].task = run.task;
    std::vector<Run> prepared;
    for (const RunTable::Entry& run : chosen) {
        if (auto ready = Prepared(run.id, run.task))
            prepared.push_back(*ready);
    }
    m_deps.executor.Start(prepared);
}

std::optional<Run> Scheduler::Prepared(const RunId& id, const FrameTask& task)
{
    const JobType type = m_types.value(task.type);
    try {
        const RenderPlace place = m_deps.files.Prepare(task, type.suffix, id);
        const Run run {id, task, OrderFor(id, task, type, place)};
        WriteOrder(run.order);
        return run;
    } catch (const std::runtime_error& error) {
        // A full disk is no fault of the job: the frame keeps its attempts, and the timer starts it again.
        if (!storage::IsDiskFull(error)) {
            RunResult fault;
            fault.message = QString::fromUtf8(error.what());
            RecordFailure(id, task, fault);
            m_work.erase(id);
            NudgeLater();
            return std::nullopt;
        }
        spdlog::error("job {} waits for space on the disk: {}", task.jobId.toStdString(), error.what());
        m_waits = true;
        Forget(id, task);
        m_work.erase(id);
    }
    return std::nullopt;
}

RunOrder Scheduler::OrderFor(
    const RunId& id, const FrameTask& task, const JobType& type, const RenderPlace& place) const
{
    const double clock = double(task.Number() - task.firstFrame) / task.FrameSpan();
    const QMap<QString, QString> values {
        {QStringLiteral("scene"), place.FromWorkFolder(place.sceneFile)},
        {QStringLiteral("scene_folder"), place.FromWorkFolder(place.sceneFolder)},
        {QStringLiteral("output"), place.FromWorkFolder(place.Output())},
        {QStringLiteral("output_folder"), place.FromWorkFolder(place.run.OutputFolder())},
        {QStringLiteral("output_name"), QFileInfo(place.outputName).completeBaseName()},
        {QStringLiteral("width"), QString::number(task.width)},
        {QStringLiteral("height"), QString::number(task.height)},
        {QStringLiteral("frame"), QString::number(task.Number())},
        {QStringLiteral("frames"), QString::number(task.FrameSpan())},
        {QStringLiteral("clock"), QString::number(clock, 'f', 6)},
    };
    RunOrder order;
    order.id = id;
    order.program = type.program;
    order.arguments = FillIn(type.arguments, values);
    order.folder = place.workFolder;
    order.resources = type.resources;
    order.reach = {type.confined, QStringList {place.sceneFolder} + type.readable,
        QStringList {place.run.OutputFolder()} + type.writable, m_renderers.hidden};
    order.user = m_renderers.user;
    order.files = place.run;
    return order;
}

void Scheduler::HandleStart(const RunId& id, const QString& host, qint64 at)
{
    const auto work = m_work.find(id);
    if (work == m_work.end() || work->second.isCancelled)
        return;
    m_deps.inWork.Add(work->second.task.key, {host, at});
    spdlog::debug("job {} frame {} started on {}", work->second.task.jobId.toStdString(),
        work->second.task.Number(), host.toStdString());
}

void Scheduler::HandleEnd(const RunId& id, const RunResult& result)
{
    const auto ended = m_work.extract(id);
    if (ended.empty() || m_isStopped)
        return;
    const FrameTask& task = ended.mapped().task;
    m_deps.inWork.Remove(task.key);
    m_waits = m_waits || WouldRepeat(result.end);
    try {
        Record(id, task, result);
    } catch (const std::exception& error) {
        // No nudge: rendering again at once could loop forever.
        spdlog::error("a finished frame could not be recorded and will be rendered again: {}", error.what());
        m_waits = true;
        TryToForget(id, task);
        return;
    }
    Nudge();
}

void Scheduler::Record(const RunId& id, const FrameTask& task, const RunResult& result)
{
    if (CountsAsAttempt(result.end)) {
        m_deps.files.RequireRoom();
        RecordFailure(id, task, result);
        return;
    }
    if (WouldRepeat(result.end)) {
        Postpone(id, task, result);
        return;
    }
    if (result.end != RunEnd::Done) {
        if (result.end != RunEnd::Cancelled)
            spdlog::warn("job {} frame {} will be tried again: {}", task.jobId.toStdString(), task.Number(),
                result.message.toStdString());
        Forget(id, task);
        return;
    }
    Picture picture;
    try {
        picture = m_deps.files.Keep(task, m_types.value(task.type).suffix, id);
    } catch (const std::runtime_error& error) {
        if (storage::IsDiskFull(error))
            throw;
        RunResult failure = result;
        failure.message = QString::fromUtf8(error.what());
        RecordFailure(id, task, failure);
        return;
    }
    m_deps.runs.End(
        id, [&] { m_deps.queue.Finish(task.key, picture, result.coreMilliseconds, Now(), result.log); });
    m_deps.files.Discard(task, id);
    spdlog::debug("job {} frame {} finished in {} ms", task.jobId.toStdString(), task.Number(),
        result.coreMilliseconds);
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
    m_deps.files.Discard(task, id);
}

void Scheduler::Postpone(const RunId& id, const FrameTask& task, const RunResult& result)
{
    spdlog::warn(
        "job {} frame {} pauses: {}", task.jobId.toStdString(), task.Number(), result.message.toStdString());
    m_deps.runs.End(id, [&] {
        m_deps.queue.Postpone(
            task.key, Now(), result.message + QLatin1Char('\n') + result.log, result.coreMilliseconds);
    });
    m_deps.files.Discard(task, id);
}

/// Ends a run that is to leave no trace.
void Scheduler::Forget(const RunId& id, const FrameTask& task)
{
    m_deps.runs.End(id, [] {});
    m_deps.files.Discard(task, id);
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
