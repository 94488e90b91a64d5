#include "farm/rendering/local_executor.h"

#include "farm/base/local_time.h"
#include "farm/rendering/render_process.h"
#include "farm/rendering/stray_renderers.h"
#include "farm/runner/confinement.h"

#include <QDeadlineTimer>
#include <QStandardPaths>
#include <QSysInfo>

#include <spdlog/spdlog.h>

namespace farm {

namespace {

constexpr int LongestEnd = 2000; // ms

} // namespace

LocalExecutor::LocalExecutor(const Settings& settings)
    : m_settings(settings)
{
    qRegisterMetaType<RunResult>("farm::RunResult");
    StrayRenderers::End(settings.dataFolder);
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

QString LocalExecutor::HindranceOf(const JobType& type) const
{
    if (!QStandardPaths::findExecutable(type.program).isEmpty())
        return {};
    return QStringLiteral("the renderer %1 is not installed on the farm's machine").arg(type.program);
}

void LocalExecutor::Start(const std::vector<Run>& runs)
{
    for (const Run& run : runs)
        StartOne(run);
}

void LocalExecutor::StartOne(const Run& run)
{
    const RunId id = run.id;
    auto process
        = std::make_unique<RenderProcess>(m_settings.runner, id, run.order.files, m_settings.dataFolder);
    // Queued, because a process that cannot be started may report it before Launch() returns.
    connect(
        process.get(), &RenderProcess::Ended, this,
        [this, id](const RunResult& result) { HandleEnd(id, result); }, Qt::QueuedConnection);
    RenderProcess& started = *process;
    m_processes[id] = std::move(process);
    started.Launch();
    emit Started(id, QSysInfo::machineHostName(), Now());
}

void LocalExecutor::HandleEnd(const RunId& run, const RunResult& result)
{
    auto ended = m_processes.extract(run);
    if (ended.empty())
        return;
    ended.mapped().release()->deleteLater();
    emit Ended(run, result);
}

void LocalExecutor::Cancel(const RunId& run)
{
    if (const auto process = m_processes.find(run); process != m_processes.end())
        process->second->terminate();
}

// Renderers end with their farm, but one may have written its outcome before that.
void LocalExecutor::Attach(const std::vector<RecordedRun>& runs)
{
    for (const RecordedRun& run : runs) {
        const auto outcome = ReadOutcome(run.files.Outcome());
        EndLater(run.id,
            outcome.value_or(RunResult {RunEnd::MachineLost, QStringLiteral("the farm ended"), {}, 0, {}}));
    }
}

void LocalExecutor::Stop()
{
    QDeadlineTimer deadline(LongestEnd);
    for (const auto& process : m_processes)
        process.second->terminate();
    for (const auto& process : m_processes)
        process.second->waitForFinished(static_cast<int>(deadline.remainingTime()));
    // The remaining processes are killed with their runner, or at the latest when the farm starts again.
    m_processes.clear();
}

void LocalExecutor::EndLater(const RunId& run, const RunResult& result)
{
    QMetaObject::invokeMethod(
        this, "Ended", Qt::QueuedConnection, Q_ARG(QString, run), Q_ARG(farm::RunResult, result));
}

} // namespace farm
