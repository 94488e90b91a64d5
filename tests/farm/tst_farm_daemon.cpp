#include "processes/bound_process.h"
#include "tests/farm/farm_fixture.h"
#include "tests/support/worker_process.h"

#include <csignal>
#include <poll.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace farm;

namespace {

/// The server program as a process.
class Daemon : public WorkerProcess
{
public:
    Daemon(const QString& folder, const QStringList& more)
        : WorkerProcess(QStringLiteral(FARM_DAEMON), QStringList {"--data"_s, folder, "--no-demo"_s} + more)
    {
        Await("listening on ");
    }

    bool IsListening() { return Has("listening on http://127.0.0.1:"); }
};

} // namespace

namespace {

// A statement that damages the records of a farm with one job, and the one that mends them.
const std::pair<const char*, const char*> Harms[] = {
    {"UPDATE job_counts SET jobs = 2 WHERE shift = 12", "UPDATE job_counts SET jobs = 1"},
    {"UPDATE frames SET finished_at = 1, file = 'frame_0001.txt', size = 5",
        "UPDATE frames SET finished_at = NULL, file = NULL"},
    {"INSERT INTO contents VALUES (1, 'abcdef', 3)", "DELETE FROM contents"},
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
            QVERIFY(daemon.waitForFinished(Patience));
            QCOMPARE(daemon.exitStatus(), QProcess::NormalExit);
            QCOMPARE(daemon.exitCode(), 0);
        }
    }

    void AKillLosesNoFinishedFrame()
    {
        QVERIFY(WriteFile(Path("scene.txt"_s), "a scene"));
        // The script waits in frame 4 until ../../gate exists. It must end with the server, and so must the program that it
        // has started.
        QVERIFY(WriteFile(Path("types.json"_s),
            ScriptedTypes("sh -c 'echo $$ > ../../child; exec sleep 600' & echo $$ > ../../pid; echo half > "
                          "{output}; echo {frame} >> ../../log; "
                          "[ {frame} -ne 4 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                          "cp {scene} {output}")
                .replace("@jobs@", Path("jobs"_s).toUtf8())));
        FarmData data(m_folder->path());
        const QString job = data.jobs.Add(data.Job("job"_s, 6)).id;
        const QStringList options {"--job-types"_s, Path("types.json"_s), "--scenes"_s, m_folder->path()};
        Daemon first(m_folder->path(), options);
        EVENTUALLY_COMPARE(ReadFile(Path("jobs/log"_s)), QByteArray("1\n3\n6\n2\n4\n"));
        EVENTUALLY_COMPARE(data.Only().progress, 66);
        const int renderer = ReadFile(Path("jobs/pid"_s)).toInt();
        first.Kill();
        EVENTUALLY_COMPARE(::kill(renderer, 0), -1);
        const int child = ReadFile(Path("jobs/child"_s)).toInt();
        EVENTUALLY_COMPARE(::kill(child, 0), -1);

        QVERIFY(WriteFile(Path("jobs/gate"_s), {}));
        Daemon second(m_folder->path(), options);
        QVERIFY(second.IsListening());
        EVENTUALLY_COMPARE(data.Only().status, int(JobStatus::Finished));
        QCOMPARE(ReadFile(Path("jobs/log"_s)), QByteArray("1\n3\n6\n2\n4\n4\n5\n"));
        for (int number = 1; number <= 6; ++number)
            QCOMPARE(ReadFile(Path("jobs/%1/frame_000%2.txt"_s.arg(job).arg(number))), QByteArray("a scene"));
    }

    // QProcess's child waits for a word of its parent first.
    void LeavesNoChildWhenItIsKilledWhileStartingOne()
    {
        int ends[2] = {};
        QCOMPARE(::pipe(ends), 0);
        const pid_t parent = ::fork();
        if (parent == 0) {
            ::pthread_atfork(
                nullptr, [] { ::raise(SIGKILL); }, nullptr);
            BoundProcess process;
            process.setProgram("sleep"_s);
            process.setArguments({"600"_s});
            process.Launch();
        }
        ::close(ends[1]);
        pollfd open {ends[0], POLLIN, 0};
        EVENTUALLY_COMPARE(::poll(&open, 1, 0), 1); // once nobody has the other end
        ::close(ends[0]);
        ::waitpid(parent, nullptr, 0);
    }

    void TakesMoneyWhileTheFarmRuns()
    {
        FarmData data(m_folder->path());
        Daemon daemon(m_folder->path(), {});
        QVERIFY(daemon.IsListening());
        const auto pay = [this](const QString& account, const QString& amount) {
            return Run({"pay"_s, "--data"_s, m_folder->path(), "--"_s, account, amount});
        };
        QCOMPARE(pay("ann"_s, "2.50"_s), 0);
        QCOMPARE(pay("ann@example.org"_s, "1"_s), 0);
        QCOMPARE(pay("eve"_s, "1"_s), 1);
        for (const QString& amount : {"much"_s, "-1"_s, "inf"_s, "1e3"_s, "0.0000001"_s})
            QCOMPARE(pay("ann"_s, amount), 2);
        QCOMPARE(data.Balance(), Micros(13500000));
    }

    void IsCopiedAndCheckedWhileItRuns()
    {
        FarmData data(m_folder->path());
        const QString id = data.jobs.Add(data.Job("one"_s)).id;
        Daemon daemon(m_folder->path(), {});
        QVERIFY(daemon.IsListening());
        const auto check = [this] { return Run({"check"_s, "--data"_s, m_folder->path()}); };
        QCOMPARE(check(), 0);
        QCOMPARE(Run({"backup"_s, "--data"_s, m_folder->path(), Path("copy/farm.sqlite"_s)}), 1);
        QVERIFY(QDir(m_folder->path()).mkdir("copy"_s));
        QCOMPARE(Run({"backup"_s, "--data"_s, m_folder->path(), Path("copy/farm.sqlite"_s)}), 0);
        QCOMPARE(FarmData(Path("copy"_s)).Only().id, id);
        for (const auto& [harm, mend] : Harms) {
            data.Change(harm);
            QCOMPARE(check(), 1);
            data.Change(mend);
            QCOMPARE(check(), 0);
        }
    }

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }
    static int Run(const QStringList& options)
    {
        return QProcess::execute(QStringLiteral(FARM_DAEMON), options);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DaemonTest)
#include "tst_farm_daemon.moc"
