#include "tests/farm/farm_fixture.h"

#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

#include <csignal>

using namespace farm;

namespace {

/// The server program as a process.
class Daemon : public QProcess
{
public:
    Daemon(const QString& folder, const QStringList& more)
    {
        setProgram(QStringLiteral(FARM_DAEMON));
        setArguments(QStringList {"--data"_s, folder, "--no-demo"_s} + more);
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
            Daemon daemon(m_folder->path(), {"--stop-with-stdin"_s});
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

    void RefusesUnusableOptions()
    {
        const char* const options[] = {"--port=65536", "--port=x", "--slots=0", "--price=-1", "--price=1001",
            "--quota=-1", "--log-level=loud", "--credit=", "surplus"};
        for (const char* option : options) {
            QCOMPARE(QProcess::execute(QStringLiteral(FARM_DAEMON),
                         {"--data"_s, m_folder->path(), QString::fromLatin1(option)}),
                2);
        }
        QCOMPARE(QProcess::execute(QStringLiteral(FARM_DAEMON), {"--no-demo"_s}), 2);
    }

    void AKillLosesNoFinishedFrame()
    {
        QVERIFY(WriteFile(Path("scene.txt"), "a scene"));
        // Waits in frame 4 until ../../gate exists; killing the server must end the script too.
        QVERIFY(WriteFile(Path("types.json"),
            ScriptedTypes("echo $$ > ../../pid; echo half > {output}; echo {frame} >> ../../log; "
                          "[ {frame} -ne 4 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                          "cp {scene} {output}")));
        FarmData data(m_folder->path());
        const QString job = data.jobs.Add(data.Job("job"_s, 6)).id;
        const QStringList options {"--job-types"_s, Path("types.json"), "--scenes"_s, m_folder->path()};
        Daemon first(m_folder->path(), options);
        QTRY_COMPARE_WITH_TIMEOUT(ReadFile(Path("jobs/log")), QByteArray("1\n2\n3\n4\n"), patienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(data.Only().progress, 50, patienceMs);
        const int renderer = ReadFile(Path("jobs/pid")).toInt();
        first.kill();
        QVERIFY(first.waitForFinished(patienceMs));
        QTRY_COMPARE_WITH_TIMEOUT(::kill(renderer, 0), -1, patienceMs);

        QVERIFY(WriteFile(Path("jobs/gate"), {}));
        const Daemon second(m_folder->path(), options);
        QVERIFY(second.IsListening());
        QTRY_COMPARE_WITH_TIMEOUT(data.Only().status, int(JobStatus::Finished), patienceMs);
        QCOMPARE(ReadFile(Path("jobs/log")), QByteArray("1\n2\n3\n4\n4\n5\n6\n"));
        for (int number = 1; number <= 6; ++number) {
            const QString frame = "jobs/%1/frame_000%2.txt"_s.arg(job).arg(number);
            QCOMPARE(ReadFile(m_folder->filePath(frame)), QByteArray("a scene"));
        }
    }

    void TakesMoneyWhileTheFarmRuns()
    {
        FarmData data(m_folder->path());
        const Daemon daemon(m_folder->path(), {});
        QVERIFY(daemon.IsListening());
        const auto credit = [this](const char* account, const char* amount) {
            return QProcess::execute(QStringLiteral(FARM_DAEMON),
                {"--data"_s, m_folder->path(), "--credit"_s, QString::fromLatin1(account), "--"_s,
                    QString::fromLatin1(amount)});
        };
        QCOMPARE(credit("ann", "2.50"), 0);
        QCOMPARE(credit("ann@example.org", "1"), 0);
        QCOMPARE(credit("eve", "1"), 1);
        for (const char* amount : {"much", "-1", "inf"})
            QCOMPARE(credit("ann", amount), 2);
        QCOMPARE(data.Balance(), Micros(13500000));
    }

    void RendersTheShippedScenes()
    {
        if (QStandardPaths::findExecutable("povray"_s).isEmpty())
            QSKIP("POV-Ray is not installed");
        FarmData data(m_folder->path());
        const QDir scenes(QFileInfo(QStringLiteral(FARM_DAEMON)).dir().filePath("farm/scenes"_s));
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
                data.jobs.Find(data.account, id).status, int(JobStatus::Finished), patienceMs);
            const QString frame = m_folder->filePath("jobs/%1/frame_0002.png"_s.arg(id));
            QVERIFY(ReadFile(frame).startsWith("\x89PNG"));
        }
        QVERIFY(data.Balance() < 10000000);
    }

private:
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DaemonTest)
#include "tst_farm_daemon.moc"
