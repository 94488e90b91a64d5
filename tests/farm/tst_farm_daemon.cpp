#include "farm/rendering/frame_files.h"
#include "tests/farm/farm_fixture.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

#include <csignal>

using namespace farm;

namespace {

/// The real server as a process.
class Daemon : public QProcess
{
public:
    Daemon(const QString& folder, const QStringList& more)
    {
        setProgram(QStringLiteral(FARM_DAEMON));
        setArguments(QStringList {QStringLiteral("--data"), folder, QStringLiteral("--no-demo")} + more);
        setProcessChannelMode(QProcess::ForwardedErrorChannel);
        start();
        while (!m_output.contains('\n') && waitForReadyRead(patienceMs))
            m_output += readAllStandardOutput();
    }

    ~Daemon() override
    {
        kill();
        waitForFinished();
    }

    bool IsListening() const { return m_output.startsWith("listening on http://127.0.0.1:"); }

private:
    QByteArray m_output;
};

} // namespace

class DaemonTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void EndsWhenAsked()
    {
        for (int signal : {0, SIGTERM, SIGINT}) {
            Daemon daemon(m_folder->path(), {QStringLiteral("--stop-with-stdin")});
            QVERIFY(daemon.IsListening());
            if (signal == 0)
                daemon.closeWriteChannel();
            else
                ::kill(static_cast<pid_t>(daemon.processId()), signal);
            QVERIFY(daemon.waitForFinished(patienceMs));
            QCOMPARE(daemon.exitStatus(), QProcess::NormalExit);
            QCOMPARE(daemon.exitCode(), 0);
        }
    }

    void AKillLosesNoFinishedFrame()
    {
        QVERIFY(WriteFile(Path("scene.txt"), "a scene"));
        // Waits in frame 4 until ../../gate exists; a kill of the server must end it too.
        QVERIFY(WriteFile(Path("types.json"),
            ScriptedTypes(
                QStringLiteral("echo $$ > ../../pid; echo half > {output}; echo {frame} >> ../../log; "
                               "[ {frame} -ne 4 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                               "cp {scene} {output}"))));
        FarmData data(m_folder->path());
        const QString job = data.jobs.Add(data.Job(QStringLiteral("job"), 6)).id;
        const QStringList options {
            QStringLiteral("--job-types"), Path("types.json"), QStringLiteral("--scenes"), m_folder->path()};
        Daemon first(m_folder->path(), options);
        QTRY_COMPARE_WITH_TIMEOUT(ReadFile(Path("jobs/log")), QByteArray("1\n2\n3\n4\n"), patienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(data.Only().progress, 50, patienceMs);
        const int renderer = ReadFile(Path("jobs/pid")).toInt();
        first.kill();
        QVERIFY(first.waitForFinished());
        QTRY_COMPARE_WITH_TIMEOUT(::kill(renderer, 0), -1, patienceMs);

        QVERIFY(WriteFile(Path("jobs/gate"), {}));
        const Daemon second(m_folder->path(), options);
        QVERIFY(second.IsListening());
        QTRY_COMPARE_WITH_TIMEOUT(data.Only().status, int(JobStatus::Finished), patienceMs);
        QCOMPARE(ReadFile(Path("jobs/log")), QByteArray("1\n2\n3\n4\n4\n5\n6\n"));
        for (int number = 1; number <= 6; ++number) {
            const QString frame = FrameFiles::FrameName(number, QStringLiteral("txt"));
            QCOMPARE(ReadFile(m_folder->filePath(QStringLiteral("jobs/%1/%2").arg(job, frame))),
                QByteArray("a scene"));
        }
    }

    // While the farm runs.
    void MoneyIsPaidIn()
    {
        FarmData data(m_folder->path());
        const Daemon daemon(m_folder->path(), {});
        QVERIFY(daemon.IsListening());
        const auto credit = [this](const char* account, const char* amount) {
            return QProcess::execute(QStringLiteral(FARM_DAEMON),
                {QStringLiteral("--data"), m_folder->path(), QStringLiteral("--credit"),
                    QString::fromLatin1(account), QStringLiteral("--"), QString::fromLatin1(amount)});
        };
        QCOMPARE(credit("ann", "2.50"), 0);
        QCOMPARE(credit("ann@example.org", "1"), 0);
        QCOMPARE(credit("eve", "1"), 1);
        for (const char* amount : {"much", "-1", "inf"})
            QCOMPARE(credit("ann", amount), 2);
        QCOMPARE(data.accounts.Info(data.account).balance, Micros(13500000));
    }

    void ShippedScenesRender()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("povray")).isEmpty())
            QSKIP("POV-Ray is not installed");
        FarmData data(m_folder->path());
        const QDir scenes(
            QFileInfo(QStringLiteral(FARM_DAEMON)).dir().filePath(QStringLiteral("farm/scenes")));
        const QStringList names = scenes.entryList(QDir::Files);
        QVERIFY(!names.isEmpty());
        QStringList ids;
        for (const QString& name : names) {
            NewJob job = data.Job(name, 2);
            job.scene = name;
            job.width = 64;
            job.height = 36;
            ids.append(data.jobs.Add(job).id);
        }
        const Daemon daemon(m_folder->path(), {});
        for (const QString& id : qAsConst(ids)) {
            QTRY_COMPARE_WITH_TIMEOUT(
                data.jobs.Find(data.account, id)->status, int(JobStatus::Finished), patienceMs);
            const QString frame = m_folder->filePath(QStringLiteral("jobs/%1/frame_0002.png").arg(id));
            QVERIFY(ReadFile(frame).startsWith("\x89PNG"));
        }
        QVERIFY(data.accounts.Info(data.account).balance < 10000000);
    }

private:
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DaemonTest)
#include "tst_farm_daemon.moc"
