#include "farm/base/money.h"
#include "farm/base/safe_path.h"
#include "farm/data_lock.h"
#include "farm/demo_data.h"
#include "farm/jobs/job_actions.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/render_queue.h"
#include "farm/rendering/scene_files.h"
#include "farm/uploads/content_store.h"
#include "farm/uploads/upload_store.h"
#include "storage/durable_file.h"
#include "tests/farm/farm_fixture.h"
#include "tests/farm/package_fixture.h"
#include "tests/support/disk_calls.h"

#include <QtTest>

using namespace farm;

namespace {

constexpr QLatin1String Sync("sync ");
constexpr QLatin1String Rename("rename ");

} // namespace

class StorageTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        diskFails = false;
    }

    void RoundsMoneyToCents()
    {
        const QMap<Micros, const char*> texts {{0, "0.00"}, {4999, "0.00"}, {5000, "0.01"},
            {12995000, "13.00"}, {-54000, "-0.05"}, {-4000, "0.00"}};
        for (auto text = texts.begin(); text != texts.end(); ++text)
            QCOMPARE(MoneyText(text.key()), QLatin1String(text.value()));
    }

    void AFileIsOnTheDiskBeforeItsNameIs()
    {
        QVERIFY(WriteFile(Path("part"), "new") && WriteFile(Path("whole"), "old"));
        diskCalls.clear();
        storage::RenameDurably(Path("part"), Path("whole"));
        const QString folder = QFileInfo(m_folder->path()).fileName();
        QCOMPARE(diskCalls, (QStringList {"sync part"_s, "rename whole"_s, Sync + folder}));
        QCOMPARE(ReadFile(Path("whole")), QByteArray("new"));
        QVERIFY_EXCEPTION_THROWN(storage::RenameDurably(Path("part"), Path("whole")), std::runtime_error);
        QVERIFY(WriteFile(Path("part"), "newer"));
        QCOMPARE(Failure([this] { storage::RenameDurably(Path("part"), Path("no/folder")); }),
            "cannot rename part to folder"_s);
    }

    void AppendedBytesAreOnTheDiskOrNowhere()
    {
        const QString folder = QFileInfo(m_folder->path()).fileName();
        diskCalls.clear();
        storage::AppendDurably(Path("file"), 0, "first");
        storage::AppendDurably(Path("file"), 5, " second");
        QCOMPARE(diskCalls, (QStringList {"sync file"_s, Sync + folder, "sync file"_s}));
        diskFails = true;
        QCOMPARE(Failure([this] { storage::AppendDurably(Path("file"), 12, " third"); }),
            "cannot append to file"_s);
        QCOMPARE(ReadFile(Path("file")), QByteArray("first second"));
    }

    // Bytes reach the disk before the record that refers to them.
    void AcknowledgesOnlyWhatIsOnTheDisk()
    {
        FarmData data(m_folder->path());
        ContentStore contents(data.database, Path("contents"));
        UploadStore uploads(data.database, contents, Path("uploads"), 1'000'000);
        const QByteArray package = Package({{"scene.txt", "a scene"}});
        const Upload upload = uploads.Begin(data.account, Sha256(package), package.size(), 1);
        diskCalls.clear();
        uploads.Append(data.account, upload.id, 0, package, 2);
        QVERIFY(Ordered({Sync + upload.id, "sync uploads"_s}));
        diskCalls.clear();
        uploads.Unpack(data.account, upload.id, 3);
        const QString checksum = Sha256("a scene");
        QVERIFY(Ordered({"sync 0"_s, Rename + checksum, Sync + checksum.left(2), Record()}));

        NewJob job = data.Job("job"_s);
        job.files = {{"scene.txt"_s, checksum}};
        job.scene = "scene.txt"_s;
        diskCalls.clear();
        const AddedJob added = data.jobs.Add(job);
        QVERIFY(Ordered({Record()}));
        RenderQueue queue(data.database, DefaultPrice);
        const SceneFiles scenes(data.database, contents, m_folder->path());
        const FrameFiles files(Path("jobs"), scenes);
        const FrameTask task = *queue.Next({job.type}, 0, {});
        diskCalls.clear();
        const RenderPlace place = files.Prepare(task, "png"_s);
        QVERIFY(Ordered({"sync jobs"_s, "sync scene.txt"_s, "rename scene"_s, Sync + added.id}));
        QVERIFY(WriteFile(place.Output(), "a picture"));
        diskCalls.clear();
        queue.Finish(task.key, files.Keep(task, "png"_s), 1, 4);
        QVERIFY(Ordered({"sync frame_0001.png"_s, "rename frame_0001.png"_s, Sync + added.id, Record()}));
    }

    void AnUploadIsHeldByOneThreadAtATime()
    {
        UploadLocks locks;
        const UploadLocks::Hold first(locks, "a"_s);
        const UploadLocks::Hold other(locks, "b"_s);
        QVERIFY_EXCEPTION_THROWN(UploadLocks::Hold(locks, "a"_s), Busy);
    }

    void RefusesPathsThatLeadElsewhere()
    {
        const QString part(255, QLatin1Char('a'));
        const QStringList good {"a"_s, "a/..b/c.d"_s, "1:/b"_s, part,
            QString("a/"_s.repeated(63) + QLatin1Char('a')),
            part + QLatin1Char('/') + part + QLatin1Char('/') + part + QLatin1Char('/') + part};
        for (const QString& path : good)
            QVERIFY2(IsSafePath(path), qPrintable(path));
        const QStringList bad {QString(), "/a"_s, "a//b"_s, "a/"_s, "./a"_s, "a/../b"_s, "C:/a"_s, "c:"_s,
            "a\\b"_s, "a\nb"_s, "a\uFFFD"_s, QString(QChar(0xd800)), part + QLatin1Char('a'),
            QString("a/"_s.repeated(64) + QLatin1Char('a')), good.last() + "/a"_s};
        for (const QString& path : bad)
            QVERIFY2(!IsSafePath(path), qPrintable(path));
    }

    void AnInnerChangeFailsWithTheOuterOne()
    {
        FarmData data(m_folder->path());
        const auto failing = [&data](SQLite::Database&) {
            data.jobs.Add(data.Job("half done"_s));
            throw std::runtime_error("stop");
        };
        QVERIFY_EXCEPTION_THROWN(data.database.Write(failing), std::runtime_error);
        QCOMPARE(data.jobs.List(data.account, {}, 1, 10).total, std::int64_t(0));
    }

    void RefusesDataOfANewerFarm()
    {
        {
            Database database(Path("farm.sqlite"), farm::Schema());
            database.Read([](SQLite::Database& connection) { connection.exec("PRAGMA user_version = 999"); });
        }
        QVERIFY_EXCEPTION_THROWN(Database(Path("farm.sqlite"), farm::Schema()), std::runtime_error);
    }

    void TakesOverDataOfAnOlderFarm_data()
    {
        QTest::addColumn<int>("version");
        for (int version = 1; version < int(farm::Schema().size()); ++version)
            QTest::addRow("version %d", version) << version;
    }

    void TakesOverDataOfAnOlderFarm()
    {
        QFETCH(int, version);
        storage::Migrations old = farm::Schema();
        old.resize(std::size_t(version));
        // A prerender job of five frames, of which the first is finished.
        Database(Path("farm.sqlite"), old).Read([](SQLite::Database& connection) {
            connection.exec(
                "INSERT INTO accounts VALUES (1, 'ann', 'ann@example.org', '', 0, 5000000, 0); "
                "INSERT INTO jobs(key, id, account, number, type, name, folded_name, business, status, "
                "scene, "
                "width, height, submitted_at) "
                "VALUES (7, 'old', 1, 1, 'povray', 'old', 'old', 1, 0, 'scene.txt', 32, 18, 0); "
                "INSERT INTO frames(job, number, finished_at) VALUES (7, 1, 9), (7, 3, NULL), (7, 5, NULL)");
        });
        FarmData data(m_folder->path());
        const auto next = RenderQueue(data.database, DefaultPrice).Next({"povray"_s}, 0, {});
        QVERIFY(next);
        QCOMPARE(next->jobId, "old"_s);
        QCOMPARE(next->Number(), 3);
        QCOMPARE(next->FrameSpan(), 5);
        QVERIFY(data.jobs.Plan(data.account, next->jobId).prerender);
        JobActions(data.database, [] {}).Apply(JobAction::FullRender, data.account, {next->jobId}, 10);
        QCOMPARE(data.Only().progress, 20);
        QCOMPARE(data.Only().status, int(JobStatus::ToFullRender));
    }

    void AFolderServesOneFarmAtATime()
    {
        {
            const DataLock first(m_folder->path(), 0);
            QVERIFY_EXCEPTION_THROWN(DataLock(m_folder->path(), 0), std::runtime_error);
        }
        const DataLock next(m_folder->path(), 0);
    }

    // An empty farm gets demo accounts; later only the account "demo" gets jobs, once it has none left to render.
    void SuppliesTheDemoAccountWithJobs()
    {
        Database database(Path("farm.sqlite"), farm::Schema());
        AccountStore accounts(database, 3600);
        JobStore jobs(database);
        const auto total = [&](const char* name) {
            ProvideDemo(database, accounts, jobs, 2'000'000'000);
            return jobs.List(accounts.Find(QLatin1String(name)).value(), {}, 1, 1).total;
        };
        const std::int64_t demo = total("demo");
        const std::int64_t arrears = total("arrears");
        QCOMPARE(total("demo"), demo);
        database.Write([](SQLite::Database& connection) { connection.exec("UPDATE jobs SET status = 4"); });
        QVERIFY(total("demo") > demo);
        QCOMPARE(total("arrears"), arrears);
        QVERIFY(accounts.SignIn("demo"_s, "demo"_s, 1));
    }

private:
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    static QString Record() { return "sync farm.sqlite-wal"_s; }

    /// The message of the exception that `work` throws; empty when it throws none.
    static QString Failure(const std::function<void()>& work)
    {
        try {
            work();
        } catch (const std::runtime_error& error) {
            return QString::fromUtf8(error.what());
        }
        return {};
    }

    /// Whether these disk calls were made in this order and the last of them ended the list.
    static bool Ordered(const QStringList& calls)
    {
        bool ordered = true;
        int at = -1;
        for (const QString& call : calls) {
            const int next
                = call == calls.last() ? diskCalls.lastIndexOf(call) : diskCalls.indexOf(call, at + 1);
            ordered = ordered && next > at;
            at = next;
        }
        if (!ordered)
            qWarning() << "expected" << calls << "among" << diskCalls;
        return ordered;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(StorageTest)
#include "tst_farm_storage.moc"
