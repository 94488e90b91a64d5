#include "host/process/farm_process.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

#include <csignal>

namespace {

using Farm = std::tuple<const char*, QByteArray>;
const Farm failures[] = {
    {"crashes at once", "exit 1"},
    {"announces nothing", "exec cat >/dev/null"},
};

QByteArray Listen()
{
    return "echo starting; echo listening on http://127.0.0.1:4711; ";
}

const Farm farms[] = {
    {"ends when asked", Listen() + "exec cat >/dev/null"},
    {"ignores the request", "trap '' TERM; " + Listen() + "while :; do read x; done"},
};

bool IsRunning(qint64 id)
{
    return kill(static_cast<pid_t>(id), 0) == 0;
}

} // namespace

/// Start, crash and end of the embedded farm, with shell scripts in its place.
class TestHostFarmProcess : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_limits = {Patience, 5, 2, Patience, 200}; }

    void RestartsAfterACrashAndStopsForGood_data() { AddRows(farms); }
    void RestartsAfterACrashAndStopsForGood()
    {
        FarmProcess farm(Program(std::get<1>(Row(farms))), m_folder.path(), m_limits);
        QSignalSpy listening(&farm, &FarmProcess::Listening);
        QSignalSpy lost(&farm, &FarmProcess::Lost);
        farm.Start();
        EVENTUALLY_COMPARE(listening.count(), 1);
        const qint64 first = farm.ProcessId();
        QCOMPARE(kill(static_cast<pid_t>(first), SIGKILL), 0);
        EVENTUALLY_COMPARE(listening.count(), 2);
        const qint64 second = farm.ProcessId();
        QVERIFY(second != first && IsRunning(second));
        farm.Stop();
        QVERIFY(!IsRunning(second));
        QCOMPARE(lost.count(), 1);
        QCOMPARE(lost[0][0].toString(), "It crashed or was killed."_s);
    }

    void GivesUpAfterTooManyFailures_data() { AddRows(failures); }
    void GivesUpAfterTooManyFailures()
    {
        m_limits.start = 200;
        FarmProcess farm(Program(std::get<1>(Row(failures))), m_folder.path(), m_limits);
        QSignalSpy lost(&farm, &FarmProcess::Lost);
        QSignalSpy givenUp(&farm, &FarmProcess::GivenUp);
        farm.Start();
        EVENTUALLY_COMPARE(givenUp.count(), 1);
        QCOMPARE(lost.count(), m_limits.restarts + 1);
        QVERIFY(lost[0][0].toString().startsWith("It "_s));
        QVERIFY(!farm.IsWanted());
    }

    void TellsWhyItEnded()
    {
        FarmProcess farm(Program("echo begin >&2; echo \"[now] [critical] refused: $6\" >&2; exit 1"),
            m_folder.path(), m_limits);
        farm.SetTakeOver(true);
        QSignalSpy lost(&farm, &FarmProcess::Lost);
        farm.Start();
        EVENTUALLY(!lost.isEmpty());
        QCOMPARE(lost[0][0].toString(), "refused: --take-over"_s);
    }

private:
    /// @return the path of a shell script.
    QString Program(const QByteArray& text)
    {
        const QString path = m_folder.filePath(QString::number(++m_programs));
        WriteFile(path, "#!/bin/sh\n" + text + "\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    QTemporaryDir m_folder;
    FarmProcess::Limits m_limits;
    int m_programs = 0;
};

QTEST_GUILESS_MAIN(TestHostFarmProcess)
#include "tst_host_farm_process.moc"
