#include "farm/runner/frame_runner.h"

#include "farm/runner/folder_use.h"
#include "farm/runner/process_tree.h"

#include <QRegularExpression>
#include <QSysInfo>

#include <algorithm>
#include <csignal>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace farm {

namespace {

// The interval at which limits that the kernel does not enforce are checked.
constexpr std::chrono::milliseconds LookInterval {500};
// The output may be in a shared folder, so it is checked less often, and checking takes only a small part of the time.
constexpr std::chrono::milliseconds OutputLookInterval {2000};
constexpr int PausesPerLook = 9;
constexpr std::int64_t Mebibyte = 1 << 20;

std::int64_t Milliseconds(const timeval& time)
{
    constexpr int PerSecond = 1000;
    return std::int64_t {time.tv_sec} * PerSecond + time.tv_usec / PerSecond;
}

} // namespace

FrameRunner::FrameRunner(const RunOrder& order)
    : m_order(order)
    , m_log(order.files.Log())
    , m_deadline(std::chrono::steady_clock::now() + order.resources.timeLimit)
{
    TakeSignals();
}

FrameRunner::~FrameRunner()
{
    ::close(m_signals);
}

void FrameRunner::TakeSignals()
{
    sigset_t awaited {};
    ::sigemptyset(&awaited);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD})
        ::sigaddset(&awaited, signal);
    ::sigprocmask(SIG_BLOCK, &awaited, nullptr);
    m_signals = ::signalfd(-1, &awaited, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_signals < 0 || ::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0)
        throw std::runtime_error("the renderer cannot be watched");
    // A farm binds its processes with SIGKILL, which would leave the renderer's own processes behind.
    int binding = 0;
    if (::prctl(PR_GET_PDEATHSIG, &binding) == 0 && binding == SIGKILL)
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
}

RunResult FrameRunner::Run()
{
    const auto begin = std::chrono::steady_clock::now();
    RunResult result;
    result.host = QSysInfo::machineHostName();
    try {
        Renderer renderer(m_order);
        const int output = renderer.Start();
        m_renderer = renderer.Process();
        Watch(output);
        m_time.LookAt(ProcessTree::Measure().processes);
        if (!ProcessTree::End())
            m_log.Add("\nprocesses of the renderer could not be ended\n");
        ReadOutput(output);
        ::close(output);
        const auto duration = std::chrono::steady_clock::now() - begin;
        result.seconds = std::chrono::duration_cast<std::chrono::seconds>(duration).count();
        const Verdict verdict = Judge();
        result.end = verdict.end;
        result.message = verdict.message;
    } catch (const std::runtime_error& error) {
        // The renderer has not begun with the scene, so this machine is at fault.
        result.end = RunEnd::FarmFault;
        result.message = QString::fromUtf8(error.what());
        ProcessTree::End();
    }
    // The output of a failure is useless, and may have filled the disk that the outcome needs.
    if (CountsAsAttempt(result.end))
        RemoveFiles(m_order.files.OutputFolder());
    m_log.Finish();
    result.log = m_log.End(OutputLog::LongEnd);
    result.coreMilliseconds = CoreMilliseconds();
    return result;
}

void FrameRunner::Watch(int output)
{
    while (!m_status && !m_verdict) {
        pollfd waits[] = {{m_signals, POLLIN, 0}, {output, POLLIN, 0}};
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            m_deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            m_verdict = Verdict {RunEnd::TimeLimit, QStringLiteral("the renderer exceeded its time limit")};
            return;
        }
        // A renderer may close its output and go on.
        const bool isOpen = output >= 0;
        ::poll(waits, isOpen ? 2 : 1, static_cast<int>(std::min(left, LookInterval).count()));
        if ((waits[0].revents & POLLIN) != 0)
            HandleSignals();
        if (isOpen && waits[1].revents != 0)
            ReadOutput(output);
        if (isOpen && (waits[1].revents & (POLLHUP | POLLIN)) == POLLHUP)
            output = -1;
        if (const auto now = std::chrono::steady_clock::now(); now >= m_nextLook) {
            m_nextLook = now + LookInterval;
            LookAtUse();
        }
        LookAtOutput();
    }
}

void FrameRunner::HandleSignals()
{
    signalfd_siginfo info {};
    bool isCancelled = false;
    while (::read(m_signals, &info, sizeof(info)) == sizeof(info))
        isCancelled = isCancelled || info.ssi_signo != SIGCHLD;
    ProcessTree::Reap([this](pid_t process, int status) {
        if (process == m_renderer)
            m_status = status;
    });
    if (isCancelled && !m_status)
        m_verdict = Verdict {RunEnd::Cancelled, QStringLiteral("the run was cancelled")};
}

