// Downloads from a server that misbehaves.
#include "tests/rendercore/download_fixture.h"
#include "tests/support/capitals.h"

namespace {

const QByteArray Condition = "If-Match: \"" + Checksum(FrameData) + '"';
const HttpReply NoRange {"HTTP/1.1 206 Partial\r\n\r\n" + FrameData.mid(CutAt), false};
const HttpReply Endless {"HTTP/1.1 200 OK\r\n\r\n" + FrameData + FrameData, false};

struct TransferCase
{
    const char* name;
    QList<HttpReply> replies; ///< the replies after the list
    Status status;
    int requests;
    QByteArray lastRequest = {};    ///< its contents
    QByteArray content = FrameData; ///< content of the finished file
    QByteArray part = {};           ///< in the part file from the start
    QByteArray there = {};          ///< a stranger's file at the destination
};

const auto& TransferCases()
{
    static const TransferCase rows[] = {
        {"own file without a note", {}, Finished, 1, {}, FrameData, {}, FrameData},
        {"stranger's file of that size", {Whole(FrameData)}, Finished, 2, {}, FrameData, {},
            QByteArray(FrameData.size(), 'z')},
        {"stranger's file", {Whole(FrameData)}, Finished, 2, {}, FrameData, {}, OtherData},
        {"stranger's file beside a whole part file", {}, Finished, 1, {}, FrameData, FrameData, OtherData},
        {"whole part file", {}, Finished, 1, {}, FrameData, FrameData},
        {"part file longer than the file", {Whole(FrameData)}, Finished, 2, Condition, FrameData,
            FrameData + 'x'},
        {"damaged part file", {Whole(FrameData)}, Finished, 2, Condition, FrameData,
            QByteArray(FrameData.size(), 'z')},
        {"whole", {Whole(FrameData)}, Finished, 2, Condition},
        {"cut", {CutFrame, Rest(FrameData, CutAt)}, Finished, 3, Condition},
        {"cut, no ranges", {CutFrame, Whole(FrameData)}, Finished, 3, RangeLine},
        {"cut, another range", {CutFrame, Rest(FrameData, CutAt + 1), Rest(FrameData, CutAt)}, Finished, 4,
            RangeLine},
        {"cut, range of another file", {CutFrame, Rest(FrameData, CutAt, 9), Rest(FrameData, CutAt)},
            Finished, 4, RangeLine},
        {"cut, range that is not said", {CutFrame, NoRange, Rest(FrameData, CutAt)}, Finished, 4, RangeLine},
        {"cut, range refused", {CutFrame, Answer(416), Whole(FrameData)}, Finished, 4},
        {"range refused for ever", {CutFrame, Answer(416), Answer(416), Whole(FrameData)}, Finished, 5},
        {"cut, changed meanwhile", {CutFrame, Answer(412), Listed(Entry(OtherData)), Whole(OtherData)},
            Finished, 5, Checksum(OtherData), OtherData},
        {"gone", {Answer(404), Listed(Entry(FrameData, "frame_0002.png"))}, Failed, 3},
        {"listed, but not sent at first", {Answer(404), Listed(Entry(FrameData)), Whole(FrameData)}, Finished,
            4},
        {"no longer listed", {Answer(404), Answer(403)}, Failed, 3},
        {"wrong bytes once", {Whole(Wrong()), Whole(FrameData)}, Finished, 3},
        {"wrong bytes", {Whole(Wrong())}, Failed, 3},
        {"wrong bytes, cut once",
            {Whole(Wrong()), HttpReply {Whole(Wrong()).bytes.chopped(50000), false}, Rest(Wrong(), CutAt)},
            Failed, 4, RangeLine},
        {"too many bytes", {Endless, Listed(Entry(FrameData)), Whole(FrameData)}, Finished, 4},
        {"too few bytes", {Whole(FrameData.left(CutAt)), Listed(Entry(FrameData)), Whole(FrameData)},
            Finished, 4},
        {"busy", {Answer(429, "Retry-After: 0\r\n"), Answer(503), Answer(408), Whole(FrameData)}, Finished,
            5},
        {"stalled", {HttpReply {CutFrame.bytes, false, 0, StandInServer::Stall}, Rest(FrameData, CutAt)},
            Finished, 3, RangeLine},
        {"slow", {HttpReply {Whole(FrameData).bytes, false, 10000}}, Finished, 2},
        {"a portal's page", {StandInServer::Http(200, "<html>"), Listed(Entry(FrameData)), Whole(FrameData)},
            Finished, 4},
        {"own file and its part", {}, Finished, 1, {}, FrameData, FrameData.left(9), FrameData},
        {"stranger's file and a part", {Whole(FrameData)}, Finished, 2, {}, FrameData, FrameData.left(9),
            OtherData},
        {"refused at length", {StandInServer::Http(403, QByteArray(3'000'000, 'x'))}, Failed, 2},
    };
    return rows;
}

/// A file that appears at the destination during the transfer, and the name of the finished file.
const auto& Arrivals()
{
    static const std::tuple<const char*, QByteArray, const char*> rows[] = {
        {"a stranger's", OtherData, "frames/12_shot/frame_0001 (2).png"},
        {"a stranger's of that size", Wrong(), "frames/12_shot/frame_0001 (2).png"},
        {"another client's", FrameData, "frames/12_shot/frame_0001.png"},
    };
    return rows;
}

/// A link in the way of a file, its target, and what becomes of the file.
const std::tuple<const char*, const char*, Status> Links[] = {
    {"frames/12_shot", "elsewhere", Failed},
    {"frames/12_shot/.frame_0001.png.part", "elsewhere/precious", Failed},
    {"frames/12_shot/frame_0001.png", "elsewhere/precious", Finished},
};

} // namespace

