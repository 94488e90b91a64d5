#include "farm/rendering/local_executor.h"

#include "farm/rendering/render_process.h"
#include "farm/rendering/stray_renderers.h"

#include <QStandardPaths>

#include <spdlog/spdlog.h>

#include <algorithm>

namespace farm {

LocalExecutor::LocalExecutor(int slotCount, const QString& dataFolder)
    : m_slots(std::max(1, slotCount))
    , m_dataFolder(dataFolder)
{
    StrayRenderers::End(dataFolder);
    if (!Confinement::IsSupported())
        spdlog::warn(
            "this machine's kernel has no Landlock: renderers can read all files that the farm can read");
}

LocalExecutor::~LocalExecutor() = default;

bool LocalExecutor::Has(const QString& program) const
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

void LocalExecutor::Start(const FrameKey& frame, const RenderCommand& command, Ended ended)
{
    auto process = std::make_unique<RenderProcess>(command, m_dataFolder);
    // Queued, because a renderer that cannot be started may report it before Run() returns.
    QObject::connect(
        process.get(), &RenderProcess::Ended, process.get(),
        [this, frame, ended = std::move(ended)](const RenderResult& result) {
            m_processes.extract(frame).mapped().release()->deleteLater();
            ended(result);
        },
        Qt::QueuedConnection);
    RenderProcess& started = *process;
    m_processes[frame] = std::move(process);
    started.Run();
}

void LocalExecutor::Cancel(const FrameKey& frame)
{
    m_processes.erase(frame);
}

} // namespace farm
