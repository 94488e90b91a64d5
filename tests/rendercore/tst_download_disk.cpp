// Downloads whose disk or database cannot be used for a while.
#include "tests/rendercore/download_fixture.h"
#include "tests/support/real_disks.h"

namespace {

/// Obstacles to saving files: a file in the place of a folder, or no space.
const std::tuple<const char*, const char*> Troubles[] = {
    {"download folder", "frames"},
    {"job's folder", "frames/12_shot"},
    {"full disk", ""},
};

/// An error of saving a file, and whose downloads the notice says have to wait; none for the file's own.
const std::tuple<const char*, int, const char*> SaveErrors[] = {
    {"quota", EDQUOT, "All downloads wait"},
    {"read-only", EROFS, "All downloads wait"},
    {"broken", EIO, "All downloads wait"},
    {"stale", ESTALE, "All downloads wait"},
    {"forbidden", EACCES, "Its downloads wait"},
    {"server of a shared folder down", EHOSTDOWN, "Its downloads wait"},
    {"shared folder disconnected", ENOTCONN, "Its downloads wait"},
    {"too large", EFBIG, ""},
};

/// Answers, the first to a transfer, while the database cannot be read or written, and the warning about that.
const std::tuple<const char*, QList<HttpReply>, const char*> DatabaseFailures[] = {
    {"before another attempt", {Answer(503)}, "cannot start downloads"},
    {"at a refusal", {Answer(403)}, "cannot save a failed download"},
    {"after a new list", {Answer(404), Answer(403)}, "cannot continue an outdated download"},
};

const char* awaitedWarning = "";
std::atomic<int> warnings; ///< those with the awaited text

void CountWarning(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    warnings += text.startsWith(QLatin1String(awaitedWarning)) ? 1 : 0;
}

const std::tuple<const char*, void (*)(const QString& file)> Unreadables[] = {
    {"damaged", [](const QString& file) { WriteFile(file, "not a database"); }},
    {"damaged inside",
        [](const QString& file) {
            FarmFiles files;
            for (int number = 0; number < 300; ++number)
                files.append({QString::number(number), 1, QLatin1String(Checksum("x"))});
            DownloadStore(file).Apply(
                "farm/ann"_s, {"j0"_s, "s"_s, DownloadOrder::Manual, 0}, files, "/frames"_s);
            const QByteArray content = ReadFile(file);
            WriteFile(file, content.left(4096) + QByteArray(content.size() - 4096, 'z'));
        }},
    {"newer", [](const QString& file) { storage::Database(file, storage::Migrations(99, "SELECT 1")); }},
    {"not a file", [](const QString& file) { QDir().mkpath(file); }},
};

} // namespace

class DownloadDiskTest : public DownloadFixture
{
    Q_OBJECT

private slots:
    void init() { MakeFolder(); }
    void cleanup() { m_client.reset(); }

    void WaitsForTheDisk_data() { AddRows(Troubles); }

