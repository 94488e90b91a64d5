#include "farm/rendering/render_process.h"

#include "farm/rendering/stray_renderers.h"

#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QSysInfo>

#include <csignal>
#include <cstdlib>
#include <linux/close_range.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace farm {

namespace {

// The end of a renderer's output usually names the error, so this much of it becomes the log of the frame, and a shorter
// part of that the message of a job that fails.
constexpr int LogTail = 4000;    // bytes
constexpr int MessageTail = 400; // bytes
constexpr int Priority = 10;     // yields to the desktop, but does not starve beside a busy program

std::int64_t Milliseconds(const timeval& time)
{
    return std::int64_t {time.tv_sec} * 1000 + time.tv_usec / 1000;
}

// Returns the processor time of the renderers that have ended since the last call. It is called whenever one has ended,
// so this is that one's time. Once QProcess has waited for a process, the system no longer reports its own time.
std::int64_t TakeCoreMilliseconds()
{
    static std::int64_t known = 0;
    rusage usage {};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    const std::int64_t total = Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime);
    return total - std::exchange(known, total);
}

} // namespace

RenderProcess::RenderProcess(const RunOrder& order, const QString& dataFolder)
    : m_timeLimit(order.resources.timeLimit)
{
    setProgram(order.program);
    if (order.reach.confined)
        m_confinement
            = std::make_unique<Confinement>(order.reach, QStandardPaths::findExecutable(order.program));
    QProcessEnvironment environment = order.reach.confined ? PoorEnvironment(order.files.OutputFolder())
                                                           : QProcessEnvironment::systemEnvironment();
    StrayRenderers::Mark(environment, dataFolder);
    setProcessEnvironment(environment);
    setArguments(order.arguments);
    setWorkingDirectory(order.folder);
    setProcessChannelMode(QProcess::MergedChannels);
    setStandardInputFile(QProcess::nullDevice());
    connect(this, &QProcess::readyRead, this, &RenderProcess::CollectOutput);
    connect(
        this, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &RenderProcess::ReportExit);
    connect(this, &QProcess::errorOccurred, this, &RenderProcess::ReportError);
    connect(&m_timeLimitTimer, &QTimer::timeout, this, [this] {
        m_timedOut = true;
        KillAll();
    });
    m_timeLimitTimer.setSingleShot(true);
}

RenderProcess::~RenderProcess()
{
    disconnect();
    KillAll();
    waitForFinished();
    TakeCoreMilliseconds();
}

// A confined renderer gets only the part of the farm's environment that it needs; its home is the folder that it may
// write to.
QProcessEnvironment RenderProcess::PoorEnvironment(const QString& home)
{
    const QProcessEnvironment inherited = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment own;
    for (const char* name : {"PATH", "LANG", "LC_ALL", "TZ"}) {
        if (inherited.contains(QLatin1String(name)))
            own.insert(QLatin1String(name), inherited.value(QLatin1String(name)));
    }
    for (const char* name : {"HOME", "TMPDIR"})
        own.insert(QLatin1String(name), home);
    return own;
}

void RenderProcess::Run()
{
    m_timeLimitTimer.start(m_timeLimit);
    Launch();
}

// Runs in the child between fork and exec: system calls only.
void RenderProcess::setupChildProcess()
{
    ::setpgid(0, 0);
    ::setpriority(PRIO_PROCESS, 0, Priority);
    // An inherited connection would stay open for the client until the renderer ends.
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
    m_outputTail = m_outputTail.right(LogTail);
}

void RenderProcess::ReportExit(int exitCode, QProcess::ExitStatus status)
{
    CollectOutput();
    RunResult result;
    result.coreMilliseconds = TakeCoreMilliseconds();
    result.log = OutputEnd(LogTail);
    result.host = QSysInfo::machineHostName();
    result.end = RunEnd::Done;
    if (status != QProcess::NormalExit || exitCode != 0) {
        result.end = m_timedOut ? RunEnd::TimeLimit : RunEnd::SceneFault;
        result.message = Message(exitCode, status);
    }
    emit Ended(result);
}

// Every other error is followed by ReportExit().
void RenderProcess::ReportError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        emit Ended({RunEnd::SceneFault, QStringLiteral("the renderer could not be started: ") + errorString(),
            {}, 0, QSysInfo::machineHostName()});
}

QString RenderProcess::Message(int exitCode, QProcess::ExitStatus status) const
{
    QString reason = QStringLiteral("the renderer ended with code %1").arg(exitCode);
    if (m_timedOut)
        reason = QStringLiteral("the renderer exceeded its time limit");
    else if (status == QProcess::CrashExit)
        reason = QStringLiteral("the renderer crashed");
    const QString output = OutputEnd(MessageTail);
    return output.isEmpty() ? reason : reason + QStringLiteral("\n") + output;
}

/// The last lines of the output, which together have at most so many bytes.
QString RenderProcess::OutputEnd(int most) const
{
    const QByteArray tail = m_outputTail.right(most);
    // The first line is incomplete when output was cut off.
    const int cut = tail.size() < most ? 0 : tail.indexOf('\n') + 1;
    QStringList lines = QString::fromUtf8(tail.mid(cut)).trimmed().split(QLatin1Char('\n'));
    // A renderer that reports its progress goes back to the start of the line each time.
    for (QString& line : lines)
        line = line.section(QLatin1Char('\r'), -1, -1, QString::SectionSkipEmpty).remove(QChar::Null);
    return lines.join(QLatin1Char('\n'));
}

} // namespace farm
