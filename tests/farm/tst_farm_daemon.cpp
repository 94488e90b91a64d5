#include "farm/base/local_time.h"
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

/// A command, the line that it reads, its exit code and a part of its output.
struct Step
{
    const char* command;
    const char* input;
    int code;
    const char* output;
};

// In this order, over a farm with the account "ann".
constexpr Step Steps[] = {
    {"account add bob --quota 1 --price 0.5", "a good secret", 0, ""},
    {"account add Bob", "a good secret", 1, "\"Bob\" already"},
    {"account add eve --email bob", "a good secret", 1, "\"bob\" already"},
    {"account add eve", "too bad", 1, "8 to 1024"},
    {"account add long-name", "Long-Name", 1, "account's name"},
    {"account add eve", "", 1, "password"},
    {"account list --csv", "", 0, "bob,bob,enabled,yes,0,1 GiB,0.5,0\r\n"},
    {"account priority bob 7", "", 0, ""},
    {"account quota bob default", "", 0, ""},
    {"account price bob 0.1234567", "", 2, "six decimals"},
    {"account show bob@example.org", "", 1, "no account"},
    {"account list --csv", "", 0, "bob,bob,enabled,yes,0,default,0.5,7\r\n"},
    {"project add =Titles --pool p", "", 0, "p\n"},
    {"project add =titles", "", 1, "already"},
    {"project add Main --pool p", "", 1, "already"},
    {"project assign =Titles bob eve", "", 1, "no account \"eve\""},
    {"project list --csv", "", 0, "'=Titles,p,0,\r\n"},
    {"project assign p bob ann", "", 0, ""},
    {"project rename =Titles Main", "", 0, ""},
    {"project unassign main ann", "", 0, ""},
    {"project unassign main ann", "", 1, "does not belong"},
    {"project list --csv", "", 0, "Main,p,0,bob\r\n"},
    {"account show bob", "", 0, "projects   Main\n"},
    {"pay bob 2.50 --note for,May", "", 0, "balance: 2.50 RMB"},
    {"pay bob 1 --refund", "", 0, "balance: 1.50 RMB"},
    {"ledger --csv --account bob", "", 0, ",bob,2.5,,,,,,\"for,May\"\r\n"},
    {"ledger --csv --account bob", "", 0, ",bob,-1,,,,,,\r\n"},
    {"ledger --csv --account bob --from 2000-01-01 --to 2000-12-31", "", 0, "note\r\n"},
    {"ledger --from May", "", 2, "May"},
    {"ledger --check", "", 0, "adds up"},
    {"session revoke bob", "", 0, "sessions ended: 1"},
    {"session revoke --id no-such-id", "", 1, "no session"},
    {"session revoke", "", 2, ""},
    {"account administrator bob on", "", 0, ""},
    {"account show bob", "", 0, "sees all   yes\n"},
    {"account administrator bob perhaps", "", 2, "on, off"},
    {"audit --csv --account bob --last 1", "", 0, ",account administrator,bob,on\r\n"},
    {"account disable bob", "", 0, ""},
    {"account password bob", "another secret", 0, ""},
    {"project remove Main", "", 0, ""},
    {"audit --csv --account bob --last 1", "", 0, ",the command line,account password,bob,\r\n"},
    {"account", "", 2, "subcommand"},
    {"accounts", "", 2, ""},
};

} // namespace

