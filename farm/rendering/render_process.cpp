#include "farm/rendering/render_process.h"

#include "farm/rendering/stray_renderers.h"

#include <linux/close_range.h>
#include <unistd.h>

namespace farm {

RenderProcess::RenderProcess(
    const QString& runner, const RunId& run, const RunFiles& files, const QString& dataFolder)
    : m_run(run)
    , m_files(files)
{
    setProgram(runner);
    setArguments({files.Order()});
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    StrayRenderers::Mark(environment, dataFolder, run);
    setProcessEnvironment(environment);
    setStandardInputFile(QProcess::nullDevice());
    setStandardOutputFile(QProcess::nullDevice());
    connect(
        this, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &RenderProcess::ReportExit);
    connect(this, &QProcess::errorOccurred, this, &RenderProcess::ReportError);
}

// ~QProcess() ends the process and would report that to an object that is half destroyed.
RenderProcess::~RenderProcess()
{
    disconnect();
}

// Runs in the child between fork and exec: system calls only.
void RenderProcess::setupChildProcess()
{
    ::setpgid(0, 0);
    // An inherited connection would stay open for the client until the renderer ends.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
}

void RenderProcess::ReportExit(int exitCode, QProcess::ExitStatus status)
{
    if (const auto outcome = ReadOutcome(m_files.Outcome())) {
        emit Ended(*outcome);
        return;
    }
    // The renderer itself may have killed it, so this counts as an attempt.
    if (status == QProcess::CrashExit) {
        StrayRenderers::EndRun(m_run);
        emit Ended({RunEnd::SceneFault, QStringLiteral("the program that watches the renderer was killed"),
            {}, 0, {}});
        return;
    }
    emit Ended({RunEnd::FarmFault,
        QStringLiteral("the frame could not be run (code %1): ").arg(exitCode)
            + QString::fromLocal8Bit(readAllStandardError()).trimmed(),
        {}, 0, {}});
}

// Every other error is followed by ReportExit().
void RenderProcess::ReportError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        emit Ended({RunEnd::FarmFault, program() + QStringLiteral(" could not be started: ") + errorString(),
            {}, 0, {}});
}

} // namespace farm
