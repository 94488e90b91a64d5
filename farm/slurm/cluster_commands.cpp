#include "farm/slurm/cluster_commands.h"

#include <QProcessEnvironment>

namespace farm {

namespace {

constexpr int LongestEnd = 1000; // ms; of a process that has been killed

} // namespace

ClusterCommands::ClusterCommands(std::chrono::milliseconds timeout)
{
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(timeout);
    connect(&m_timeout, &QTimer::timeout, this, [this] { End(CommandResult::End::TimedOut); });
}

void ClusterCommands::Run(const Command& command)
{
    m_waiting.enqueue(command);
    if (!m_process)
        RunNext();
}

void ClusterCommands::Stop()
{
    m_waiting.clear();
    m_timeout.stop();
    if (!m_process)
        return;
    m_process->disconnect(this);
    m_process->kill();
    m_process->waitForFinished(LongestEnd);
    m_process.reset();
}

void ClusterCommands::RunNext()
{
    if (m_waiting.isEmpty())
        return;
    const Command& command = m_waiting.head();
    m_process = std::make_unique<BoundProcess>();
    m_process->setProgram(command.program);
    m_process->setArguments(command.arguments);
    m_process->setProcessEnvironment(Environment());
    // Queued, because a missing program may be reported before Launch() returns. When the report arrives, another
    // process may be running.
    const BoundProcess* const started = m_process.get();
    connect(
        m_process.get(), &QProcess::errorOccurred, this,
        [this, started](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart && m_process.get() == started)
                End(CommandResult::End::NotFound);
        },
        Qt::QueuedConnection);
    connect(
        m_process.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
        [this, started] {
            if (m_process.get() == started)
                End(CommandResult::End::Exited);
        },
        Qt::QueuedConnection);
    m_timeout.start();
    m_process->Launch();
    m_process->write(command.input);
    m_process->closeWriteChannel();
}

void ClusterCommands::End(CommandResult::End end)
{
    if (!m_process)
        return;
    m_timeout.stop();
    CommandResult result;
    result.end = end;
    if (end == CommandResult::End::Exited) {
        result.exitCode = m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : -1;
        result.output = m_process->readAllStandardOutput();
        result.errors = m_process->readAllStandardError();
    } else if (end == CommandResult::End::TimedOut) {
        m_process->disconnect(this);
        m_process->kill();
        m_process->waitForFinished(LongestEnd);
    }
    m_process->disconnect(this);
    // A process that is deleted from inside its own signal would crash.
    m_process.release()->deleteLater();
    const Done done = m_waiting.dequeue().done;
    RunNext();
    done(result);
}

QProcessEnvironment ClusterCommands::Environment()
{
    const QProcessEnvironment inherited = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment own;
    const QStringList names = inherited.keys();
    for (const QString& name : names) {
        static const QStringList needed {QStringLiteral("PATH"), QStringLiteral("HOME"),
            QStringLiteral("USER"), QStringLiteral("LOGNAME"), QStringLiteral("LANG"), QStringLiteral("TZ")};
        if (needed.contains(name) || name.startsWith(QLatin1String("SLURM_"))
            || name.startsWith(QLatin1String("SBATCH_")))
            own.insert(name, inherited.value(name));
    }
    own.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return own;
}

} // namespace farm
