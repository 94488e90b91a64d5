#include "farm/farm.h"
#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/download_queue.h"
#include "tests/farm/farm_client.h"
#include "tests/farm/farm_fixture.h"
#include "tests/host/stand_in_server.h"

#include <QCryptographicHash>
#include <QtTest>

using HttpReply = StandInServer::Reply;
using HttpReplies = QList<StandInServer::Reply>;
Q_DECLARE_METATYPE(HttpReplies)

namespace {

enum Status { Waiting, Downloading, Finished, Failed, Stopped };

const QByteArray kFrame = QByteArray(150000, 'q') + "the end";
const QByteArray kOtherFrame = QByteArray(90000, 'x') + "the other end";

DownloadLimits Impatient(int transfers)
{
    DownloadLimits limits;
    limits.transfers = transfers;
    limits.idleTime = 5000;
    limits.firstPause = 5;
    limits.longestPause = 40;
    limits.http.firstPause = 1;
    return limits;
}

QVariantMap Order(const QString& job, bool manual)
{
    return {{job,
        QVariantMap {
            {QStringLiteral("subDir"), QStringLiteral("12_shot")}, {QStringLiteral("manual"), int(manual)}}}};
}

QByteArray Checksum(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
}

/// A list of one file of this content.
HttpReply Listed(const QByteArray& content, const QByteArray& name = "frame_0001.png")
{
    return StandInServer::Http(200,
        R"({"data": {"list": [{"name": ")" + name + R"(", "size": )" + QByteArray::number(content.size())
            + R"(, "checksum": ")" + Checksum(content) + R"("}]}})");
}

HttpReply Whole(const QByteArray& content)
{
    return StandInServer::Http(200, content);
}

HttpReply Cut(const QByteArray& content, int missing)
{
    return {Whole(content).bytes.chopped(missing), false};
}

HttpReply Rest(const QByteArray& content, int from)
{
    return StandInServer::Http(206, content.mid(from),
        "Content-Range: bytes " + QByteArray::number(from) + '-' + QByteArray::number(content.size() - 1)
            + '/' + QByteArray::number(content.size()) + "\r\n");
}

/// A queue of one owner, with what the window sees of it.
class Client
{
public:
    Client(const QString& folder, const QUrl& server, const QString& token = QStringLiteral("abc"),
        int transfers = 1)
        : queue(folder + QLatin1String("/transfer"), Impatient(transfers))
        , access {FarmApiRoot(server), token, QStringLiteral("farm/ann"), folder + QLatin1String("/frames")}
    {
        queue.SetAccess(access);
    }

    QVariant Value(const char* key) const
    {
        return queue.Tasks()->isEmpty() ? QVariant()
                                        : queue.Tasks()->first().toMap().value(QLatin1String(key));
    }
    int Count(Status status) const
    {
        const QVariantMap& tasks = *queue.Tasks();
        return static_cast<int>(std::count_if(tasks.cbegin(), tasks.cend(), [status](const QVariant& task) {
            return task.toMap().value(QStringLiteral("status")) == int(status);
        }));
    }

    mutable DownloadQueue queue;
    FarmAccess access;
    QSignalSpy finished {&queue, &DownloadQueue::FileFinished};
    QSignalSpy changed {&queue, &DownloadQueue::ListChanged};
};

} // namespace

class DownloadsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void AJobOfTheFarmArrivesOnce();
    void BreaksAreGotOver_data();
    void BreaksAreGotOver();
    void HostileNamesStayInTheFolder_data();
    void HostileNamesStayInTheFolder();
    void LinksOutOfTheFolderAreNotFollowed_data();
    void LinksOutOfTheFolderAreNotFollowed();
    void AFinishedFileStaysUntilItIsReplaced();
    void FilesOfOthersStay_data();
    void FilesOfOthersStay();
    void StoppedTasksGoOnWhereTheyWere();
    void AManualOrderRepairsWhatIsDamaged();
    void TasksRestWithoutTheirOwner();

private:
    QString Frame() const { return m_folder->filePath(QStringLiteral("frames/12_shot/frame_0001.png")); }
    QString Part() const { return DownloadPaths::PartFile(Frame()); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StandInServer> m_server;
};

void DownloadsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_server = std::make_unique<StandInServer>();
}

void DownloadsTest::AJobOfTheFarmArrivesOnce()
{
    constexpr int frames = 12;
    const QString data = m_folder->filePath(QStringLiteral("farm"));
    QVERIFY(QDir().mkpath(data));
    farm::FarmSettings settings;
    settings.dataFolder = settings.sceneFolder = data;
    settings.jobTypesFile = data + QLatin1String("/types.json");
    settings.demo = false;
    settings.limits = {{1000, 1000}, {1000, 1000}, {1000, 1000}};
    WriteFile(data + QLatin1String("/scene.txt"), "a scene");
    WriteFile(settings.jobTypesFile, ScriptedTypes("head -c 300000 /dev/urandom > {output}"));
    FarmData accounts(data);
    const QString job = accounts.jobs.Add(accounts.Job(QStringLiteral("shot"), frames)).id;
    const farm::Farm farm(settings);
    QTRY_COMPARE_WITH_TIMEOUT(accounts.Only().progress, 100, patienceMs);
    FarmClient web;
    web.SetUrl(farm.Url());
    const QString token = web.SignIn("ann", "secret");
    const auto client
        = [&] { return std::make_unique<Client>(m_folder->path(), QUrl(farm.Url()), token, 4); };

    // Killed in the middle, twice, it goes on.
    auto first = client();
    first->queue.Order(Order(job, false));
    for (int part = 1; part <= 2; ++part) {
        QTRY_VERIFY(first->Count(Finished) >= 3 * part);
        first.reset();
        first = client();
    }
    QTRY_COMPARE(first->Count(Finished), frames);
    QVERIFY(first->finished.count() <= frames - 6);
    const QString folder = m_folder->filePath(QStringLiteral("frames/12_shot/"));
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    QCOMPARE(names.size(), frames);
    for (const QString& name : names)
        QVERIFY(ReadFile(folder + name)
            == ReadFile(data + QLatin1String("/jobs/") + job + QLatin1Char('/') + name));
    QCOMPARE(first->queue.Tasks()->firstKey(), QStringLiteral("0000000001"));
    QCOMPARE(first->Value("destFile").toString(), folder + names.first());
    QCOMPARE(first->Value("progress").toInt(), 100);

    // Rendered anew, so that all checksums differ: the window's automatic orders do not count any more.
    const QByteArray before = ReadFile(folder + names.last());
    QVERIFY(web.Send("POST", QStringLiteral("/jobs/restart"), R"({"ids":[")" + job.toUtf8() + R"("]})", token)
                .status
        == 200);
    QTRY_COMPARE_WITH_TIMEOUT(accounts.Only().progress, 100, patienceMs);
    auto second = client();
    QTRY_COMPARE(second->Count(Finished), frames);
    second->queue.Order(Order(job, false));
    second->queue.Order(Order(QStringLiteral("nobody's"), true)); // refused, which takes a while to know
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("nobody's")));
    QSignalSpy asked(&second->queue, &DownloadQueue::ListChanged);
    QTRY_COMPARE(second->Count(Finished), frames);
    QCOMPARE(second->finished.count(), 0);
    QCOMPARE(ReadFile(folder + names.last()), before);

    second->queue.Order(Order(job, true));
    QTRY_COMPARE(second->finished.count(), frames);
    QCOMPARE(second->Count(Finished), frames);
    QVERIFY(ReadFile(folder + names.last()) != before);
    QCOMPARE(asked.count(), 0);
}