class DownloadsTest : public DownloadFixture
{
    Q_OBJECT

private slots:
    void init() { MakeFolder(); }
    void cleanup() { m_client.reset(); }

    void GoesOnWhereTheClientEnded()
    {
        const QByteArray list
            = Entry(FrameData, "a") + ',' + Entry(OtherData, "b") + ',' + Entry(FrameData, "c");
        Start({Listed(list), Whole(FrameData), StandInServer::Held(Whole(FrameData))}, false);
        QVERIFY(AwaitRequests(3));
        Client& client = Restart(
            {Whole(OtherData), Whole(FrameData), Listed(Entry(OtherData, "a") + ',' + Entry(FrameData, "d")),
                Whole(FrameData), Listed(Entry(OtherData, "a")), Whole(OtherData)});
        QVERIFY(client.Await(Finished, 3));
        QVERIFY(client.AwaitFiles(1));
        QCOMPARE(client.finished.takeFirst(), (QVariantList {Path("frames/12_shot/c"), 2}));
        QVERIFY(ReadFile(Path("frames/12_shot/b")) == OtherData);

        // Rendered again: the automatic order fetches new files, the manual one also changed ones.
        client.Order("j1"_s, false);
        QVERIFY(client.Await(Finished, 4));
        client.Order("j1"_s);
        QVERIFY(client.AwaitFiles(2));
        QCOMPARE(client.finished.takeFirst(), (QVariantList {Path("frames/12_shot/d"), 1}));
        QVERIFY(ReadFile(Path("frames/12_shot/a")) == OtherData);
        QCOMPARE(m_server->Requests().size(), 6);
    }

    void RunsTransfersSideBySide()
    {
        m_limits.transfers = 2;
        const QByteArray list
            = Entry(FrameData, "a") + ',' + Entry(FrameData, "b") + ',' + Entry(FrameData, "c");
        const HttpReply held = StandInServer::Held(Whole(FrameData));
        const Client& client = Start({Listed(list), held, held, Whole(FrameData)});
        QVERIFY(AwaitRequests(3));
        QVERIFY(client.Await(Downloading, 2));
        QCOMPARE(client.Count(Waiting), 1);
        m_server->Release(1);
        QVERIFY(client.Await(Finished, 2));
        QCOMPARE(client.Count(Downloading), 1);
    }

    void ForgetsWhatFinishedSomeDaysAgo()
    {
        FarmFiles files; // more than are read or removed at a time
        for (int number = 0; number < 2002; ++number)
            files.append({QString::number(number), 1, QLatin1String(Checksum("x"))});
        QDir().mkpath(Path("transfer"));
        DownloadTasks old
            = Disk().Apply("farm/ann"_s, {"j0"_s, "s"_s, DownloadOrder::Manual, 0}, files, "/x"_s).added;
        for (DownloadTask& task : old)
            task.state = DownloadState::Finished;
        Disk().Save(old);
        SQLite::Database(Path("transfer/downloads.sqlite").toStdString(), SQLite::OPEN_READWRITE)
            .exec("UPDATE tasks SET finished = finished + iif(id = 1, 1, -3) * 86400");
        Client& client = Restart({});
        QVERIFY(client.Await(Finished, files.size()));
        client.queue.SetKeepDays(2);
        QVERIFY(client.Await(Finished, 1));
        QCOMPARE(client.Ids(), QStringList {"0000000001"_s});
        client.queue.ClearFinished();
        QTRY_VERIFY_WITH_TIMEOUT(client.queue.Tasks()->isEmpty(), Patience);
    }

