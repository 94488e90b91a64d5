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

RenderCommand CommandFor(const FrameTask& task, const JobType& type, const RenderPlace& place)
{
    const double clock = double(task.Number() - task.firstFrame) / task.FrameSpan();
    const QMap<QString, QString> values {
        {QStringLiteral("scene"), place.FromWorkFolder(place.sceneFile)},
        {QStringLiteral("scene_folder"), place.FromWorkFolder(place.sceneFolder)},
        {QStringLiteral("output"), place.FromWorkFolder(place.Output())},
        {QStringLiteral("output_folder"), place.FromWorkFolder(place.outputFolder)},
        {QStringLiteral("output_name"), QFileInfo(place.outputName).completeBaseName()},
        {QStringLiteral("width"), QString::number(task.width)},
        {QStringLiteral("height"), QString::number(task.height)},
        {QStringLiteral("frame"), QString::number(task.Number())},
        {QStringLiteral("frames"), QString::number(task.FrameSpan())},
        {QStringLiteral("clock"), QString::number(clock, 'f', 6)},
    };
    RenderCommand command {
        type.program, FillIn(type.arguments, values), place.workFolder, type.frameTimeLimit, {}};
    if (type.confined)
        command.reach = Reach {place.sceneFolder, place.outputFolder};
    return command;
}

} // namespace

Scheduler::Scheduler(RenderQueue& queue, Executor& executor, const FrameFiles& files, FramesInWork& inWork,
    const JobTypes& types, std::chrono::milliseconds lookInterval)
    : m_queue(queue)
    , m_executor(executor)
    , m_files(files)
    , m_inWork(inWork)
    , m_types(types)
{
    connect(this, &Scheduler::NudgeWanted, this, &Scheduler::Nudge, Qt::QueuedConnection);
    connect(&m_look, &QTimer::timeout, this, &Scheduler::Nudge);
    m_look.start(lookInterval);
}

void Scheduler::Nudge()
{
    try {
        m_queue.PauseJobsInArrears();
        CancelUnwantedFrames();
        const QStringList types = RunnableTypes();
        for (auto taken = m_inWork.All(); static_cast<int>(taken.size()) < m_executor.Slots();
             taken = m_inWork.All()) {
            const auto task = m_queue.Next(types, m_lastJob, taken);
            if (!task || !StartFrame(*task))
                return;
        }
    } catch (const std::exception& error) {
        spdlog::error("the jobs cannot be read; the scheduler tries again soon: {}", error.what());
    }
}

void Scheduler::Stop()
{
    for (const FrameKey& frame : m_inWork.All())
        m_executor.Cancel(frame);
}

QStringList Scheduler::RunnableTypes()
{
    QStringList runnable;
    for (auto type = m_types.cbegin(); type != m_types.cend(); ++type) {
        if (m_executor.Has(type->program)) {
            m_missingPrograms.erase(type->program);
            runnable.append(type.key());
        } else if (m_missingPrograms.insert(type->program).second) {
            spdlog::warn("the renderer {} is not installed; jobs of type {} wait for it",
                type->program.toStdString(), type.key().toStdString());
        }
    }
    return runnable;
}

void Scheduler::CancelUnwantedFrames()
{
    for (const FrameKey& frame : m_inWork.All()) {
        if (m_queue.IsWanted(frame))
            continue;
        m_executor.Cancel(frame);
        m_inWork.Remove(frame);
    }
}

/// @return false when the disk is full, so that no frame can be started now.
bool Scheduler::StartFrame(const FrameTask& task)
{
    m_lastJob = task.key.job;
    m_queue.Start(task.key.job);
    const JobType type = m_types.value(task.type);
    try {
        const RenderPlace place = m_files.Prepare(task, type.suffix);
        m_executor.Start(task.key, CommandFor(task, type, place),
            [this, task](const RenderResult& result) { FrameEnded(task, result); });
    } catch (const std::runtime_error& error) {
        // A full disk is no fault of the job: the frame keeps its attempts, and the timer starts it again.
        if (storage::IsDiskFull(error)) {
            spdlog::error("job {} waits for space on the disk: {}", task.jobId.toStdString(), error.what());
            return false;
        }
        FrameFailed(task, QString::fromUtf8(error.what()), {});
        return true;
    }
    m_inWork.Add(task.key, Now());
    spdlog::debug("job {} frame {} started", task.jobId.toStdString(), task.Number());
    return true;
}

void Scheduler::FrameEnded(const FrameTask& task, const RenderResult& result)
{
    m_inWork.Remove(task.key);
    try {
        Record(task, result);
    } catch (const std::exception& error) {
        // No nudge: rendering again at once could loop forever.
        spdlog::error("a finished frame could not be recorded and will be rendered again: {}", error.what());
        return;
    }
    Nudge();
}

void Scheduler::Record(const FrameTask& task, const RenderResult& result)
{
    if (!result.ok) {
        m_files.RequireRoom();
        FrameFailed(task, result.message, result.log);
        return;
    }
    Picture picture;
    try {
        picture = m_files.Keep(task, m_types.value(task.type).suffix);
    } catch (const std::runtime_error& error) {
        if (storage::IsDiskFull(error))
            throw;
        FrameFailed(task, QString::fromUtf8(error.what()), result.log);
        return;
    }
    m_queue.Finish(task.key, picture, result.coreMilliseconds, Now(), result.log);
    spdlog::debug("job {} frame {} finished in {} ms", task.jobId.toStdString(), task.Number(),
        result.coreMilliseconds);
}

void Scheduler::FrameFailed(const FrameTask& task, const QString& message, const QString& log)
{
    const QString reason = message.section(QLatin1Char('\n'), 0, 0);
    spdlog::warn("job {} frame {} failed: {}", task.jobId.toStdString(), task.Number(), reason.toStdString());
    if (m_queue.Fail(task.key, message, Now(), reason + QLatin1Char('\n') + log))
        spdlog::warn("job {} has failed", task.jobId.toStdString());
}

} // namespace farm