void DownloadsTest::BreaksAreGotOver_data()
{
    QTest::addColumn<HttpReplies>("replies");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("lastRequest");
    const auto row = [](const char* name, const HttpReplies& replies, Status status,
                         const QByteArray& lastRequest = {}, const QByteArray& content = kFrame) {
        QTest::newRow(name) << (HttpReplies {Listed(kFrame)} + replies) << int(status)
                            << (status == Finished ? content : QByteArray()) << lastRequest;
    };
    const QByteArray range = "Range: bytes=" + QByteArray::number(kFrame.size() - 50000) + "-\r\n";
    const int got = kFrame.size() - 50000;
    const HttpReply endless {"HTTP/1.1 200 OK\r\n\r\n" + kFrame + kFrame, false};

    row("whole", {Whole(kFrame)}, Finished, "If-Match: \"" + Checksum(kFrame) + '"');
    row("cut", {Cut(kFrame, 50000), Rest(kFrame, got)}, Finished, range);
    row("cut, no ranges", {Cut(kFrame, 50000), Whole(kFrame)}, Finished, range);
    row("cut, another range", {Cut(kFrame, 50000), Rest(kFrame, got + 1), Rest(kFrame, got)}, Finished,
        range);
    row("cut, range refused", {Cut(kFrame, 50000), StandInServer::Http(416, "{}"), Whole(kFrame)}, Finished);
    row("cut, changed meanwhile",
        {Cut(kFrame, 50000), StandInServer::Http(412, "{}"), Listed(kOtherFrame), Whole(kOtherFrame)},
        Finished, Checksum(kOtherFrame), kOtherFrame);
    row("gone", {StandInServer::Http(404, "{}"), Listed(kFrame, "frame_0002.png")}, Failed);
    row("wrong bytes once", {Whole(QByteArray(kFrame.size(), 'z')), Whole(kFrame)}, Finished);
    row("wrong bytes", {Whole(QByteArray(kFrame.size(), 'z'))}, Failed);
    row("too many bytes", {endless, Listed(kFrame), Whole(kFrame)}, Finished);
    row("busy", {StandInServer::Http(429, "{}"), StandInServer::Http(503, "{}"), Whole(kFrame)}, Finished);
    row("refused", {StandInServer::Http(403, "{}")}, Failed);
}

void DownloadsTest::BreaksAreGotOver()
{
    QFETCH(HttpReplies, replies);
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, lastRequest);
    m_server->SetReplies(replies);
    const Client client(m_folder->path(), m_server->Url());
    client.queue.Order(Order(QStringLiteral("j1"), false));
    QTRY_VERIFY(client.Count(Finished) + client.Count(Failed) == 1);
    QTEST(client.Value("status").toInt(), "status");
    QCOMPARE(client.Value("msg").toString().isEmpty(), !content.isEmpty());
    QVERIFY(ReadFile(Frame()) == content);
    QCOMPARE(client.finished.count(), content.isEmpty() ? 0 : 1);
    QCOMPARE(client.changed.count(), 1);
    QVERIFY(content.isEmpty() || !QFile::exists(Part()));
    QVERIFY2(m_server->Requests().constLast().contains(lastRequest), m_server->Requests().constLast());
}

void DownloadsTest::HostileNamesStayInTheFolder_data()
{
    QTest::addColumn<QString>("subDir");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    const auto row = [](const char* title, const char* subDir, const char* name, const char* path) {
        QTest::newRow(title) << QString::fromUtf8(subDir) << QString::fromUtf8(name)
                             << QString::fromUtf8(path);
    };
    const QByteArray longName = QByteArray("\xc3\xa4").repeated(200) + ".png";
    row("harmless", "12_shot", "frame 1.png", "12_shot/frame 1.png");
    row("climbing", "..", "../../.bashrc", "%2E%2E/%2E.%2F..%2F.bashrc");
    row("empty and hidden", "", ".part", "_/%2Epart");
    row("absolute", "/etc", "a\\b\nc", "%2Fetc/a%5Cb%0Ac");
    row("long", "s", longName.constData(), "");
}

void DownloadsTest::HostileNamesStayInTheFolder()
{
    QFETCH(QString, subDir);
    QFETCH(QString, name);
    QFETCH(QString, path);
    const QString file = DownloadPaths::Destination(QStringLiteral("/srv"), subDir, name);
    if (!path.isEmpty())
        QCOMPARE(file, QString(QStringLiteral("/srv/") + path));
    QCOMPARE(QDir::cleanPath(file), file);
    QCOMPARE(file.count(QLatin1Char('/')), 3);
    QVERIFY(QFileInfo(DownloadPaths::PartFile(file)).fileName().toUtf8().size() < 255);
    QVERIFY(DownloadPaths::Destination(QStringLiteral("/srv"), subDir, name, 2) != file);
}

