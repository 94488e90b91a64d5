#pragma once

#include "farm/rendering/executor.h"

#include <QProcess>
#include <QTimer>

#include <memory>

namespace farm {

/// One run of a renderer. Destroying it ends the renderer and whatever that has started.
class RenderProcess : public QProcess
{
    Q_OBJECT

public:
    /// Throws std::runtime_error when it cannot be confined as the command asks.
    explicit RenderProcess(const RenderCommand& command);
    ~RenderProcess() override;

    void Run();

signals:
    /// Sent once.
    void Ended(const farm::RenderResult& result);

protected:
    void setupChildProcess() override;

private:
    void CollectOutput();
    void ReportExit(int exitCode, QProcess::ExitStatus status);
    void ReportError(QProcess::ProcessError error);
    QString Message(int exitCode, QProcess::ExitStatus status) const;
    void KillAll();

    void Confine(const Reach& reach, const QString& program);

    std::unique_ptr<Confinement> m_confinement;
    int m_timeLimitSeconds;
    QTimer m_timeLimit;
    QByteArray m_outputTail;
    bool m_timedOut = false;
};

} // namespace farm

Q_DECLARE_METATYPE(farm::RenderResult)
