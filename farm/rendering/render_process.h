#pragma once

#include "farm/runner/run_order.h"
#include "processes/bound_process.h"

namespace farm {

/// A process of quillstar-run-frame for one run. It ends with the thread that has launched it, together with all processes
/// of its renderer.
class RenderProcess : public BoundProcess
{
    Q_OBJECT

public:
    /// The order must have been written.
    RenderProcess(const QString& runner, const RunId& run, const RunFiles& files, const QString& dataFolder);
    /// Kills it when it still runs; nothing is reported then.
    ~RenderProcess() override;

signals:
    /// Emitted once, when the run has ended or could not be started.
    void Ended(const farm::RunResult& result);

protected:
    void setupChildProcess() override;

private:
    void ReportExit(int exitCode, QProcess::ExitStatus status);
    void ReportError(QProcess::ProcessError error);

    RunId m_run;
    RunFiles m_files;
};

} // namespace farm
