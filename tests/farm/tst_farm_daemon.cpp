#include "farm_client.h"
#include "farm_fixture.h"
#include "frame_files.h"
#include "package_fixture.h"

#include <QProcess>
#include <QRandomGenerator>
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

    ~Daemon() override { Kill(); }

    bool IsListening() const { return m_output.startsWith("listening on http://127.0.0.1:"); }
    QString Url() const { return QString::fromLatin1(m_output.mid(qstrlen("listening on ")).trimmed()); }
    void Kill()
    {
        kill();
        waitForFinished();
    }

private:
    QByteArray m_output;
};

} // namespace

class DaemonTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void EndsWhenAsked_data();
    void EndsWhenAsked();
    void AKillLosesNoFinishedFrame();
    void AKillLosesNothingOfAnUpload();
    void MoneyIsPaidIn();
    void ShippedScenesRender();

private:
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void DaemonTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void DaemonTest::EndsWhenAsked_data()
{
    QTest::addColumn<QString>("how");
    for (const char* how : {"stdin", "TERM", "INT"})
        QTest::newRow(how) << QString::fromLatin1(how);
}

void DaemonTest::EndsWhenAsked()
{
    QFETCH(QString, how);
    Daemon daemon(m_folder->path(), {QStringLiteral("--stop-with-stdin")});
    QVERIFY(daemon.IsListening());
    if (how == QLatin1String("stdin"))
        daemon.closeWriteChannel();
    else
        ::kill(static_cast<pid_t>(daemon.processId()), how == QLatin1String("TERM") ? SIGTERM : SIGINT);
    QVERIFY(daemon.waitForFinished(patienceMs));
    QCOMPARE(daemon.exitStatus(), QProcess::NormalExit);
    QCOMPARE(daemon.exitCode(), 0);
}

void DaemonTest::AKillLosesNoFinishedFrame()
{
    QVERIFY(WriteFile(Path("scene.txt"), "a scene"));
    // Waits in frame 4 until ../../gate exists; a kill of the server must end it too.
    QVERIFY(WriteFile(Path("types.json"),
        ScriptedTypes(QStringLiteral("echo $$ > ../../pid; echo half > {output}; echo {frame} >> ../../log; "
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

void DaemonTest::AKillLosesNothingOfAnUpload()
{
    FarmData data(m_folder->path());
    QByteArray content(5'000'000, '\0');
    QRandomGenerator(1).fillRange(reinterpret_cast<quint32*>(content.data()), content.size() / 4);
    const SceneContents files {{"scene.txt", content}};
    const QByteArray package = Package(files);
    FarmClient client;
    QString upload;
    {
        Daemon first(m_folder->path(), {});
        client.SetUrl(first.Url());
        client.SignIn("ann", "secret");
        upload = client.BeginUpload(package).Data("id").toString();
        QCOMPARE(client.Put(upload, 0, package.left(3'000'000)).status, 200);
        // The next chunk is on its way when the kill comes.
        const auto socket = client.SendRaw("PUT /api/v1/uploads/" + upload.toLatin1()
            + "?offset=3000000 HTTP/1.1\r\nContent-Length: 2000000\r\n" + client.RawToken() + "\r\n"
            + package.mid(3'000'000, 1'000'000));
        first.Kill();
    }
    Daemon second(m_folder->path(), {});
    client.SetUrl(second.Url());
    client.SignIn("ann", "secret");
    const int offset = client.BeginUpload(package).Data("offset").toInt();
    QVERIFY(offset >= 3'000'000);
    for (int from = offset; from < package.size(); from += 1'000'000)
        QCOMPARE(client.Put(upload, from, package.mid(from, 1'000'000)).status, 200);
    QCOMPARE(client.Unpack(upload).status, 200);
    const Reply job = client.Post("/jobs", SubmissionOf(files));
    QCOMPARE(job.status, 200);
    // The kill comes with the answer.
    second.Kill();
    const Daemon third(m_folder->path(), {});
    client.SetUrl(third.Url());
    QCOMPARE(client.Post("/jobs", SubmissionOf(files)).body, job.body);
}

// While the farm runs.
void DaemonTest::MoneyIsPaidIn()
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
    QCOMPARE(data.accounts.Info(data.account).balance, Micros(13'500'000));
}

void DaemonTest::ShippedScenesRender()
{
    if (QStandardPaths::findExecutable(QStringLiteral("povray")).isEmpty())
        QSKIP("POV-Ray is not installed");
    FarmData data(m_folder->path());
    const QDir scenes(QFileInfo(QStringLiteral(FARM_DAEMON)).dir().filePath(QStringLiteral("farm/scenes")));
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
    QVERIFY(data.accounts.Info(data.account).balance < 10'000'000);
}

QTEST_GUILESS_MAIN(DaemonTest)
#include "tst_farm_daemon.moc"
