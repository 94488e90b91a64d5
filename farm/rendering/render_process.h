#pragma once

#include "farm/rendering/confinement.h"
#include "processes/bound_process.h"

#include <QTimer>

#include <chrono>
#include <memory>

namespace farm {

/// One run of a renderer. The destructor ends the renderer and all processes that it has started.
class RenderProcess : public BoundProcess
{
    Q_OBJECT

public:
    /// Throws std::runtime_error when the renderer cannot be confined as the command asks.
    RenderProcess(const RunOrder& order, const QString& dataFolder);
    ~RenderProcess() override;

    void Run();

signals:
    /// Emitted once, when the renderer has ended or could not be started.
    void Ended(const farm::RunResult& result);

protected:
    void setupChildProcess() override;

private:
    void CollectOutput();
    void ReportExit(int exitCode, QProcess::ExitStatus status);
    void ReportError(QProcess::ProcessError error);
    QString Message(int exitCode, QProcess::ExitStatus status) const;
    QString OutputEnd(int most) const;
    void KillAll();
    static QProcessEnvironment PoorEnvironment(const QString& home);

    std::unique_ptr<Confinement> m_confinement;
    std::chrono::seconds m_timeLimit;
    QTimer m_timeLimitTimer;
    QByteArray m_outputTail;
    bool m_timedOut = false;
};

} // namespace farm
