#include "farm/rendering/local_executor.h"

#include "farm/base/local_time.h"
#include "farm/rendering/confinement.h"
#include "farm/rendering/render_process.h"
#include "farm/rendering/stray_renderers.h"

#include <QStandardPaths>
#include <QSysInfo>

#include <spdlog/spdlog.h>

#include <algorithm>

namespace farm {

LocalExecutor::LocalExecutor(int slotCount, const QString& dataFolder)
    : m_slots(std::max(1, slotCount))
    , m_dataFolder(dataFolder)
{
    qRegisterMetaType<RunResult>("farm::RunResult");
    StrayRenderers::End(dataFolder);
    if (!Confinement::IsSupported())
        spdlog::warn(
            "this machine's kernel has no Landlock: renderers can read all files that the farm can read");
}

LocalExecutor::~LocalExecutor() = default;

Availability LocalExecutor::Has(const JobType& type)
{
    return QStandardPaths::findExecutable(type.program).isEmpty() ? Availability::Missing
                                                                  : Availability::Present;
}

void LocalExecutor::Start(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        try {
            StartOne(run);
        } catch (const std::runtime_error& error) {
            EndLater(run.id, {RunEnd::FarmFault, QString::fromUtf8(error.what()), {}, 0, {}});
        }
    }
}

void LocalExecutor::StartOne(const Run& run)
{
    auto process = std::make_unique<RenderProcess>(run.order, m_dataFolder);
    const RunId id = run.id;
    // Queued, because a renderer that cannot be started may report it before Run() returns.
    connect(
        process.get(), &RenderProcess::Ended, this,
        [this, id](const RunResult& result) {
            auto ended = m_processes.extract(id);
            if (ended.empty())
                return;
            ended.mapped().release()->deleteLater();
            emit Ended(id, result);
        },
        Qt::QueuedConnection);
    RenderProcess& started = *process;
    m_processes[id] = std::move(process);
    started.Run();
    emit Started(id, QSysInfo::machineHostName(), Now());
}

void LocalExecutor::Cancel(const RunId& run)
{
    if (m_processes.erase(run) != 0)
        EndLater(run, {RunEnd::Cancelled, {}, {}, 0, {}});
}

// Renderers end with their farm, so none can be left.
void LocalExecutor::Attach(const std::vector<RecordedRun>& runs)
{
    for (const RecordedRun& run : runs)
        EndLater(run.id, {RunEnd::MachineLost, QStringLiteral("the farm ended"), {}, 0, {}});
}

void LocalExecutor::Stop()
{
    m_processes.clear();
}

void LocalExecutor::EndLater(const RunId& run, const RunResult& result)
{
    QMetaObject::invokeMethod(
        this, "Ended", Qt::QueuedConnection, Q_ARG(QString, run), Q_ARG(farm::RunResult, result));
}

} // namespace farm
