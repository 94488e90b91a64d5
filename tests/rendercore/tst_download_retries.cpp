// Downloads that go on after a failure: of the database, of the farm, of the connection.
#include "host/farmclient/connection_feed.h"
#include "tests/rendercore/download_fixture.h"

namespace {

constexpr char ListTarget[] = "/j1/files HTTP";

/// A change of the database that fails at first, the farm's answer to requests for the file meanwhile, what the task says,
/// and whether a stranger's file is at the destination.
const std::tuple<const char*, const char*, HttpReply, const char*, bool> Refusals[] = {
    {"finished", "UPDATE OF state ON tasks", Whole(FrameData), "could not be recorded. The disk may be full.",
        false},
    {"another name", "UPDATE OF file ON tasks", Whole(FrameData),
        "Another file named frame_0001.png is in the way.", true},
    {"order again", "UPDATE OF kind ON orders", Answer(404), "frame_0001.png has changed on the farm.",
        false},
    {"new task", "INSERT ON tasks", Whole(FrameData), "", false},
};

/// How the attempts at a file end, and the statuses of the failures that the user can read about, the latest first.
const std::tuple<const char*, QList<HttpReply>, QVector<int>> Reports[] = {
    {"at once", {Whole(FrameData)}, {}},
    {"cut", {CutFrame, Rest(FrameData, CutAt)}, {FarmFault::Unreachable}},
    {"ended early", {HttpReply {"HTTP/1.1 200 OK\r\n\r\n" + FrameData.left(CutAt)}, Rest(FrameData, CutAt)},
        {}},
    {"stalled", {HttpReply {CutFrame.bytes, false, 0, StandInServer::Stall}, Rest(FrameData, CutAt)},
        {FarmFault::TimedOut}},
    {"silent", {StandInServer::Held({}), Whole(FrameData)}, {FarmFault::TimedOut}},
    {"busy", {Answer(503), Whole(FrameData)}, {503}},
};

/// The answers to orders of two jobs, and the targets of the requests.
const auto& Turns()
{
    static const std::tuple<const char*, QList<HttpReply>, const char*> rows[] = {
        {"postponed", {Answer(503), Listed({}), Listed({})}, "a b a"},
        {"refused", {Answer(403), Listed({})}, "a b"},
        {"answered", {Listed({}), Answer(503), Listed({})}, "a b b"},
    };
    return rows;
}

} // namespace

class DownloadRetriesTest : public DownloadFixture
{
    Q_OBJECT

private:
    /// Runs statements on the database, as if another program did.
    void Run(const QByteArray& sql) const
    {
        SQLite::Database other(
            Path("transfer/downloads.sqlite").toStdString(), SQLite::OPEN_READWRITE, Patience);
        other.exec(sql.constData());
    }

    /// The database with a waiting task and an open order.
    void Prepare() const
    {
        QDir().mkpath(Path("transfer"));
        DownloadStore store = Disk();
        store.Apply("farm/ann"_s, {"j0"_s, "11_shot"_s, DownloadOrder::Manual, 0},
            {{"old.png"_s, FrameData.size(), QLatin1String(Checksum(FrameData))}}, Path("frames"));
        store.AddOrders("farm/ann"_s, {{"j1"_s, "12_shot"_s, DownloadOrder::Manual, 0}});
    }

    /// Waits until the worker has met the failing database.
    void AwaitTrouble(Client& client) const
    {
        const int before = client.notices.count();
        client.queue.RetryFailed();
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), before + 1, Patience);
        QVERIFY(client.notices.constLast().value(0).toString().contains("could not be recorded"_s));
    }

