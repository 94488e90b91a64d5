// The tasks of downloads affect each other: turns, orders given again, notices about whole jobs.
#include "tests/rendercore/download_fixture.h"

namespace {

QByteArray TwoFiles()
{
    return Entry(FrameData, "a.png") + ',' + Entry(FrameData, "b.png");
}

/// The event that ends the second file of a job, after the first has arrived.
const std::tuple<const char*, void (*)(Client& client, StandInServer& server)> Ends[] = {
    {"refused", [](Client&, StandInServer& server) { server.Release(2, Answer(403).bytes); }},
    {"gone", [](Client&, StandInServer& server) { server.Release(2, Answer(404).bytes); }},
    {"stopped", [](Client& client, StandInServer&) { client.queue.Stop(client.Ids()); }},
    {"removed", [](Client& client, StandInServer&) { client.queue.Remove(client.Ids().mid(1)); }},
};

/// The farm's first answer for a file, its entry when the order is given again, and the progress of its task then.
const auto& Again()
{
    static const std::tuple<const char*, HttpReply, QByteArray, Status> rows[] = {
        {"failed", Answer(403), TwoFiles(), Failed},
        {"changed", Whole(FrameData), Entry(OtherData, "a.png") + ',' + Entry(FrameData, "b.png"), Finished},
    };
    return rows;
}

} // namespace

class DownloadTasksTest : public DownloadFixture
{
    Q_OBJECT

private:
    /// Waits until the worker has run the commands so far.
    static bool AwaitCommands(Client& client)
    {
        const auto answers = [&client] {
            return std::count_if(client.notices.cbegin(), client.notices.cend(),
                [](const QVariantList& notice) { return notice.value(0) == "No download has failed."_s; });
        };
        const auto before = answers();
        client.queue.RetryFailed();
        return QTest::qWaitFor([&] { return answers() > before; }, Patience);
    }

private slots:
    void init() { MakeFolder(); }
    void cleanup() { m_client.reset(); }

    void ReportsAJobWhenItsLastFileIsSettled_data() { AddRows(Ends); }

    void ReportsAJobWhenItsLastFileIsSettled()
    {
        Client& client = Start({Listed(TwoFiles()), Whole(FrameData), StandInServer::Held(Whole(FrameData)),
            Listed(Entry(FrameData, "a.png"))});
        QVERIFY(AwaitRequests(3));
        QVERIFY(client.Await(Finished));
        QCOMPARE(client.finished.count(), 0);
        std::get<1>(Row(Ends))(client, *m_server);
        QVERIFY(client.AwaitFiles(1));
        QCOMPARE(client.finished.at(0).at(0).toString(), Path("frames/12_shot/a.png"));
        QCOMPARE(client.Count(Finished), 1);
    }

    void AnOrderGivenAgainIsShownAtOnce_data() { AddRows(Again()); }

    void AnOrderGivenAgainIsShownAtOnce()
    {
        const auto& [name, reply, entries, before] = Row(Again());
        Client& client = Start({Listed(TwoFiles()), reply, StandInServer::Held(Whole(FrameData)),
            Listed(entries), Whole(FrameData)});
        QVERIFY(AwaitRequests(3));
        QVERIFY(client.Await(before));
        client.Order();
        QVERIFY(client.Await(Waiting)); // the other file has the only turn
        QCOMPARE(client.Count(Downloading), 1);
        QCOMPARE(client.Value("msg").toString(), QString());
        QCOMPARE(client.Value("progress").toInt(), 0);
    }

    void BringsBackAllThatIsLost()
    {
        Client& client = Start({Listed(TwoFiles()), Whole(FrameData), Whole(FrameData), Listed(TwoFiles()),
            Whole(FrameData), Whole(FrameData)});
        QVERIFY(client.AwaitFiles(1));
        const QStringList files {Path("frames/12_shot/a.png"), Path("frames/12_shot/b.png")};
        for (const QString& file : files)
            QVERIFY(QFile::remove(file));
        client.Order();
        QTRY_COMPARE_WITH_TIMEOUT(m_server->Requests().size(), 6, Patience);
        QVERIFY(client.AwaitFiles(2) || client.AwaitFiles(3));
        QVERIFY(client.Await(Finished, 2));
        for (const QString& file : files)
            QVERIFY(ReadFile(file) == FrameData);
    }

    void TheNextFileTakesTheTurnOfAStoppedOne()
    {
        Client& client = Start(
            {Listed(TwoFiles()), StandInServer::Held(Whole(FrameData)), Whole(FrameData), Whole(FrameData)});
        QVERIFY(AwaitRequests(2));
        client.queue.Stop(client.Ids().mid(0, 1));
        QVERIFY(client.Await(Finished));
        QCOMPARE(client.Count(Stopped), 1);
        client.queue.Resume(client.Ids());
        QVERIFY(client.Await(Finished, 2));
        QCOMPARE(m_server->Requests().size(), 4);
    }