    void RecoversFromBrokenTransfers_data() { AddRows(TransferCases()); }

    void RecoversFromBrokenTransfers()
    {
        const TransferCase& row = Row(TransferCases());
        QDir().mkpath(Path("frames/12_shot"));
        QVERIFY(row.part.isEmpty() || WriteFile(Part(), row.part));
        QVERIFY(row.there.isEmpty() || WriteFile(Frame(), row.there));
        TakeDiskCalls();
        m_limits.idleTime
            = qstrcmp(row.name, "stalled") == 0 || qstrcmp(row.name, "slow") == 0 ? 1000 : 2 * Patience;
        Client& client = Start(QList<HttpReply> {Listed(Entry(FrameData))} + row.replies, false);
        QVERIFY(client.Await(row.status));
        const bool isFinished = row.status == Finished;
        const bool isRenamed = !row.there.isEmpty() && row.there != FrameData;
        const QString file = isRenamed ? Path("frames/12_shot/frame_0001 (2).png") : Frame();
        QCOMPARE(client.Value("msg").toString().isEmpty(), isFinished);
        QCOMPARE(client.Value("progress").toInt(), isFinished ? 100 : 0);
        QCOMPARE(client.Value("destFile").toString(), file);
        QCOMPARE(client.Value("srcFile").toString(), "12_shot/frame_0001.png"_s);
        QVERIFY(!isRenamed || ReadFile(Frame()) == row.there);
        QVERIFY(ReadFile(file) == (isFinished ? row.content : QByteArray()));
        QCOMPARE(int(Disk().TasksAfter(client.access.owner, 0, 1).constFirst().state), int(row.status));
        QVERIFY(!isFinished || !(QFile::exists(DownloadPaths::PartFile(file)) || QFile::exists(Part())));
        QVERIFY(client.AwaitFiles(isFinished ? 1 : 0));
        QCOMPARE(client.changed.count(), 1);
        QCOMPARE(m_server->Requests().size(), row.requests);
        QCOMPARE(client.Ids(), QStringList {"0000000001"_s});
        const QByteArray last = m_server->Requests().constLast();
        QVERIFY2(last.contains(row.lastRequest), last);
        // The data are on the disk before they get their name, and the name is before the task is done.
        const QStringList journal = TakeDiskCalls().filter(QRegularExpression("frame|12_shot"_s));
        const QStringList durable {
            "sync .frame_0001.png.part"_s, "rename frame_0001.png"_s, "sync 12_shot"_s};
        QVERIFY2(isRenamed || journal == (isFinished && row.there.isEmpty() ? durable : QStringList()),
            qPrintable(journal.join(QLatin1Char('\n'))));
        client.queue.RetryFailed();
        QVERIFY(isFinished || AwaitRequests(row.requests + 1));
    }

    void ReplacesNoFileThatHasAppeared_data() { AddRows(Arrivals()); }

    void ReplacesNoFileThatHasAppeared()
    {
        const auto& [name, content, file] = Row(Arrivals());
        const Client& client = Start({Listed(Entry(FrameData)), StandInServer::Held(Whole(FrameData))});
        QVERIFY(AwaitRequests(2));
        QVERIFY(WriteFile(Frame(), content));
        m_server->Release(1);
        QVERIFY(client.Await(Finished));
        QVERIFY(ReadFile(Frame()) == content);
        QVERIFY(ReadFile(Path(file)) == FrameData);
        QCOMPARE(client.Value("destFile").toString(), Path(file));
        QCOMPARE(m_server->Requests().size(), 2); // what has arrived is not sent again
        const auto all = QDir::Files | QDir::Hidden;
        QCOMPARE(QDir(Path("frames/12_shot")).entryList(all).size(), content == FrameData ? 1 : 2);
        QCOMPARE(client.notices.count(), 0);
    }

