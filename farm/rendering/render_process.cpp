#include "farm/rendering/render_process.h"

#include <QProcessEnvironment>
#include <QStandardPaths>

#include <csignal>
#include <cstdlib>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace farm {

namespace {

// Renderers say last what went wrong.
constexpr int OutputTailBytes = 400;
constexpr int LowestPriority = 19;

std::int64_t Milliseconds(const timeval& time)
{
    return std::int64_t {time.tv_sec} * 1000 + time.tv_usec / 1000;
}

// The processor time of the renderers that have ended since the last call. Called whenever one has ended,
// this is its time; there is no better account of a single child once QProcess has reaped it.
std::int64_t TakeCoreMilliseconds()
{
    static std::int64_t known = 0;
    rusage usage {};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    const std::int64_t total = Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime);
    return total - std::exchange(known, total);
}

} // namespace

RenderProcess::RenderProcess(const RenderCommand& command)
    : m_timeLimitSeconds(command.timeLimitSeconds)
{
    setProgram(command.program);
    if (command.reach)
        Confine(*command.reach, command.program);
    setArguments(command.arguments);
    setWorkingDirectory(command.folder);
    setProcessChannelMode(QProcess::MergedChannels);
    setStandardInputFile(QProcess::nullDevice());
    connect(this, &QProcess::readyRead, this, &RenderProcess::CollectOutput);
    connect(
        this, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &RenderProcess::ReportExit);
    connect(this, &QProcess::errorOccurred, this, &RenderProcess::ReportError);
    connect(&m_timeLimit, &QTimer::timeout, this, [this] {
        m_timedOut = true;
        KillAll();
    });
    m_timeLimit.setSingleShot(true);
}

RenderProcess::~RenderProcess()
{
    disconnect();
    KillAll();
    waitForFinished();
    TakeCoreMilliseconds();
}

// Of the farm's environment a confined renderer learns only what it needs; its home is where it may write.
void RenderProcess::Confine(const Reach& reach, const QString& program)
{
    m_confinement = std::make_unique<Confinement>(reach, QStandardPaths::findExecutable(program));
    const QProcessEnvironment farms = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment own;
    for (const char* name : {"PATH", "LANG", "LC_ALL", "TZ"}) {
        if (farms.contains(QLatin1String(name)))
            own.insert(QLatin1String(name), farms.value(QLatin1String(name)));
    }
    for (const char* name : {"HOME", "TMPDIR"})
        own.insert(QLatin1String(name), reach.writable);
    setProcessEnvironment(own);
}

void RenderProcess::Run()
{
    m_timeLimit.start(std::chrono::seconds(m_timeLimitSeconds));
    start();
}

// Runs in the child between fork and exec: system calls only.
void RenderProcess::setupChildProcess()
{
    ::setpgid(0, 0);
    ::setpriority(PRIO_PROCESS, 0, LowestPriority);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // A renderer must not keep the connections of clients open.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    if (m_confinement && !m_confinement->Enter())
        ::_exit(EXIT_FAILURE);
}

void RenderProcess::KillAll()
{
    if (processId() > 0)
        ::kill(static_cast<pid_t>(-processId()), SIGKILL);
    kill();
}

void RenderProcess::CollectOutput()
{
    m_outputTail += readAll();
    m_outputTail = m_outputTail.right(OutputTailBytes);
}

void RenderProcess::ReportExit(int exitCode, QProcess::ExitStatus status)
{
    CollectOutput();
    RenderResult result;
    result.coreMilliseconds = TakeCoreMilliseconds();
    result.ok = status == QProcess::NormalExit && exitCode == 0;
    if (!result.ok)
        result.message = Message(exitCode, status);
    emit Ended(result);
}

// Every other error is followed by ReportExit().
void RenderProcess::ReportError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        emit Ended({false, QStringLiteral("the renderer could not be started: ") + errorString(), 0});
}

QString RenderProcess::Message(int exitCode, QProcess::ExitStatus status) const
{
    QString reason = QStringLiteral("the renderer ended with code %1").arg(exitCode);
    if (m_timedOut)
        reason = QStringLiteral("the renderer exceeded its time limit");
    else if (status == QProcess::CrashExit)
        reason = QStringLiteral("the renderer crashed");
    // The first line may have lost its beginning.
    const int cut = m_outputTail.size() < OutputTailBytes ? 0 : m_outputTail.indexOf('\n') + 1;
    const QString output = QString::fromUtf8(m_outputTail.mid(cut)).trimmed();
    return output.isEmpty() ? reason : reason + QStringLiteral("\n") + output;
}

} // namespace farm