    void WaitsForTheDisk()
    {
        const QString obstacle = Path(std::get<1>(Row(Troubles)));
        const bool isFull = obstacle == Path("");
        QDir().mkpath(QFileInfo(obstacle).path());
        QVERIFY(isFull || WriteFile(obstacle, "in the way"));
        diskFree = isFull ? 10 : -1;
        Client& client = Start({Listed(Entry(FrameData) + ',' + Entry(FrameData, "frame_0002.png")),
            Listed(Entry(FrameData, "new.png")), Whole(FrameData), Whole(FrameData), Whole(FrameData),
            Listed(Entry(FrameData, "last.png")), Whole(FrameData)});
        QTRY_VERIFY_WITH_TIMEOUT(client.Value("msg").toString().contains("cannot be saved"_s), Patience);
        client.Order("j2"_s); // its answer leads to another attempt
        QVERIFY(client.Await(Waiting, 3));
        diskFree = -1;
        QVERIFY(isFull || QFile::remove(obstacle));
        QVERIFY(client.Await(Finished, 3));
        QCOMPARE(client.notices.count(), 1);
        QCOMPARE(m_server->Requests().size(), 5);
        // The next failure is reported again.
        diskFree = isFull ? 10 : -1;
        client.Order("j3"_s);
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), isFull ? 2 : 1, Patience);
        diskFree = -1;
        QVERIFY(client.Await(Finished, 4));
    }

    void PausesLongerAfterEachError_data() { AddRows(SaveErrors); }

    void PausesLongerAfterEachError()
    {
        const auto& [name, error, notice] = Row(SaveErrors);
        fullError = error;
        fullFile = ".frame_0001.png.part"_s;
        m_limits.firstPause = 100;
        m_limits.longestPause = 200;
        TakeDiskCalls();
        QElapsedTimer clock;
        clock.start();
        Client& client = Start({Listed(Entry(FrameData)), Whole(FrameData)});
        const bool mayPass = *notice != '\0';
        int attempts = 0;
        QTRY_VERIFY_WITH_TIMEOUT(
            (attempts += TakeDiskCalls().filter(fullFile).size()) >= (mayPass ? 4 : 1), Patience);
        QVERIFY(!mayPass || clock.elapsed() >= 100 + 200 + 200);
        QVERIFY(mayPass || client.Await(Failed));
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), int(mayPass), Patience);
        QVERIFY(client.notices.value(0).value(0).toString().contains(QLatin1String(notice)));
        fullError = 0;
        client.queue.RetryFailed();
        QVERIFY(client.Await(Finished));
        m_client.reset(); // before the name changes
        fullFile.clear();
    }

    void GoesOnOnceAFullDiskHasGrown()
    {
        QDir().mkpath(Path("frames"));
        const SmallDisk disk(Path("frames"));
        if (!disk.IsThere())
            QSKIP("this program may not mount disks");
        diskFree = qint64(1) << 40; // so that the write fails, rather than the look before it
        Client& client = Start({Listed(Entry(FrameData)), Whole(FrameData)});
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 1, Patience);
        QVERIFY(client.notices[0][0].toString().contains(qt_error_string(ENOSPC)));
        QVERIFY(disk.Grow());
        QVERIFY(client.Await(Finished));
        QVERIFY(ReadFile(Frame()) == FrameData);
        QCOMPARE(client.notices.count(), 1);
        m_client.reset(); // before the disk
        diskFree = -1;
    }

    void FollowsAChangedFolder()
    {
        Client& client = Start({Listed(Entry(FrameData)), CutFrame, StandInServer::Held(Whole(FrameData)),
            Rest(FrameData, CutAt)});
        QVERIFY(AwaitRequests(3));
        client.Set(&FarmAccess::folder, Path("elsewhere"));
        QVERIFY(client.Await(Finished));
        QVERIFY(m_server->Requests().constLast().contains(RangeLine));
        QCOMPARE(client.Value("destFile").toString(), Path("elsewhere/12_shot/frame_0001.png"));
        QVERIFY(ReadFile(Path("elsewhere/12_shot/frame_0001.png")) == FrameData);
        QVERIFY(!QFile::exists(Part()));
    }

    void GoesOnWithExactlyEnoughRoom()
    {
        QDir().mkpath(Path("frames/12_shot"));
        QVERIFY(WriteFile(Part(), FrameData.left(CutAt)));
        diskFree = 0;
        Client& client = Start({Listed(Entry(FrameData)), Rest(FrameData, CutAt)});
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 1, Patience);
        QCOMPARE(m_server->Requests().size(), 1);
        diskFree = FrameData.size() - CutAt;
        QVERIFY(client.Await(Finished));
        diskFree = -1;
    }

    void AnotherFolderEndsThePause()
    {
        m_limits.firstPause = m_limits.longestPause = 10 * Patience;
        diskFree = 10;
        Client& client
            = Start({Listed(Entry(FrameData)), Whole(FrameData), Listed(Entry(FrameData, "b.png"))});
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 1, Patience);
        diskFree = -1;
        client.Set(&FarmAccess::folder, Path("elsewhere"));
        QVERIFY(client.Await(Finished));
        // The first folder is reported again.
        client.Set(&FarmAccess::folder, Path("frames"));
        diskFree = 10;
        client.Order("j2"_s);
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 2, Patience);
        diskFree = -1;
    }

    void ARemovedTaskNoLongerWaitsForTheDisk()
    {
        diskFree = 10;
        Client& client = Start({Listed(Entry(FrameData)), Listed(Entry(FrameData, "b.png")), Whole(FrameData),
            Listed(Entry(FrameData, "c.png"))});
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 1, Patience);
        client.queue.Remove(client.Ids());
        diskFree = -1;
        client.Order("j2"_s);
        QVERIFY(client.Await(Finished));
        diskFree = 10;
        client.Order("j3"_s);
        QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), 2, Patience);
        diskFree = -1;
    }

    void LosesNoCommand()
    {
        const HttpReply list = Listed(Entry(FrameData));
        Client& client = Restart({list, Whole(FrameData), list, Whole(FrameData)});
        for (int round = 1; round <= 2; ++round) { // each failure is reported
            diskFails = true;
            client.Order(QString::number(round));
            QTRY_COMPARE_WITH_TIMEOUT(client.notices.count(), round, Patience);
            diskFails = false;
            QVERIFY(client.Await(Finished, round));
            QCOMPARE(client.notices.count(), round);
        }
    }

    void LosesNoTaskWhileTheDatabaseFails_data() { AddRows(DatabaseFailures); }

    void LosesNoTaskWhileTheDatabaseFails()
    {
        const auto& [name, answers, warning] = Row(DatabaseFailures);
        const Client& client = Start(QList<HttpReply> {Listed(Entry(FrameData)), StandInServer::Held({})}
            + answers.mid(1) + QList<HttpReply> {Whole(FrameData)});
        QVERIFY(AwaitRequests(2));
        SQLite::Database database(
            Path("transfer/downloads.sqlite").toStdString(), SQLite::OPEN_READWRITE, Patience);
        awaitedWarning = warning;
        warnings = 0;
        const auto former = qInstallMessageHandler(CountWarning);
        database.exec("ALTER TABLE tasks RENAME TO away");
        m_server->Release(1, answers.constFirst().bytes);
        const bool hasFailed = QTest::qWaitFor([] { return warnings > 0; }, Patience);
        database.exec("ALTER TABLE away RENAME TO tasks");
        qInstallMessageHandler(former);
        QVERIFY(hasFailed);
        QVERIFY(client.Await(Finished));
    }

    void BeginsAnewWithoutAReadableDatabase_data() { AddRows(Unreadables); }

    void BeginsAnewWithoutAReadableDatabase()
    {
        QDir().mkpath(Path("transfer"));
        std::get<1>(Row(Unreadables))(Path("transfer/downloads.sqlite"));
        Client& client = Start({Listed(Entry(FrameData)), Whole(FrameData)});
        QVERIFY(client.Await(Finished));
        QCOMPARE(client.notices.count(), 1);
        QCOMPARE(QDir(Path("transfer")).entryList({"downloads-unreadable-*.sqlite"_s}).size(), 1);
        QCOMPARE(Restart({}).notices.count(), 0);
    }

    void BeginsAnewWhenTheDatabaseFailsLater_data()
    {
        QTest::addColumn<bool>("isCleared");
        QTest::newRow("with a list") << false;
        QTest::newRow("with an empty list") << true;
    }

    void BeginsAnewWhenTheDatabaseFailsLater()
    {
        QFETCH(bool, isCleared);
        QDir().mkpath(Path("transfer"));
        const FarmFile old {"old"_s, FrameData.size(), QLatin1String(Checksum(FrameData))};
        Disk().Apply("farm/ann"_s, {"j0"_s, "s"_s, DownloadOrder::Manual, 0}, {old}, Path("frames"));
        // The table of orders, which is on the second page of 4096 bytes.
        QByteArray content = ReadFile(Path("transfer/downloads.sqlite"));
        WriteFile(Path("transfer/downloads.sqlite"), content.replace(4096, 4096, QByteArray(4096, 'z')));
        // The list of files is asked for again when the downloads begin anew, before or after the first answer.
        Client& client = Restart({Whole(FrameData)});
        m_server->SetReplyTo("/j1/files HTTP", Listed(Entry(FrameData)));
        QVERIFY(client.Await(Finished));
        if (isCleared) {
            client.queue.ClearFinished();
            QTRY_VERIFY_WITH_TIMEOUT(client.queue.Tasks()->isEmpty(), Patience);
        }
        client.Order();
        QTRY_COMPARE_WITH_TIMEOUT(client.Value("jobId").toString(), "j1"_s, Patience);
        QVERIFY(client.Await(Finished));
        QCOMPARE(client.notices.count(), 1);
    }
};

QTEST_GUILESS_MAIN(DownloadDiskTest)
#include "tst_download_disk.moc"