    void AFileIsTransferredOnceHoweverItGotItsTurn()
    {
        m_limits.transfers = 2;
        const HttpReply held = StandInServer::Held(Whole(FrameData));
        Client& client
            = Start({Listed(TwoFiles() + ',' + Entry(FrameData, "c") + ',' + Entry(FrameData, "d")), held,
                held, held, Whole(FrameData)});
        QVERIFY(AwaitRequests(3));
        client.queue.Redownload({client.Ids().constLast()});
        QVERIFY(AwaitCommands(client));
        m_server->Release(1);
        QVERIFY(AwaitRequests(4));
        QVERIFY(m_server->Requests().constLast().contains("/files/d "));
        m_server->Release(2);
        QVERIFY(client.Await(Finished, 3));
        QVERIFY(AwaitCommands(client));
        m_server->Release(3);
        QVERIFY(client.Await(Finished, 4));
        QCOMPARE(m_server->Requests().size(), 5);
    }

    void ADownloadFromTheStartAsksForEverything()
    {
        Client& client = Start(
            {Listed(Entry(FrameData)), CutFrame, StandInServer::Held(Whole(FrameData)), Whole(FrameData)});
        QVERIFY(AwaitRequests(3));
        QVERIFY(!m_server->Requests().at(1).contains("Range:"));
        QVERIFY(m_server->Requests().at(2).contains(RangeLine));
        client.queue.Redownload(client.Ids());
        QVERIFY(client.Await(Finished));
        QVERIFY(!m_server->Requests().at(3).contains("Range:"));
    }

    void TooMuchDataAreThrownAway()
    {
        Client& client
            = Start({Listed(Entry(FrameData)), {"HTTP/1.1 200 OK\r\n\r\n" + FrameData + FrameData, false},
                Listed(Entry(FrameData)), Whole(FrameData)});
        QVERIFY(client.Await(Finished));
        QVERIFY(!m_server->Requests().at(3).contains("Range:"));
    }

    void TheEndOfASessionEndsAllTransfers()
    {
        m_limits.transfers = 2;
        const HttpReply held = StandInServer::Held(Whole(FrameData));
        Client& client = Start({Listed(TwoFiles()), held, Answer(401), Listed({}), Answer(401), held});
        QVERIFY(AwaitRequests(3));
        QVERIFY(client.Await(Waiting, 2));
        // The answer to an order may tell as well.
        client.queue.ClearFinished();
        m_server->SetReplies({held, held, Answer(401)});
        client.Set(&FarmAccess::token, "def"_s);
        QVERIFY(client.Await(Downloading, 2));
        client.Order("j2"_s);
        QVERIFY(client.Await(Waiting, 2));
        QCOMPARE(client.notices.count(), 0);
    }

    void WaitsSilentlyWithoutAFarm()
    {
        QDir().mkpath(Path("transfer"));
        Disk().Apply("farm/ann"_s, {"j0"_s, "12_shot"_s, DownloadOrder::Manual, 0},
            {{"frame_0001.png"_s, FrameData.size(), QLatin1String(Checksum(FrameData))}}, Path("frames"));
        Client& client = Restart({Whole(FrameData)});
        const QUrl farm = client.access.apiRoot;
        client.Set(&FarmAccess::apiRoot, QUrl());
        QVERIFY(client.Await(Waiting));
        client.queue.Redownload(client.Ids());
        QVERIFY(AwaitCommands(client) && AwaitCommands(client));
        QCOMPARE(client.Count(Waiting), 1);
        QCOMPARE(client.Value("msg").toString(), QString());
        client.Set(&FarmAccess::apiRoot, farm);
        QVERIFY(client.Await(Finished));
    }

    void OnlyWhoOrderedIsToldOfARefusal()
    {
        Client& client = Start({Answer(403)}, false);
        QTRY_VERIFY_WITH_TIMEOUT(
            !m_server->Requests().isEmpty() && Disk().OpenOrders(client.access.owner, 1).isEmpty(), Patience);
        QVERIFY(AwaitCommands(client));
        QCOMPARE(client.notices.count(), 1);
        // A list that is too long is refused for good as well.
        m_limits.http.answerBytes = 100;
        Client& next = Start({Listed(TwoFiles())});
        QTRY_COMPARE_WITH_TIMEOUT(next.notices.count(), 1, Patience);
        QVERIFY(next.notices[0][0].toString().startsWith("The files of 12_shot cannot be downloaded: "_s));
        QVERIFY(Disk().OpenOrders(next.access.owner, 1).isEmpty());
    }

    void OldTasksLeaveWhenTheirOwnerSignsIn()
    {
        Client& client = Start({Listed(TwoFiles()), Whole(FrameData)});
        QVERIFY(client.AwaitFiles(1));
        client.Set(&FarmAccess::owner, "farm/bob"_s);
        client.queue.SetKeepDays(2);
        QVERIFY(AwaitCommands(client));
        SQLite::Database(Path("transfer/downloads.sqlite").toStdString(), SQLite::OPEN_READWRITE, Patience)
            .exec("UPDATE tasks SET finished = finished - 3 * 86400 WHERE id = 1");
        client.Set(&FarmAccess::owner, "farm/ann"_s);
        QTRY_COMPARE_WITH_TIMEOUT(client.Ids(), QStringList {"0000000002"_s}, Patience);
    }
};

QTEST_GUILESS_MAIN(DownloadTasksTest)
#include "tst_download_tasks.moc"