    void MessagesFollowTheLanguage()
    {
        Client& client = Start({Listed(Entry(FrameData)), Answer(403)});
        QVERIFY(client.Await(Failed));
        const QString refused = "The farm refuses to send frame_0001.png: "_s;
        QVERIFY(client.Value("msg").toString().startsWith(refused));
        const Capitals other;
        client.queue.Retranslate();
        const QString text = client.Value("msg").toString();
        QVERIFY2(text.startsWith("THE FARM REFUSES TO SEND frame_0001.png: "_s), qPrintable(text));
        const Client& next = Restart({});
        QVERIFY(next.Await(Failed));
        QCOMPARE(next.Value("msg").toString(), text);
    }

    void AsksUntilAnOrderIsAnswered()
    {
        QByteArray bad
            = "{'name': '', 'size': 1, 'checksum': 'SUM'}, {'name': 'b', 'size': -1, 'checksum': 'SUM'},"
              "{'name': 'c', 'size': 1e300, 'checksum': 'SUM'}, {'name': 'd', 'size': 1, 'checksum': 'x'}, "
              "7,";
        bad.replace("SUM", Checksum(FrameData));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("5 files"_s));
        Client& client = Start({Answer(503), Answer(503), Answer(503), StandInServer::Http(200, "[]"),
            StandInServer::Http(200, "<html>"), StandInServer::Data("[7]"),
            HttpReply {Listed(bad).bytes.chopped(9)}, Answer(429),
            Listed(bad + Entry(FrameData) + ',' + Entry({}, "empty")), Whole(FrameData)});
        QVERIFY(client.Await(Finished, 2));
        QCOMPARE(client.Ids().size(), 2);
        QCOMPARE(m_server->Requests().size(), 10);
        m_server->SetReplies({Listed({})});
        const QVariantMap order {{"manual"_s, 1}};
        client.queue.Order(
            {{"a"_s, order}, {"b"_s, order}, {"c"_s, order}}); // one is asked for after the other
        QVERIFY(AwaitRequests(13));
    }

    void TellsThatAnOrderedJobHasNoFiles()
    {
        Client& client = Start({Listed({})}, false);
        client.Order("j2"_s);
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 1, Patience);
        QCOMPARE(client.notices[0][0].toString(), "12_shot has no files to download yet."_s);
        QCOMPARE(m_server->Requests().size(), 2);
    }

    void GoesOnOnceTheServerAcceptsConnections()
    {
        Client& client
            = Start({Listed(Entry(FrameData)), StandInServer::Held(Whole(FrameData)), Whole(FrameData)});
        QVERIFY(AwaitRequests(2));
        m_server->Refuse();
        m_server->Release(1, {});
        QTRY_VERIFY_WITH_TIMEOUT(client.Value("msg").toString().contains("refused. The next"_s), Patience);
        m_server->Listen();
        QVERIFY(client.Await(Finished));
    }

    void WaitsForFarmSessionAndOwner()
    {
        Client& client = Start({Listed(Entry(FrameData)), StandInServer::Held(Whole(FrameData)), Answer(401),
            Whole(FrameData), Listed(Entry(OtherData, "new.png")), Whole(OtherData)});
        QVERIFY(client.Await(Downloading));
        const FarmAccess access = client.access;
        client.Set(&FarmAccess::apiRoot, {});
        QVERIFY(client.Await(Waiting));
        client.Set(&FarmAccess::apiRoot, access.apiRoot);
        QVERIFY(AwaitRequests(3));
        QVERIFY(client.Await(Waiting));
        client.Set(&FarmAccess::folder, Path("elsewhere")); // alone, it starts nothing: the session has ended
        client.Set(&FarmAccess::owner, "farm/bob"_s);
        QVERIFY(client.queue.Tasks()->isEmpty());
        client.access.owner = access.owner;
        client.Set(&FarmAccess::token, "def"_s);
        QVERIFY(client.Await(Finished));
        QVERIFY(m_server->Requests().constLast().contains("Authorization: Bearer def\r\n"));
        QCOMPARE(client.changed.count(), 3);
        client.Set(&FarmAccess::folder, Path("third")); // for new orders
        client.Order("j2"_s);
        QVERIFY(client.Await(Finished, 2));
        QVERIFY(ReadFile(Path("third/12_shot/new.png")) == OtherData);
        QCOMPARE(m_server->Requests().size(), 6);
    }

    void FollowsNoLinkOutOfTheFolder_data() { AddRows(Links); }

    void FollowsNoLinkOutOfTheFolder()
    {
        const auto& [place, target, status] = Row(Links);
        const QString link = Path(place);
        QDir().mkpath(Path("elsewhere"));
        WriteFile(Path("elsewhere/precious"), FrameData); // the right content, but behind a link
        QDir().mkpath(QFileInfo(link).path());
        QVERIFY(QFile::link(Path(target), link));
        Client& client = Start({Listed(Entry(FrameData)), Whole(FrameData)});
        QVERIFY(client.Await(status));
        QCOMPARE(QDir(Path("elsewhere")).entryList(QDir::Files | QDir::Hidden), QStringList {"precious"_s});
        QVERIFY(ReadFile(Path("elsewhere/precious")) == FrameData && QFileInfo(link).isSymLink());
        QVERIFY(client.Value("destFile") != link);
    }

    void KeepsAFinishedFileUntilItIsReplaced()
    {
        Client& client
            = Start({Listed(Entry(FrameData)), Whole(FrameData), StandInServer::Held(Whole(FrameData))});
        QVERIFY(client.Await(Finished));
        WriteFile(Frame(), OtherData);
        client.queue.Redownload({client.Ids().constFirst(), "77"_s, "x"_s});
        QVERIFY(AwaitRequests(3));
        QCOMPARE(client.Count(Finished), 0);
        QVERIFY(ReadFile(Frame()) == OtherData);
        m_server->Release(2);
        QVERIFY(client.Await(Finished));
        QVERIFY(client.AwaitFiles(2));
        QVERIFY(ReadFile(Frame()) == FrameData);
        client.queue.ClearFinished();
        QTRY_VERIFY_WITH_TIMEOUT(client.queue.Tasks()->isEmpty(), Patience);
        QVERIFY(Disk().TasksAfter(client.access.owner, 0, 1).isEmpty());
        QVERIFY(QFile::exists(Frame()));
    }

    void StoppedTasksGoOnWhereTheyWere()
    {
        Client& client = Start({Listed(Entry(FrameData)), CutFrame, StandInServer::Held(Whole(FrameData))});
        QVERIFY(AwaitRequests(3));
        client.queue.Stop(client.Ids());
        QVERIFY(client.Await(Stopped));
        QCOMPARE(client.Value("progress").toInt(), 66);
        const DownloadTask stopped = Disk().TasksAfter(client.access.owner, 0, 1).constFirst();
        QVERIFY(stopped.state == DownloadState::Stopped && stopped.progress == 66);

        client.queue.Resume(client.Ids());
        QVERIFY(AwaitRequests(4));
        QVERIFY(m_server->Requests().constLast().contains(RangeLine));
        // The listener reads the list, and removes a task that is already gone, while handling the removal.
        QStringList left {"not called"_s};
        const QStringList ids = client.Ids();
        connect(&client.queue, &DownloadQueue::ListChanged, this, [&] {
            left = client.Ids();
            client.queue.Remove(ids);
        });
        client.queue.Remove(ids);
        QVERIFY(left.isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(Part()), Patience);
        QCOMPARE(client.changed.count(), 2);
    }

    void BringsBackWhatIsLostOrChangedWhenOrdered()
    {
        const HttpReply list = Listed(Entry(FrameData));
        Client& client
            = Start({list, Whole(FrameData), list, list, Whole(FrameData), list, Whole(FrameData)});
        QVERIFY(client.Await(Finished));
        client.Order(); // whole: it stays
        QVERIFY(AwaitRequests(3));
        const QByteArray retouched(FrameData.size(), 'z');
        WriteFile(Frame(), retouched);
        client.Order();
        QVERIFY(client.AwaitFiles(2));
        const QString copy = Path("frames/12_shot/frame_0001 (2).png");
        QVERIFY(ReadFile(Frame()) == retouched && ReadFile(copy) == FrameData);
        const QFileInfoList files = QDir("/proc/self/fd"_s).entryInfoList();
        for (const QFileInfo& open : files)
            QVERIFY(!open.symLinkTarget().startsWith(Frame())); // or the disk could not be unmounted
        QVERIFY(QFile::remove(copy));
        client.Order();
        QVERIFY(client.AwaitFiles(3));
        QVERIFY(ReadFile(copy) == FrameData);
        QCOMPARE(m_server->Requests().size(), 7);
    }
};

QTEST_GUILESS_MAIN(DownloadsTest)
#include "tst_downloads.moc"