private slots:
    void init() { MakeFolder(); }
    void cleanup()
    {
        m_client.reset();
        diskFails = false;
    }

    void GoesOnOnceAChangeIsRecorded_data() { AddRows(Refusals); }

    void GoesOnOnceAChangeIsRecorded()
    {
        const auto& [name, change, reply, text, isOccupied] = Row(Refusals);
        QDir().mkpath(Path("transfer"));
        Disk().Failed("farm/ann"_s); // creates the tables
        Run("CREATE TRIGGER refusal BEFORE " + QByteArray(change)
            + " BEGIN SELECT RAISE(ABORT, 'not now'); END");
        QDir().mkpath(Path("frames/12_shot"));
        QVERIFY(!isOccupied || WriteFile(Frame(), OtherData));
        Client& client = Restart({reply});
        m_server->SetReplyTo(ListTarget, Listed(Entry(FrameData)));
        client.Order();
        const bool isAsked = qstrlen(text) == 0;
        QTRY_VERIFY_WITH_TIMEOUT(isAsked ? m_server->Requests().size() > 2
                                         : client.Value("msg").toString().contains(QLatin1String(text)),
            Patience);
        QCOMPARE(client.Count(Finished), 0);
        QVERIFY(isAsked || client.Value("msg").toString().contains("The next attempt is in 1 s."_s));
        m_server->SetReplies({Whole(FrameData)});
        Run("DROP TRIGGER refusal");
        QVERIFY(client.Await(Finished));
        QVERIFY(ReadFile(client.Value("destFile").toString()) == FrameData);
        QCOMPARE(client.Value("destFile").toString() == Frame(), !isOccupied);
        QVERIFY(!isOccupied || ReadFile(Frame()) == OtherData);
        QVERIFY(client.AwaitFiles(1));
    }

    void GoesOnOnceARefusalIsRecorded()
    {
        QDir().mkpath(Path("transfer"));
        Disk().Failed("farm/ann"_s);
        Run("CREATE TRIGGER refusal BEFORE UPDATE OF open ON orders BEGIN SELECT RAISE(ABORT, 'not now'); "
            "END");
        Client& client = Start({Answer(403)});
        QTRY_VERIFY_WITH_TIMEOUT(m_server->Requests().size() > 2, Patience);
        QCOMPARE(client.notices.count(), 0);
        Run("DROP TRIGGER refusal");
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 1, Patience);
        QVERIFY(Disk().OpenOrders(client.access.owner, 1).isEmpty());
    }

    void GoesOnOnceTheDatabaseCanBeRead()
    {
        constexpr const char* Hide = "ALTER TABLE tasks RENAME TO away; ALTER TABLE orders RENAME TO off";
        constexpr const char* Show = "ALTER TABLE away RENAME TO tasks; ALTER TABLE off RENAME TO orders";
        Prepare();
        Run(Hide);
        Client& client = Restart({Whole(FrameData)});
        m_server->SetReplyTo(ListTarget, Listed(Entry(FrameData)));
        AwaitTrouble(client);
        QVERIFY(client.queue.Tasks()->isEmpty());
        Run(Show);
        QVERIFY(client.Await(Finished, 2));
        QStringList jobs;
        for (const QVariant& task : qAsConst(*client.queue.Tasks()))
            jobs.append(task.toMap().value("jobId"_s).toString());
        QCOMPARE(jobs, QStringList({"j0"_s, "j1"_s}));

        // The transfers.
        const QUrl farm = client.access.apiRoot;
        client.Set(&FarmAccess::apiRoot, QUrl());
        client.queue.Redownload(client.Ids());
        QVERIFY(client.Await(Waiting, 2));
        Run(Hide);
        client.Set(&FarmAccess::apiRoot, farm);
        AwaitTrouble(client);
        Run(Show);
        QVERIFY(client.Await(Finished, 2));

        // The removal of old tasks.
        Run("UPDATE tasks SET finished = finished - 3 * 86400 WHERE job = 'j0'");
        Run(Hide);
        client.queue.SetKeepDays(2);
        AwaitTrouble(client);
        QCOMPARE(client.Count(Finished), 2);
        Run(Show);
        QTRY_COMPARE_WITH_TIMEOUT(client.Ids().size(), 1, Patience);
    }

    void RecordsTheLastCommandsAtTheEnd()
    {
        m_limits.firstPause = m_limits.longestPause = Patience;
        Client& client = Restart({Answer(503)});
        client.Order("j0"_s);
        QVERIFY(AwaitRequests(1));
        diskFails = true;
        client.Order("j1"_s);
        client.Order("j2"_s);
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 1, Patience);
        diskFails = false;
        m_client.reset();
        QCOMPARE(Disk().OpenOrders("farm/ann"_s, 9).size(), 3);
    }

    void DoesNotWaitLongerWhileDataArrive()
    {
        m_limits.transfers = 4; // one failure does not pause them all
        m_limits.firstPause = 501;
        m_limits.longestPause = Patience;
        const HttpReply cutAgain {Rest(FrameData, CutAt).bytes.chopped(40000), false};
        Client& client = Start({Listed(Entry(FrameData)), CutFrame, cutAgain, StandInServer::Held({})});
        QVERIFY(AwaitRequests(3));
        QTRY_VERIFY_WITH_TIMEOUT(
            client.Value("progress").toInt() > 70 && client.Count(Waiting) == 1, Patience);
        const QString text = client.Value("msg").toString();
        QVERIFY2(text.startsWith("The transfer of frame_0001.png was interrupted: "_s), qPrintable(text));
        QVERIFY2(text.endsWith("The next attempt is in 1 s."_s), qPrintable(text));
    }

    void AFarmThatAnswersEndsThePauseOfAll()
    {
        Client& client = Start({Listed(Entry(FrameData)), Answer(503, "Retry-After: 3600\r\n"),
            Listed(Entry(FrameData, "b.png")), Whole(FrameData)});
        QTRY_VERIFY_WITH_TIMEOUT(client.Value("msg").toString().endsWith(" 3600 s."_s), Patience);
        client.Order("j2"_s);
        QVERIFY(client.Await(Finished));
        QCOMPARE(client.Count(Waiting), 1);
    }

    void OrdersTakeTurns_data() { AddRows(Turns()); }

    void OrdersTakeTurns()
    {
        const auto& [name, replies, targets] = Row(Turns());
        m_limits.http.attempts = 1;
        Client& client = Restart(replies);
        const QVariantMap order {{"subDir"_s, "12_shot"_s}, {"manual"_s, 1}};
        client.queue.Order({{"a"_s, order}, {"b"_s, order}, {QString(), order}, {"c"_s, QVariantMap()}});
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 2, Patience);
        QByteArrayList asked;
        const auto requests = m_server->Requests();
        for (const QByteArray& request : requests)
            asked.append(request.mid(request.indexOf("/files HTTP") - 1, 1));
        QCOMPARE(asked.join(' '), QByteArray(targets));
    }

    void ANewSessionAsksAgain()
    {
        Client& client = Start({StandInServer::Held({}), Listed(Entry(FrameData)), Whole(FrameData)});
        QVERIFY(AwaitRequests(1));
        client.Set(&FarmAccess::token, "def"_s);
        QVERIFY(client.Await(Finished));
        QVERIFY(m_server->Requests().at(1).contains("Bearer def\r\n"));
    }

    void TellsHowTransfersEnd_data() { AddRows(Reports); }

    void TellsHowTransfersEnd()
    {
        const auto& [name, replies, statuses] = Row(Reports);
        const bool isTimed = statuses == QVector<int> {FarmFault::TimedOut};
        m_limits.idleTime = isTimed ? 1000 : 2 * Patience;
        ConnectionFeed feed;
        feed.BeginSession("abc");
        Client& client = Restart(QList<HttpReply> {Listed(Entry(FrameData))} + replies);
        client.Set(&FarmAccess::feed, &feed);
        client.Order();
        QVERIFY(client.Await(Finished));
        const ConnectionPicture picture = feed.Look();
        QVector<int> failures;
        for (const ConnectionState::Entry& entry : picture.state.Entries())
            failures.append(entry.latest.fault.status);
        QCOMPARE(failures, statuses);
        QVERIFY(!picture.state.FailingSince().isValid());
        QCOMPARE(picture.down.count, 1);
        m_client.reset(); // before the feed
    }

    /// A task that waits for a new list begins again with the new folder, and is not begun twice.
    void ATransferIsBegunOnce()
    {
        m_limits.transfers = 2;
        m_limits.firstPause = m_limits.longestPause = 1;
        Client& client
            = Start({Listed(Entry(FrameData)), Answer(404), StandInServer::Held(Listed(Entry(FrameData))),
                StandInServer::Held(Whole(FrameData)), Listed(Entry(OtherData, "b.png")), Whole(OtherData)});
        QVERIFY(AwaitRequests(3));
        client.Set(&FarmAccess::folder, Path("elsewhere"));
        QVERIFY(AwaitRequests(4));
        m_server->Release(2);
        QTRY_VERIFY_WITH_TIMEOUT(client.Value("msg").toString().contains("does not send it"_s), Patience);
        client.Order("j2"_s);
        QVERIFY(client.Await(Finished));
        m_server->Release(3);
        QVERIFY(client.Await(Finished, 2));
        QCOMPARE(m_server->Requests().size(), 6);
    }

    void PassesAProxyThatAsks()
    {
        const auto restore = qScopeGuard([] { QNetworkProxyFactory::setUseSystemConfiguration(true); });
        Restart({Listed(Entry(FrameData)), Whole(FrameData)});
        m_server->AskFor("ann:secret");
        QNetworkProxy::setApplicationProxy(
            {QNetworkProxy::HttpProxy, "127.0.0.1"_s, quint16(m_server->Url().port())});
        Client& client = *m_client;
        client.access.apiRoot = FarmApiRoot(QUrl("http://farm.example"_s));
        client.Set(&FarmAccess::proxy, {"ann"_s, "secret"_s});
        client.Order();
        QVERIFY(client.Await(Finished));
        QVERIFY(m_server->Requests().constFirst().startsWith("GET http://farm.example/"));
    }
};

QTEST_GUILESS_MAIN(DownloadRetriesTest)
#include "tst_download_retries.moc"