namespace {

// A statement that damages the records of a farm with one job, and the one that mends them.
const std::pair<const char*, const char*> Harms[] = {
    {"UPDATE job_counts SET jobs = 2 WHERE shift = 12", "UPDATE job_counts SET jobs = 1"},
    {"UPDATE frames SET finished_at = 1, file = 'frame_0001.txt', size = 5",
        "UPDATE frames SET finished_at = NULL, file = NULL"},
    {"INSERT INTO contents(account, checksum, size) VALUES (1, 'abcdef', 3)", "DELETE FROM contents"},
    {"UPDATE job_sums SET cost = 1", "UPDATE job_sums SET cost = 0"},
    {"DELETE FROM job_sums", "INSERT INTO job_sums VALUES (1, 1, 0, 0)"},
    {"UPDATE accounts SET balance = balance + 1", "UPDATE accounts SET balance = balance - 1"},
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
        QCOMPARE(Run({"backup"_s, "--data"_s, m_folder->path(), Path("farm.sqlite"_s)}), 1);
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

    void NamesDataThatItCannotUse()
    {
        QVERIFY(WriteFile(Path("file"_s), "a file"));
        const QByteArray folder = Refusal({}, Path("file/data"_s));
        QVERIFY2(folder.contains("data folder " + Path("file/data: Not a directory"_s).toUtf8()), folder);
        QVERIFY(Refusal({}, {}).contains("no name"));
        QVERIFY(WriteFile(Path("farm.sqlite"_s), "a text that is not a database"));
        for (const QStringList& command : {QStringList {}, {"account"_s, "list"_s}}) {
            const QByteArray database = Refusal(command, m_folder->path());
            QVERIFY2(database.contains(Path("farm.sqlite: the database is damaged"_s).toUtf8()), database);
        }
    }

    void RefusesToBeReachedUnsafely()
    {
        const auto refusal
            = [this](const QStringList& options) { return Refusal(options, m_folder->path()); };
        QVERIFY(refusal({"--bind"_s, "0.0.0.0"_s, "--no-demo"_s}).contains("--behind-proxy"));
        QVERIFY(refusal({"--behind-proxy"_s, "127.0.0.1"_s}).contains("--no-demo"));
        const QStringList behindProxy {"--behind-proxy"_s, "127.0.0.1,::1"_s};
        const std::int64_t key = FarmData(m_folder->path()).Add("demo", "demo");
        QVERIFY(refusal(behindProxy + QStringList {"--no-demo"_s}).contains("demo accounts demo;"));
        QVERIFY(refusal({"--behind-proxy"_s, "localhost"_s, "--no-demo"_s}).contains("\"localhost\""));
        FarmData(m_folder->path())
            .Change(qPrintable("UPDATE accounts SET disabled = 1 WHERE key = %1"_s.arg(key)));
        QVERIFY(Daemon(m_folder->path(), behindProxy).IsListening());
    }

    void ReadsAConfigurationFile()
    {
        const QString file = Path("farm.toml"_s);
        const auto run = [&](const QByteArray& text) -> QByteArray {
            QProcess process;
            WriteFile(file, text);
            process.start(QStringLiteral(FARM_DAEMON), {"--config"_s, file, "account"_s, "list"_s});
            process.waitForFinished(Patience);
            return QByteArray::number(process.exitCode()) + ' ' + process.readAllStandardError();
        };
        const FarmData database(m_folder->path()); // "account list" requires it
        const QByteArray data = "data = '" + m_folder->path().toUtf8() + "'\n";
        QCOMPARE(run(data + "price = 0.25\nbehind-proxy = ['::1', '10.0.0.9']\nno-demo = true\nport = 0\n"),
            QByteArray("0 "));
        for (const auto& [text, fault] : {std::pair("\ncolour = 1\n", "\"colour\" (line 3"),
                 {"port = true\n", "--port"}, {"price = 1979-05-27\n", "\"price\" cannot"},
                 {"price = \n", "line 2"}, {"help = true\n", "\"help\""}}) {
            const QByteArray answer = run(data + text);
            QVERIFY2(answer.startsWith("2 ") && answer.contains(fault), answer);
        }
    }

    void GoesByOtherLimitsWhenAsked()
    {
        QVERIFY(WriteFile(Path("scene.txt"_s), "a scene"));
        QVERIFY(WriteFile(Path("types.json"_s),
            ScriptedTypes(": > ../../at{frame}; sleep 600").replace("@jobs@", Path("jobs"_s).toUtf8())));
        FarmData data(m_folder->path());
        data.jobs.Add(data.Job("job"_s, 9));
        const QString file = Path("farm.toml"_s);
        WriteFile(file, "slots = 1");
        WorkerProcess daemon("/bin/sh"_s,
            {"-c"_s, "exec \"$0\" \"$@\" 2>&1"_s, QStringLiteral(FARM_DAEMON), "--data"_s, m_folder->path(),
                "--no-demo"_s, "--config"_s, file, "--job-types"_s, Path("types.json"_s), "--scenes"_s,
                m_folder->path()});
        QVERIFY(daemon.Await("listening on "));
        int frames = 1;
        for (const char* limits : {"", "slots = 3", "slots = 5\nframes-per-account = 4"}) {
            WriteFile(file, limits);
            if (*limits != '\0')
                ::kill(static_cast<pid_t>(daemon.processId()), SIGHUP);
            const QDir jobs(Path("jobs"_s));
            EVENTUALLY_COMPARE(jobs.entryList({"at*"_s}, QDir::Files).size(), frames);
            frames += frames == 1 ? 2 : 1;
        }
        // Settings of which one cannot be used change nothing.
        WriteFile(Path("types.json"_s), "{");
        for (const auto& [wrong, refusals] :
            {std::pair("slots = 9\nlog-level = 'off'", 1), {"slots = 0", 2}}) {
            WriteFile(file, wrong);
            ::kill(static_cast<pid_t>(daemon.processId()), SIGHUP);
            EVENTUALLY_COMPARE(
                daemon.Lines().join('\n').count("the settings stay as they were"), int(refusals));
        }
        QCOMPARE(QDir(Path("jobs"_s)).entryList({"at*"_s}, QDir::Files).size(), 4);
    }

    void AdministersWhileTheFarmRuns()
    {
        FarmData data(m_folder->path());
        Daemon daemon(m_folder->path(), {});
        QVERIFY(daemon.IsListening());
        for (const auto& [command, input, code, output] : Steps) {
            if (qstrcmp(command, "session revoke bob") == 0)
                QVERIFY(data.accounts.SignIn("bob"_s, "a good secret"_s, Now()));
            QProcess process;
            process.setProcessChannelMode(QProcess::MergedChannels);
            process.start(QStringLiteral(FARM_DAEMON),
                QStringList {"--data"_s, m_folder->path()}
                    + QString::fromLatin1(command).split(QLatin1Char(' ')));
            process.write(input);
            process.closeWriteChannel();
            QVERIFY(process.waitForFinished(Patience));
            const QByteArray written = process.readAll();
            QVERIFY2(
                process.exitCode() == code && written.contains(output), QByteArray(command).append(written));
        }
        for (const auto& password : {"a good secret"_s, "another secret"_s})
            QVERIFY(!data.accounts.SignIn("bob"_s, password, Now()));
    }

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }
    /// The reason for which the program does not run; "none" if it does.
    static QByteArray Refusal(const QStringList& options, const QString& folder)
    {
        QProcess process;
        process.start(QStringLiteral(FARM_DAEMON), QStringList {"--data"_s, folder} + options);
        return process.waitForFinished(Patience) && process.exitCode() == 1 ? process.readAllStandardError()
                                                                            : QByteArray("none");
    }
    static int Run(const QStringList& options)
    {
        return QProcess::execute(QStringLiteral(FARM_DAEMON), options);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(DaemonTest)
#include "tst_farm_daemon.moc"
