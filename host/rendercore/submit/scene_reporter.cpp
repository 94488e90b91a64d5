#include "host/rendercore/submit/scene_reporter.h"

#include "processes/bound_process.h"

#include <QFile>
#include <QStandardPaths>

#ifdef Q_OS_UNIX
#include <csignal>
#include <unistd.h>
#endif

namespace {

constexpr qint64 LongestReport = 8LL * 1024 * 1024; // bytes

/// A program that is killed together with all programs that it has started.
class ReportProcess : public BoundProcess
{
public:
    ~ReportProcess() override
    {
        if (state() == NotRunning)
            return;
#ifdef Q_OS_UNIX
        if (processId() > 0)
            ::kill(-static_cast<pid_t>(processId()), SIGKILL);
#endif
        kill();
        waitForFinished();
    }

protected:
    // Runs in the child between fork and exec: system calls only.
    void setupChildProcess() override
    {
#ifdef Q_OS_UNIX
        ::setpgid(0, 0);
#endif
    }
};

/// @return the report; empty when there is none, or when it is too long to be genuine.
QByteArray ReadReport(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > LongestReport)
        return {};
    return file.read(LongestReport);
}

} // namespace

SceneReporter::SceneReporter(std::chrono::milliseconds timeLimit)
    : m_timeLimit(timeLimit)
{
}

SceneReporter::~SceneReporter() = default;

std::optional<QByteArray> SceneReporter::Ask(qint64 task, const QString& scene)
{
    if (m_reading)
        LookAfter();
    const auto report = m_reports.find(task);
    if (report != m_reports.end()) {
        const QByteArray text = report->second;
        m_reports.erase(report);
        if (text.isEmpty())
            throw TaskFailure(KindOfScene(scene)->failed);
        return text;
    }
    if (!m_reading)
        Begin(task, scene);
    return std::nullopt;
}

void SceneReporter::Begin(qint64 task, const QString& scene)
{
    m_reading = std::make_unique<Reading>();
    m_reading->task = task;
    m_reading->kind = KindOfScene(scene);
    m_reading->process = std::make_unique<ReportProcess>();
    m_reading->clock.start();
    BoundProcess& process = *m_reading->process;
    process.setProgram(QStandardPaths::findExecutable(QString::fromLatin1(m_reading->kind->program)));
    process.setArguments(m_reading->kind->arguments(RealScenePath(scene), m_reading->Report()));
    process.setWorkingDirectory(m_reading->folder.path());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.Launch();
}

void SceneReporter::LookAfter()
{
    const bool isOver = m_reading->process->state() == QProcess::NotRunning
        || m_reading->process->waitForFinished(0) || m_reading->process->state() == QProcess::NotRunning;
    if (!isOver && !m_reading->clock.hasExpired(m_timeLimit.count()))
        return;
    m_reports[m_reading->task] = isOver ? ReadReport(m_reading->Report()) : QByteArray();
    m_reading.reset();
}

void SceneReporter::Forget(qint64 task)
{
    m_reports.erase(task);
    if (m_reading && m_reading->task == task)
        m_reading.reset();
}

void SceneReporter::ForgetAll()
{
    m_reports.clear();
    m_reading.reset();
}