void DownloadsTest::LinksOutOfTheFolderAreNotFollowed_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("target");
    QTest::newRow("folder") << QStringLiteral("frames/12_shot") << QStringLiteral("elsewhere");
    QTest::newRow("part file") << QStringLiteral("frames/12_shot/.frame_0001.png.part")
                               << QStringLiteral("elsewhere/precious");
}

void DownloadsTest::LinksOutOfTheFolderAreNotFollowed()
{
    QFETCH(QString, link);
    QFETCH(QString, target);
    QDir().mkpath(m_folder->filePath(QStringLiteral("elsewhere")));
    WriteFile(m_folder->filePath(QStringLiteral("elsewhere/precious")), "precious");
    QDir().mkpath(QFileInfo(m_folder->filePath(link)).path());
    QVERIFY(QFile::link(m_folder->filePath(target), m_folder->filePath(link)));
    m_server->SetReplies({Listed(kFrame), Whole(kFrame)});
    const Client client(m_folder->path(), m_server->Url());
    client.queue.Order(Order(QStringLiteral("j1"), true));
    QTRY_COMPARE(client.Count(Failed), 1);
    QVERIFY(!client.Value("msg").toString().isEmpty());
    QCOMPARE(QDir(m_folder->filePath(QStringLiteral("elsewhere"))).entryList(QDir::Files | QDir::Hidden),
        QStringList {QStringLiteral("precious")});
    QCOMPARE(ReadFile(m_folder->filePath(QStringLiteral("elsewhere/precious"))), QByteArray("precious"));
}

void DownloadsTest::AFinishedFileStaysUntilItIsReplaced()
{
    m_server->SetReplies({Listed(kFrame), Whole(kFrame), StandInServer::Held(Whole(kFrame))});
    const Client client(m_folder->path(), m_server->Url());
    client.queue.Order(Order(QStringLiteral("j1"), true));
    QTRY_COMPARE(client.finished.count(), 1);
    WriteFile(Frame(), kOtherFrame);
    client.queue.Redownload({client.queue.Tasks()->firstKey(), QStringLiteral("77"), QStringLiteral("x")});
    QTRY_COMPARE(m_server->Requests().size(), 3);
    QCOMPARE(client.Count(Finished), 0);
    QVERIFY(ReadFile(Frame()) == kOtherFrame);
    m_server->Release(2);
    QTRY_COMPARE(client.Count(Finished), 1);
    QCOMPARE(client.finished.count(), 2);
    QVERIFY(ReadFile(Frame()) == kFrame);
    client.queue.Remove(client.queue.Tasks()->keys());
    QVERIFY(client.queue.Tasks()->isEmpty());
    DownloadStore disk(m_folder->filePath(QStringLiteral("transfer/downloads.sqlite")));
    QVERIFY(disk.TasksAfter(client.access.owner, 0, 1).isEmpty()); // even if the client is killed now
    QVERIFY(QFile::exists(Frame()));
}

void DownloadsTest::FilesOfOthersStay_data()
{
    QTest::addColumn<QByteArray>("there");
    QTest::addColumn<QString>("name");
    QTest::newRow("the same") << kFrame << QStringLiteral("frame_0001.png");
    QTest::newRow("of another size") << kOtherFrame << QStringLiteral("frame_0001 (3).png");
    QTest::newRow("of the same size")
        << QByteArray(kFrame.size(), 'z') << QStringLiteral("frame_0001 (3).png");
}

