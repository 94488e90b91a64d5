#include "host/process/termination_signals.h"

#ifdef Q_OS_UNIX

#include <QSocketNotifier>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr std::array<int, 3> Signals {SIGINT, SIGTERM, SIGHUP};

// The handler writes to this pipe, since a signal handler may do little else.
std::array<int, 2> s_pipe {-1, -1};

void Handle(int number)
{
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const auto written = write(s_pipe[1], &byte, 1);
}

void SetHandlers(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : Signals)
        sigaction(number, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
    if (pipe2(s_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(s_pipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (read(s_pipe[0], &byte, 1) == 1) { }
        emit Received();
    });
    SetHandlers(Handle);
}

TerminationSignals::~TerminationSignals()
{
    SetHandlers(SIG_DFL);
    for (const int end : s_pipe)
        close(end);
}

#else

TerminationSignals::TerminationSignals(QObject* parent)
    : QObject(parent)
{
}

TerminationSignals::~TerminationSignals() = default;

#endif
