#include "host/process/farm_process.h"

#include "host/farmclient/backoff.h"

#include <QDebug>
#include <QRegularExpression>

namespace {

constexpr int LongestPause = 60000; // ms before a restart

} // namespace

FarmProcess::FarmProcess(const QString& program, const QString& dataFolder, QObject* parent)
    : FarmProcess(program, dataFolder, Patience(), parent)
{
}

FarmProcess::FarmProcess(
    const QString& program, const QString& dataFolder, const Patience& patience, QObject* parent)
    : QObject(parent)
    , m_program(program)
    , m_dataFolder(dataFolder)
    , m_patience(patience)
{
    m_startDeadline.setSingleShot(true);
    m_restart.setSingleShot(true);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &FarmProcess::ReadOutput);
    connect(
        &m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &FarmProcess::HandleEnd);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            HandleEnd();
    });
    connect(&m_startDeadline, &QTimer::timeout, this, &FarmProcess::HandleLate);
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
    if (m_process.waitForFinished(m_patience.end))
        return;
    qWarning() << "the farm does not end by itself";
    m_process.terminate();
    if (!m_process.waitForFinished(m_patience.end)) {
        m_process.kill();
        m_process.waitForFinished(m_patience.end);
    }
}

QUrl FarmProcess::AnnouncedAddress(const QByteArray& line)
{
    static const QRegularExpression pattern(
        QStringLiteral("^listening on (http://127\\.0\\.0\\.1:([0-9]{1,5}))$"));
    const auto match = pattern.match(QString::fromLatin1(line.trimmed()));
    const int port = match.captured(2).toInt();
    return port > 0 && port < 65536 ? QUrl(match.captured(1)) : QUrl();
}

void FarmProcess::Launch()
{
    m_startDeadline.start(m_patience.start);
    m_process.start(m_program,
        {QStringLiteral("--data"), m_dataFolder, QStringLiteral("--port"), QStringLiteral("0"),
            QStringLiteral("--stop-with-stdin")});
}

void FarmProcess::ReadOutput()
{
    while (m_process.canReadLine()) {
        const QUrl url = AnnouncedAddress(m_process.readLine());
        if (url.isEmpty())
            continue;
        m_startDeadline.stop();
        m_listening.start();
        emit Listening(url);
    }
}

void FarmProcess::HandleEnd()
{
    m_startDeadline.stop();
    if (!m_wanted)
        return;
    qWarning().noquote() << "the farm has ended unexpectedly:" << m_process.errorString();
    if (m_listening.isValid() && m_listening.hasExpired(m_patience.steady))
        m_failures = 0;
    m_listening.invalidate();
    emit Lost();
    if (++m_failures > m_patience.restarts) {
        m_wanted = false;
        emit GivenUp(m_process.errorString());
        return;
    }
    m_restart.start(Backoff(m_patience.firstPause, LongestPause).PauseAfter(m_failures));
}

void FarmProcess::HandleLate()
{
    qWarning() << "the farm announces no address";
    m_process.kill();
}
