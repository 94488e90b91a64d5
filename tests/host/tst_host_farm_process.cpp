#include "host/process/farm_process.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace {

/// @param start in milliseconds, for the address to be announced.
FarmProcess::Limits Impatient(int start)
{
    FarmProcess::Limits limits;
    limits.start = start;
    limits.firstPause = 5;
    limits.restarts = 2;
    limits.end = 200;
    return limits;
}

bool IsRunning(qint64 id)
{
    return kill(static_cast<pid_t>(id), 0) == 0;
}

} // namespace

/// Start, loss and end of the embedded farm, with stand-in programs.
class TestHostFarmProcess : public QObject
{
    Q_OBJECT

private slots:
    void ReadsTheAddress()
    {
        QCOMPARE(FarmProcess::ReadAnnouncement("listening on http://127.0.0.1:4711\n"),
            QUrl(QStringLiteral("http://127.0.0.1:4711")));
        for (const char* line : {"listening on http://farm.example:4711\n",
                 "listening on http://127.0.0.1:0\n", "listening on http://127.0.0.1:65536\n",
                 "listening on http://127.0.0.1:4711/x\n", "now listening on http://127.0.0.1:4711\n"})
            QVERIFY2(FarmProcess::ReadAnnouncement(line).isEmpty(), line);
    }

    void RestartsAndEnds_data()
    {
        QTest::addColumn<QByteArray>("text");
        const QByteArray start = "echo starting; echo listening on http://127.0.0.1:4711; ";
        QTest::newRow("ends when asked") << QByteArray(start + "exec cat >/dev/null");
        QTest::newRow("does not listen") << QByteArray("trap '' TERM; " + start + "while :; do read x; done");
    }

    void RestartsAndEnds()
    {
        QFETCH(QByteArray, text);
        FarmProcess farm(Program(text), m_folder.path(), Impatient(5000));
        QSignalSpy listening(&farm, &FarmProcess::Listening);
        QSignalSpy lost(&farm, &FarmProcess::Lost);
        farm.Start();
        QTRY_COMPARE(listening.count(), 1);
        const qint64 first = farm.ProcessId();
        QCOMPARE(kill(static_cast<pid_t>(first), SIGKILL), 0);
        QTRY_COMPARE(listening.count(), 2);
        const qint64 second = farm.ProcessId();
        QVERIFY(second != first && IsRunning(second));
        farm.Stop();
        QVERIFY(!IsRunning(second));
        QCOMPARE(lost.count(), 1);
    }

    void GivesUp_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("crashes at once") << QByteArray("exit 1");
        QTest::newRow("crashes when it listens")
            << QByteArray("echo listening on http://127.0.0.1:4711; exit 1");
        QTest::newRow("announces nothing") << QByteArray("exec cat >/dev/null");
        QTest::newRow("is no program") << QByteArray();
    }

    void GivesUp()
    {
        QFETCH(QByteArray, text);
        FarmProcess farm(Program(text), m_folder.path(), Impatient(200));
        QSignalSpy lost(&farm, &FarmProcess::Lost);
        QSignalSpy givenUp(&farm, &FarmProcess::GivenUp);
        farm.Start();
        QTRY_COMPARE(givenUp.count(), 1);
        QCOMPARE(lost.count(), 3);
    }

private:
    /// A program of shell text; the farm's arguments are its own. One that cannot be started for no text.
    QString Program(const QByteArray& text)
    {
        const QString path = m_folder.filePath(QString::fromLatin1(QTest::currentDataTag()));
        QFile file(path);
        if (!text.isEmpty() && file.open(QIODevice::WriteOnly))
            file.write("#!/bin/sh\n" + text + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestHostFarmProcess)
#include "tst_host_farm_process.moc"