void FrameRunner::LookAtUse()
{
    const ProcessTree::Use use = ProcessTree::Measure();
    m_time.LookAt(use.processes);
    const Resources& most = m_order.resources;
    if (use.memory > MemoryLimit())
        m_verdict = Verdict {RunEnd::SceneFault,
            QStringLiteral("the renderer exceeded its memory limit of %1 MiB").arg(MemoryLimit() / Mebibyte)};
    else if (use.tasks > most.processes)
        m_verdict = Verdict {RunEnd::SceneFault,
            QStringLiteral("the renderer exceeded its limit of %1 processes").arg(most.processes)};
}

// The kernel limits only the size of each file, but a full disk would stop everybody.
void FrameRunner::LookAtOutput()
{
    const auto begin = std::chrono::steady_clock::now();
    if (begin < m_nextOutputLook || m_verdict)
        return;
    const FolderUse use = MeasureFolder(m_order.files.OutputFolder());
    const std::int64_t most = m_order.resources.outputSize;
    if (most > 0 && use.bytes > most)
        m_verdict = Verdict {RunEnd::SceneFault,
            QStringLiteral("the renderer wrote more than %1 MiB in all").arg(most / Mebibyte)};
    else if (use.entries > MostEntries)
        m_verdict = Verdict {
            RunEnd::SceneFault, QStringLiteral("the renderer wrote more than %1 files").arg(MostEntries)};
    const auto end = std::chrono::steady_clock::now();
    m_nextOutputLook = end
        + std::max<std::chrono::steady_clock::duration>(OutputLookInterval, PausesPerLook * (end - begin));
}

/// The processor time of all processes that have ended below this one. The kernel adds it up, but without those whose
/// parents ignore their ends; the repeated checks know only the processes that they have seen.
std::int64_t FrameRunner::CoreMilliseconds() const
{
    rusage usage {};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return std::max(Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime), m_time.Milliseconds());
}

// Without a limit of its own, a frame must still leave the machine usable.
std::int64_t FrameRunner::MemoryLimit() const
{
    constexpr int Tenths = 9;
    static const std::int64_t most
        = std::int64_t {::sysconf(_SC_PHYS_PAGES)} / 10 * Tenths * ::sysconf(_SC_PAGESIZE);
    return m_order.resources.memory > 0 ? m_order.resources.memory : most;
}

void FrameRunner::ReadOutput(int output)
{
    // No more than a pipe holds, so that a renderer that never stops writing cannot delay the checks of its limits.
    constexpr int MostBlocks = 16;
    char bytes[65536];
    ssize_t count = 1;
    for (int block = 0; block < MostBlocks && count > 0; ++block) {
        count = ::read(output, bytes, sizeof(bytes));
        if (count > 0)
            m_log.Add(QByteArray(bytes, static_cast<int>(count)));
    }
}

FrameRunner::Verdict FrameRunner::Judge() const
{
    Verdict verdict = m_verdict ? *m_verdict : JudgeStatus();
    const QString output = m_log.End(OutputLog::ShortEnd);
    if (verdict.end != RunEnd::Done && verdict.end != RunEnd::Cancelled && !output.isEmpty())
        verdict.message += QLatin1Char('\n') + output;
    return verdict;
}

FrameRunner::Verdict FrameRunner::JudgeStatus() const
{
    const int status = *m_status;
    if (WIFEXITED(status)) {
        const int code = WEXITSTATUS(status);
        if (code == 0)
            return {};
        if (MissesLicence())
            return {RunEnd::LicenceMissing, QStringLiteral("the renderer got no licence")};
        return {RunEnd::SceneFault, QStringLiteral("the renderer ended with code %1").arg(code)};
    }
    switch (WTERMSIG(status)) {
    case SIGXFSZ:
        return {RunEnd::SceneFault,
            QStringLiteral("the renderer wrote a file of more than %1 MiB")
                .arg(m_order.resources.fileSize / Mebibyte)};
    case SIGKILL:
        return {RunEnd::SceneFault,
            QStringLiteral("the renderer was killed; the machine may have run out of memory")};
    default:
        return {RunEnd::SceneFault, QStringLiteral("the renderer crashed")};
    }
}

bool FrameRunner::MissesLicence() const
{
    const QRegularExpression complaint(m_order.licenceMissing);
    return !m_order.licenceMissing.isEmpty() && complaint.match(m_log.End(OutputLog::LongEnd)).hasMatch();
}

} // namespace farm
