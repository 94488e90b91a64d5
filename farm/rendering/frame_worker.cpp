#include "farm/rendering/frame_worker.h"

#include "farm/runner/system_calls.h"
#include "farm/uploads/content_copy.h"
#include "storage/disk_full.h"

#include <spdlog/spdlog.h>

namespace farm {

namespace {

constexpr int ScenesAtOnce = 4;
constexpr int PicturesAtOnce = 2;

FileReport Failure(const std::exception& error)
{
    FileReport report;
    report.message = QString::fromUtf8(error.what());
    report.isDiskFull = storage::IsDiskFull(error);
    return report;
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
    m_preparers.Add(
        task.key.job, [this, id, task, isUnwanted] { emit Prepared(id, PrepareNow(id, task, isUnwanted)); });
}

void FrameWorker::Settle(const RunId& id, const FrameTask& task, RunEnd end, bool isOld)
{
    m_keepers.Add(task.key.job, [this, id, task, end, isOld] {
        const FileReport report = SettleNow(id, task, end, isOld);
        // The rest stays until the end is recorded, for a farm that dies before.
        m_files.KeepLog(task, id);
        emit Settled(id, report);
    });
}

void FrameWorker::Discard(const RunId& id, const FrameTask& task)
{
    m_keepers.Add(task.key.job, [this, id, task] { m_files.Discard(task, id); });
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
    // A renderer that could make shared files writable gets its own.
    const bool mayLink = !m_renderers.user.isEmpty() || (type.confined && SystemCalls::CanForbidAttributes());
    try {
        const RenderPlace place = m_files.Prepare(
            task, {type.suffix, mayLink}, id, [this, isUnwanted] { return !m_isStopped && !*isUnwanted; });
        FileReport report;
        report.run = Run {id, task, OrderFor(id, task, type, place, m_renderers)};
        WriteOrder(report.run->order);
        report.ok = true;
        return report;
    } catch (const std::exception& error) {
        return Failure(error);
    }
}

FileReport FrameWorker::SettleNow(const RunId& id, const FrameTask& task, RunEnd end, bool isOld) const
{
    try {
        FileReport report;
        if (end == RunEnd::Done)
            report.picture = m_files.Keep(task, m_types.value(task.type).suffix, id, isOld);
        else
            m_files.RequireRoom();
        report.ok = true;
        return report;
    } catch (const std::exception& error) {
        return Failure(error);
    }
}

} // namespace farm
