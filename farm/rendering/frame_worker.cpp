#include "farm/rendering/frame_worker.h"

#include "farm/base/errors.h"
#include "farm/runner/system_calls.h"
#include "farm/uploads/content_copy.h"

#include <spdlog/spdlog.h>

namespace farm {

namespace {

constexpr int ScenesAtOnce = 4;
constexpr int PicturesAtOnce = 2;

FileReport Report(FileReport::Fault fault, const std::exception& error)
{
    return {fault, QString::fromUtf8(error.what())};
}

} // namespace

FrameWorker::FrameWorker(const FrameFiles& files, const JobTypes& types, const Renderers& renderers)
    : m_files(files)
    , m_types(types)
    , m_renderers(renderers)
    , m_preparers(ScenesAtOnce)
    , m_keepers(PicturesAtOnce)
{
    qRegisterMetaType<FileReport>();
}

FrameWorker::~FrameWorker()
{
    Stop();
}

void FrameWorker::Prepare(const RunId& id, const FrameTask& task, const Flag& isUnwanted)
{
    m_preparers.Add(task.account, task.key.job,
        [this, id, task, isUnwanted] { emit Prepared(id, PrepareNow(id, task, isUnwanted)); });
}

void FrameWorker::Settle(const RunId& id, const FrameTask& task, RunEnd end, bool mayBeKept)
{
    m_keepers.Add(task.account, task.key.job, [this, id, task, end, mayBeKept] {
        const FileReport report = SettleNow(id, task, end, mayBeKept);
        // The other files stay until the end is recorded: if the farm crashes before that, it needs them after the
        // restart.
        m_files.KeepLog(task, id);
        emit Settled(id, report);
    });
}

void FrameWorker::Discard(const RunId& id, const FrameTask& task, bool keepsLog)
{
    m_keepers.Add(task.account, task.key.job, [this, id, task, keepsLog] {
        if (keepsLog)
            m_files.KeepLog(task, id);
        m_files.Discard(task, id);
    });
}

void FrameWorker::Stop()
{
    disconnect();
    m_isStopped = true;
    m_preparers.Stop();
    m_keepers.Stop();
}

FileReport FrameWorker::PrepareNow(const RunId& id, const FrameTask& task, const Flag& isUnwanted) const
{
    const JobType type = m_types.value(task.type);
    // A renderer that could make linked files writable gets copies.
    const bool mayLink = !m_renderers.user.isEmpty() || (type.confined && SystemCalls::CanForbidAttributes());
    try {
        const RenderPlace place = m_files.Prepare(
            task, {type.suffix, mayLink}, id, [this, isUnwanted] { return !m_isStopped && !*isUnwanted; });
        FileReport report;
        report.run = Run {id, task, OrderFor(id, task, type, place, m_renderers)};
        WriteOrder(report.run->order);
        return report;
    } catch (const SceneError& error) {
        return Report(FileReport::Fault::Scene, error);
    } catch (const std::exception& error) {
        return Report(FileReport::Fault::Farm, error);
    }
}

FileReport FrameWorker::SettleNow(const RunId& id, const FrameTask& task, RunEnd end, bool mayBeKept) const
{
    FileReport report;
    try {
        if (end == RunEnd::Done)
            report.picture = m_files.Keep(task, m_types.value(task.type).suffix, id, mayBeKept);
    } catch (const SceneError& error) {
        report = Report(FileReport::Fault::Scene, error);
    } catch (const std::exception& error) {
        report = Report(FileReport::Fault::Farm, error);
        report.isPictureLeft = !m_files.IsLost(task, id);
    }
    if (report.picture || report.fault == FileReport::Fault::Farm)
        return report;
    // The output is removed first, so that a renderer which has filled the disk by itself is blamed for it, and others
    // get the space.
    m_files.DiscardOutput(task, id);
    try {
        m_files.RequireRoom();
    } catch (const std::exception& error) {
        return Report(FileReport::Fault::Farm, error);
    }
    return report;
}

} // namespace farm
