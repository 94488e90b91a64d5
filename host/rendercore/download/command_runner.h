#pragma once

#include "host/base/backoff.h"

#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>

/// Runs commands that write to the disk, in their order and each until it succeeds, so that none is lost.
class CommandRunner : public QObject
{
    Q_OBJECT

public:
    explicit CommandRunner(const Backoff& backoff);

    /// Tries the failed commands one last time.
    ~CommandRunner() override;

    /// @param command throws std::exception when it has changed nothing and is to be run again.
    void Run(std::function<void()> command);

signals:
    /// A command has failed. Emitted once until one succeeds.
    void Delayed(const QString& reason);

private:
    bool RunNext();
    void RunAll();

    std::deque<std::function<void()>> m_commands;
    Backoff m_backoff;
    bool m_isRunning = false;
    QTimer m_pause;
};
