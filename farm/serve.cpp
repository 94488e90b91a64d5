#include "farm/serve.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <spdlog/spdlog.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

namespace farm {

namespace {

constexpr std::chrono::seconds LongestEnd {3};

// The write end of the pipe that carries a signal from its handler into the event loop.
int signalPipe = -1;

void HandleSignal(int signal)
{
    const char byte = char(signal);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe, &byte, 1);
}

// Calls `reload` on SIGHUP and quits on other signals.
std::unique_ptr<QSocketNotifier> WatchSignals(const std::function<void()>& reload)
{
    int ends[2] = {};
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::runtime_error("cannot create a pipe");
    signalPipe = ends[1];
    auto notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, qApp, [reload, file = ends[0]] {
        char signal = 0;
        while (::read(file, &signal, 1) == 1) {
            if (signal != SIGHUP)
                QCoreApplication::quit();
            else
                reload();
        }
    });
    std::signal(SIGHUP, HandleSignal);
    std::signal(SIGTERM, HandleSignal);
    std::signal(SIGINT, HandleSignal);
    std::signal(SIGPIPE, SIG_IGN);
    return notifier;
}

// Systems often allow a program 1024 open files unless it asks for more, which connections alone can use up.
void AllowManyFiles()
{
    rlimit limit {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

std::unique_ptr<QSocketNotifier> QuitAtEndOfStdin()
{
    auto notifier = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
    QSocketNotifier* const watched = notifier.get();
    QObject::connect(watched, &QSocketNotifier::activated, qApp, [watched] {
        char ignored[256];
        if (::read(STDIN_FILENO, ignored, sizeof(ignored)) > 0)
            return;
        watched->setEnabled(false);
        QCoreApplication::quit();
    });
    return notifier;
}

} // namespace

int Serve(const FarmSettings& settings, bool stopWithStdin, const std::function<void(Farm&)>& reload)
{
    AllowManyFiles();
    std::unique_ptr<Farm> farm;
    const auto signalNotifier = WatchSignals([&farm, &reload] {
        try {
            reload(*farm);
            spdlog::info("the settings were read again");
        } catch (const std::exception& error) {
            spdlog::error("the settings stay as they were: {}", error.what());
        }
    });
    const auto stdinNotifier = stopWithStdin ? QuitAtEndOfStdin() : nullptr;
    farm = std::make_unique<Farm>(settings);
    std::printf("listening on %s\n", qPrintable(farm->Url()));
    std::fflush(stdout);
    const int result = QCoreApplication::exec();
    spdlog::info("shutting down");
    // A client that keeps its connection open must not delay the exit; everything acknowledged is on the disk.
    std::thread([] {
        std::this_thread::sleep_for(LongestEnd);
        std::_Exit(0);
    }).detach();
    return result;
}

} // namespace farm