/// The first name is a stranger's, the second another account's.
void DownloadsTest::FilesOfOthersStay()
{
    QFETCH(QByteArray, there);
    QFETCH(QString, name);
    QDir().mkpath(m_folder->filePath(QStringLiteral("frames/12_shot")));
    WriteFile(Frame(), "a stranger's");
    m_server->SetReplies({Listed(kOtherFrame), Whole(kOtherFrame), Listed(kFrame), Whole(kFrame)});
    Client client(m_folder->path(), m_server->Url());
    client.queue.Order(Order(QStringLiteral("j1"), true));
    QTRY_COMPARE(client.finished.count(), 1);
    const QString others = client.finished.takeFirst().constFirst().toString();
    WriteFile(Frame(), there);
    client.access.owner = QStringLiteral("farm/bob");
    client.queue.SetAccess(client.access);
    client.queue.Order(Order(QStringLiteral("j1"), true));
    QTRY_COMPARE(client.Count(Finished), 1);
    QCOMPARE(QFileInfo(client.Value("destFile").toString()).fileName(), name);
    QVERIFY(ReadFile(client.Value("destFile").toString()) == kFrame);
    QVERIFY(ReadFile(Frame()) == there && ReadFile(others) == kOtherFrame);
}

void DownloadsTest::StoppedTasksGoOnWhereTheyWere()
{
    m_server->SetReplies({Listed(kFrame), Cut(kFrame, 50000), StandInServer::Held(Whole(kFrame))});
    const Client client(m_folder->path(), m_server->Url());
    client.queue.Order(Order(QStringLiteral("j1"), true));
    QTRY_COMPARE(m_server->Requests().size(), 3);
    const QStringList ids = client.queue.Tasks()->keys();
    client.queue.Stop(ids);
    DownloadStore disk(m_folder->filePath(QStringLiteral("transfer/downloads.sqlite")));
    QCOMPARE(disk.TasksAfter(client.access.owner, 0, 1).constFirst().state, DownloadState::Stopped);
    QTRY_COMPARE(client.Count(Stopped), 1);
    QTRY_COMPARE(client.Value("progress").toInt(), 66);

    client.queue.Resume(ids);
    QTRY_COMPARE(m_server->Requests().size(), 4);
    QVERIFY(m_server->Requests().constLast().contains("Range: bytes=100007-\r\n"));
    QVERIFY(QFile::exists(Part()));
    client.queue.Remove(ids);
    QVERIFY(client.queue.Tasks()->isEmpty());
    QTRY_VERIFY(!QFile::exists(Part()));
    QCOMPARE(client.changed.count(), 2);
    QCOMPARE(client.finished.count(), 0);
}

void DownloadsTest::AManualOrderRepairsWhatIsDamaged()
{
    m_server->SetReplies({Listed(kFrame), Whole(kFrame), Listed(kFrame), Listed(kFrame), Whole(kFrame)});
    const Client client(m_folder->path(), m_server->Url());
    client.queue.Order(Order(QStringLiteral("j1"), true));
    QTRY_COMPARE(client.finished.count(), 1);
    client.queue.Order(Order(QStringLiteral("j1"), true)); // whole: it stays
    QTRY_COMPARE(m_server->Requests().size(), 3);
    WriteFile(Frame(), QByteArray(kFrame.size(), 'z'));
    client.queue.Order(Order(QStringLiteral("j1"), true));
    QTRY_COMPARE(client.finished.count(), 2);
    QVERIFY(ReadFile(Frame()) == kFrame);
    QCOMPARE(m_server->Requests().size(), 5);
}

void DownloadsTest::TasksRestWithoutTheirOwner()
{
    m_server->SetReplies({Listed(kFrame), StandInServer::Held(Whole(kFrame)), Whole(kFrame)});
    Client client(m_folder->path(), m_server->Url());
    client.queue.Order(Order(QStringLiteral("j1"), true));
    QTRY_COMPARE(client.Count(Downloading), 1);
    const FarmAccess access = client.access;
    client.access.apiRoot.clear();
    client.queue.SetAccess(client.access);
    QTRY_COMPARE(client.Count(Waiting), 1);

    client.access = access;
    client.access.owner = QStringLiteral("farm/bob");
    client.queue.SetAccess(client.access);
    QVERIFY(client.queue.Tasks()->isEmpty());
    client.queue.SetAccess(access);
    QTRY_COMPARE(client.Count(Finished), 1);
    QCOMPARE(client.finished.count(), 1);
}

QTEST_GUILESS_MAIN(DownloadsTest)
#include "tst_downloads.moc"
