#pragma once

#include "processes/bound_process.h"

#include <QQueue>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace farm {

struct CommandResult
{
    enum class End {
        Exited,
        NotFound, ///< the program could not be started
        TimedOut, ///< it was killed; it may have taken effect
    };
    End end = End::Exited;
    int exitCode = 0;
    QByteArray output;
    QByteArray errors;

    bool IsOk() const { return end == End::Exited && exitCode == 0; }
};

/// Runs the cluster's commands in the background, one after another.
class ClusterCommands : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void(const CommandResult&)>;

    struct Command
    {
        QString program;
        QStringList arguments;
        QByteArray input;
        /// Called once, in this object's thread.
        Done done;
    };

    explicit ClusterCommands(std::chrono::milliseconds timeout);

    void Run(const Command& command);
    /// Kills the command that is running and forgets the others; their `done` is not called.
    void Stop();

private:
    void RunNext();
    void End(CommandResult::End end);
    /// The programs of jobs inherit the environment of the command that submitted them, so it holds nothing but what
    /// the commands need.
    static QProcessEnvironment Environment();

    QQueue<Command> m_waiting;
    std::unique_ptr<BoundProcess> m_process;
    QTimer m_timeout;
};

} // namespace farm
