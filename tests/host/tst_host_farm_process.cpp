#include "farm_process.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace {

FarmProcess::Patience Impatient()
{
    FarmProcess::Patience patience;
    patience.start = 1000;
    patience.firstPause = 5;
    patience.restarts = 2;
    patience.end = 1000;
    return patience;
}

bool IsRunning(qint64 id)
{
    return kill(static_cast<pid_t>(id), 0) == 0;
}

} // namespace

/// Start, loss and end of the embedded farm; with stand-in programs, and with the real one where it is built.
class TestHostFarmProcess : public QObject
{
    Q_OBJECT

private slots:
    void ReadsTheAddress_data();
    void ReadsTheAddress();
    void RestartsAndEnds();
    void GivesUp_data();
    void GivesUp();
    void EndsOneThatDoesNotListen();
    void RunsTheRealFarm();

private:
    /// A program of shell text; the farm's arguments are its own.
    QString Program(const QByteArray& text);

    QTemporaryDir m_folder;
};

QString TestHostFarmProcess::Program(const QByteArray& text)
{
    const QString path = m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction()));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write("#!/bin/sh\n" + text + "\n");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

void TestHostFarmProcess::ReadsTheAddress_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("url");
    const QString none;
    QTest::newRow("address") << QByteArray("listening on http://127.0.0.1:4711\n")
                             << QStringLiteral("http://127.0.0.1:4711");
    QTest::newRow("other host") << QByteArray("listening on http://farm.example:4711\n") << none;
    QTest::newRow("port 0") << QByteArray("listening on http://127.0.0.1:0\n") << none;
    QTest::newRow("no port") << QByteArray("listening on http://127.0.0.1:65536\n") << none;
    QTest::newRow("tail") << QByteArray("listening on http://127.0.0.1:4711/x\n") << none;
    QTest::newRow("log") << QByteArray("now listening on http://127.0.0.1:4711\n") << none;
}

void TestHostFarmProcess::ReadsTheAddress()
{
    QFETCH(QByteArray, line);
    QTEST(FarmProcess::AnnouncedAddress(line).toString(), "url");
}

void TestHostFarmProcess::RestartsAndEnds()
{
    FarmProcess farm(Program("echo starting; echo listening on http://127.0.0.1:4711; exec cat >/dev/null"),
        m_folder.path(), Impatient());
    QSignalSpy listening(&farm, &FarmProcess::Listening);
    QSignalSpy lost(&farm, &FarmProcess::Lost);
    farm.Start();
    QTRY_COMPARE(listening.count(), 1);
    const qint64 first = farm.ProcessId();
    QCOMPARE(kill(static_cast<pid_t>(first), SIGKILL), 0);
    QTRY_COMPARE(listening.count(), 2);
    QCOMPARE(lost.count(), 1);
    const qint64 second = farm.ProcessId();
    QVERIFY(second != first && IsRunning(second));
    farm.Stop();
    QVERIFY(!IsRunning(second));
    QCOMPARE(lost.count(), 1);
}

void TestHostFarmProcess::GivesUp_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("crashes at once") << QByteArray("exit 1");
    QTest::newRow("crashes when it listens") << QByteArray("echo listening on http://127.0.0.1:4711; exit 1");
    QTest::newRow("is no program") << QByteArray();
}

void TestHostFarmProcess::GivesUp()
{
    QFETCH(QByteArray, text);
    FarmProcess farm(text.isEmpty() ? m_folder.filePath(QStringLiteral("missing")) : Program(text),
        m_folder.path(), Impatient());
    QSignalSpy lost(&farm, &FarmProcess::Lost);
    QSignalSpy givenUp(&farm, &FarmProcess::GivenUp);
    farm.Start();
    QTRY_COMPARE(givenUp.count(), 1);
    QCOMPARE(lost.count(), 3);
}

void TestHostFarmProcess::EndsOneThatDoesNotListen()
{
    FarmProcess::Patience patience = Impatient();
    patience.end = 200;
    FarmProcess deaf(
        Program("trap '' TERM; echo listening on http://127.0.0.1:4711; while :; do read x; done"),
        m_folder.path(), patience);
    QSignalSpy listening(&deaf, &FarmProcess::Listening);
    deaf.Start();
    QTRY_COMPARE(listening.count(), 1);
    const qint64 id = deaf.ProcessId();
    deaf.Stop();
    QVERIFY(!IsRunning(id));

    patience.start = 100;
    patience.restarts = 0;
    FarmProcess silent(Program("exec cat >/dev/null"), m_folder.path(), patience);
    QSignalSpy givenUp(&silent, &FarmProcess::GivenUp);
    silent.Start();
    QTRY_COMPARE(givenUp.count(), 1);
}

void TestHostFarmProcess::RunsTheRealFarm()
{
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/quillstar-farmd");
    if (!QFileInfo(program).isExecutable())
        QSKIP("the farm is not built");
    FarmProcess farm(program, m_folder.filePath(QStringLiteral("farm")));
    QSignalSpy listening(&farm, &FarmProcess::Listening);
    farm.Start();
    QTRY_COMPARE_WITH_TIMEOUT(listening.count(), 1, 20000);
    kill(static_cast<pid_t>(farm.ProcessId()), SIGKILL);
    QTRY_COMPARE_WITH_TIMEOUT(listening.count(), 2, 20000);
    const QUrl url = listening[1][0].toUrl();
    QTcpSocket socket;
    socket.connectToHost(url.host(), static_cast<quint16>(url.port()));
    QVERIFY(socket.waitForConnected(5000));
    socket.abort();
    const qint64 id = farm.ProcessId();
    farm.Stop();
    QVERIFY(!IsRunning(id));
}

QTEST_GUILESS_MAIN(TestHostFarmProcess)
#include "tst_host_farm_process.moc"
