#include "host/process/farm_process.h"

#include "host/base/backoff.h"

#include <QDebug>
#include <QDir>
#include <QRegularExpression>

#include <cstdio>

namespace {

constexpr int LongestPause = 60000; // ms before a restart
constexpr int KeptLog = 4096;       // bytes

} // namespace

FarmProcess::FarmProcess(const QString& program, const QString& dataFolder, QObject* parent)
    : FarmProcess(program, dataFolder, Limits(), parent)
{
}

FarmProcess::FarmProcess(
    const QString& program, const QString& dataFolder, const Limits& limits, QObject* parent)
    : QObject(parent)
    , m_program(program)
    , m_dataFolder(dataFolder)
    , m_limits(limits)
{
    m_startDeadline.setSingleShot(true);
    m_restart.setSingleShot(true);
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &FarmProcess::ReadOutput);
    connect(&m_process, &QProcess::readyReadStandardError, this, &FarmProcess::ReadLog);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
        &FarmProcess::HandleExit);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            HandleExit();
    });
    connect(&m_startDeadline, &QTimer::timeout, this, &FarmProcess::HandleStartTimeout);
    connect(&m_restart, &QTimer::timeout, this, &FarmProcess::Launch);
}

FarmProcess::~FarmProcess()
{
    m_process.disconnect(this);
    Stop();
}

void FarmProcess::Start()
{
    if (m_wanted)
        return;
    m_wanted = true;
    m_failures = 0;
    Launch();
}

void FarmProcess::Stop()
{
    m_wanted = false;
    m_restart.stop();
    m_startDeadline.stop();
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(m_limits.end)) {
        qWarning() << "the farm did not exit in time; terminating it";
        m_process.terminate();
        if (!m_process.waitForFinished(m_limits.end)) {
            m_process.kill();
            m_process.waitForFinished(m_limits.end);
        }
    }
    ReadLog();
}

QUrl FarmProcess::ReadAnnouncement(const QByteArray& line)
{
    static const QRegularExpression pattern(
        QStringLiteral("^listening on (http://127\\.0\\.0\\.1:([0-9]{1,5}))$"));
    const auto match = pattern.match(QString::fromLatin1(line.trimmed()));
    const int port = match.captured(2).toInt();
    return port > 0 && port < 65536 ? QUrl(match.captured(1)) : QUrl();
}

void FarmProcess::Launch()
{
    m_log.clear();
    m_isTooSlow = false;
    m_startDeadline.start(m_limits.start);
    QStringList arguments {QStringLiteral("--data"), m_dataFolder, QStringLiteral("--port"),
        QStringLiteral("0"), QStringLiteral("--stop-with-stdin")};
    if (m_takesOver)
        arguments.append(QStringLiteral("--take-over"));
    m_process.setProgram(m_program);
    m_process.setArguments(arguments);
    m_process.Launch();
}

/// Passes the farm's log on to this program's standard error and remembers its end.
void FarmProcess::ReadLog()
{
    const QByteArray bytes = m_process.readAllStandardError();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    m_log += bytes;
    m_log = m_log.right(KeptLog);
}

/// @return the last line of the farm's log without its date and level, or another reason if there is none.
QString FarmProcess::Reason() const
{
    static const QRegularExpression prefix(QStringLiteral("^(\\[[^\\]]*\\] *)+"));
    const QByteArray last = m_log.trimmed().split('\n').constLast();
    const QString line = QString::fromUtf8(last).remove(prefix).trimmed();
    if (m_process.error() == QProcess::FailedToStart)
        return tr("%1 cannot be started.").arg(QDir::toNativeSeparators(m_program));
    if (m_isTooSlow)
        return tr("It did not start in time.");
    // A killed farm could not log the reason.
    if (m_process.exitStatus() == QProcess::CrashExit)
        return tr("It crashed or was killed.");
    return line.isEmpty() ? tr("It ended without saying why.") : line;
}

void FarmProcess::ReadOutput()
{
    while (m_process.canReadLine()) {
        const QUrl url = ReadAnnouncement(m_process.readLine());
        if (url.isEmpty())
            continue;
        m_startDeadline.stop();
        m_listening.start();
        emit Listening(url);
    }
}

void FarmProcess::HandleExit()
{
    m_startDeadline.stop();
    if (!m_wanted)
        return;
    ReadLog();
    const QString reason = Reason();
    qWarning().noquote() << "the farm exited unexpectedly:" << reason;
    if (m_listening.isValid() && m_listening.hasExpired(m_limits.steady))
        m_failures = 0;
    m_listening.invalidate();
    emit Lost(reason);
    if (++m_failures > m_limits.restarts) {
        m_wanted = false;
        emit GivenUp(reason);
        return;
    }
    m_restart.start(Backoff(m_limits.firstPause, LongestPause).PauseAfter(m_failures));
}

void FarmProcess::HandleStartTimeout()
{
    qWarning() << "the farm did not announce its address in time; killing it";
    m_isTooSlow = true;
    m_process.kill();
}
