#include "host/rendercore/download/command_runner.h"

#include <exception>
#include <utility>

CommandRunner::CommandRunner(const Backoff& backoff)
    : m_backoff(backoff)
    , m_pause(this)
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &CommandRunner::RunAll);
}

CommandRunner::~CommandRunner()
{
    while (!m_commands.empty() && RunNext()) { }
    if (!m_commands.empty())
        qCritical("%d commands on downloads are lost", static_cast<int>(m_commands.size()));
}

void CommandRunner::Run(std::function<void()> command)
{
    m_commands.push_back(std::move(command));
    if (!m_isRunning && !m_pause.isActive())
        RunAll();
}

void CommandRunner::RunAll()
{
    m_isRunning = true; // a command may add another one
    while (!m_commands.empty() && RunNext())
        m_backoff.Reset();
    m_isRunning = false;
    if (!m_commands.empty())
        m_pause.start(m_backoff.Fail());
}

bool CommandRunner::RunNext()
{
    try {
        m_commands.front()();
    } catch (const std::exception& failure) {
        qWarning("cannot save a command on downloads: %s", failure.what());
        if (m_backoff.Failures() == 0)
            emit Delayed(QString::fromUtf8(failure.what()));
        return false;
    }
    m_commands.pop_front();
    return true;
}
