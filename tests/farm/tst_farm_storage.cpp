#include "farm/base/safe_path.h"
#include "farm/data_lock.h"
#include "farm/demo_data.h"
#include "farm/jobs/job_actions.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/render_queue.h"
#include "farm/rendering/scene_files.h"
#include "farm/uploads/content_store.h"
#include "farm/uploads/upload_store.h"
#include "storage/disk_full.h"
#include "storage/durable_file.h"
#include "tests/farm/farm_at_work.h"
#include "tests/farm/package_fixture.h"
#include "tests/support/disk_calls.h"

#include <sqlite3.h>

#include <csignal>
#include <future>
#include <sys/resource.h>

using namespace farm;

namespace {

const QLatin1String Sync("sync ");

constexpr const char* OldRecords
    = "INSERT INTO accounts(key, name, email, password, bound, balance, second_balance) VALUES (1, 'ann', "
      "'ann@example.org', '', 0, 5000000, 0); "
      "INSERT INTO jobs(key, id, account, number, type, name, folded_name, business, status, scene, width, "
      "height, submitted_at) VALUES (7, 'old', 1, 1, 'povray', 'old', 'old', 1, 0, 'scene.txt', 32, 18, 0); "
      "INSERT INTO frames(job, number, finished_at) VALUES (7, 1, 9), (7, 3, NULL), (7, 5, NULL)";

// Whether the contents may be linked, how many blocks are read before an interruption, and what comes of it.
const std::tuple<const char*, bool, int, const char*, const char*> Sharings[] = {
    {"linked", true, 9, "a scene", ""},
    {"copied", false, 9, "a scene", ""},
    {"interrupted", false, 0, "", "the farm is shutting down"},
};

// Two accounts have a project with the same pool.
constexpr const char* OldProjects
    = "INSERT INTO accounts(key, name, email, password, bound, balance, second_balance) "
      "VALUES (2, 'bob', 'b', '', 0, 0, 0); "
      "INSERT INTO projects VALUES (1, 1, 'Titles', 'p'), (2, 2, 'Other', 'p'); UPDATE jobs SET project = 2";

} // namespace

class StorageTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        diskFails = false;
        diskFree = -1;
        fullFile.clear();
    }

    void AppendsAllBytesOrNone()
    {
        storage::AppendDurably(Path("file"_s), 0, "first");
        storage::AppendDurably(Path("file"_s), 5, " second");
        diskFails = true;
        QVERIFY_EXCEPTION_THROWN(storage::AppendDurably(Path("file"_s), 12, " third"), std::runtime_error);
        QCOMPARE(ReadFile(Path("file"_s)), QByteArray("first second"));
    }

    void TellsAFullDiskFromOtherTroubles()
    {
        for (int error : {ENOSPC, EDQUOT, EIO, EROFS})
            QCOMPARE(storage::IsDiskFull(storage::DiskError("x", error)), error == ENOSPC || error == EDQUOT);
        for (int error : {SQLITE_FULL, SQLITE_BUSY})
            QCOMPARE(storage::IsDiskFull(SQLite::Exception("x", error)), error == SQLITE_FULL);
        QVERIFY(!storage::IsDiskFull(std::runtime_error("x")));
    }

    // Bytes reach the disk before the record that refers to them.
    void AcknowledgesOnlyWhatIsOnTheDisk()
    {
        FarmData data(m_folder->path());
        diskCalls.clear();
        ContentStore contents(data.database, Path("contents"_s));
        const AccountTerms terms(DefaultPrice, 1'000'000);
        UploadStore uploads(data.database, contents, Path("uploads"_s), terms);
        const QString folder = QFileInfo(m_folder->path()).fileName();
        QCOMPARE(diskCalls, (QStringList {Sync + folder, Sync + folder}));
        const QString checksum = Sha256("a scene");
        SceneContents scene {{"scene.txt", "a scene"}};
        for (const bool hasMany : {false, true}) {
            for (int more = 0; hasMany && more < 8; ++more)
                scene.append({QByteArray::number(more), QByteArray::number(more)});
            const QByteArray package = Package(scene);
            const Upload upload = uploads.Begin(data.account, Sha256(package), package.size(), 1);
            diskCalls.clear();
            uploads.Append(data.account, upload.id, 0, package, 2);
            QVERIFY(Ordered({Sync + upload.id, "sync uploads"_s}));
            diskCalls.clear();
            uploads.Unpack(data.account, upload.id, 3);
            const QString files = hasMany ? "sync all"_s : "sync 0"_s;
            const QString folders = hasMany ? "sync all"_s : Sync + checksum.left(2);
            QVERIFY(Ordered({files, "rename "_s + checksum, folders, "sync contents"_s, Record()}));
        }

        NewJob job = data.Job("job"_s);
        job.files = {{"scene.txt"_s, checksum}};
        job.scene = "scene.txt"_s;
        diskCalls.clear();
        const AddedJob added = data.jobs.Add(job);
        QVERIFY(Ordered({Record()}));
        RenderQueue queue(data.database, data.feed, data.terms);
        const SceneFiles scenes(data.database, contents, m_folder->path());
        const FrameFiles files(Path("jobs"_s), scenes);
        std::set<FrameKey> taken;
        const FrameTask task = queue.Choose({{job.type}}, taken, 1).at(0);
        diskCalls.clear();
        const RenderPlace place = files.Prepare(task, {"png"_s}, "run"_s, [] { return true; });
        QVERIFY(
            Ordered({"sync jobs"_s, Sync + folder, "sync scene.txt"_s, "rename scene"_s, Sync + added.id}));
        QVERIFY(WriteFile(place.Output(), "a picture"));
        diskCalls.clear();
        queue.Finish(task.key, files.Keep(task, "png"_s, "run"_s), 1, 4);
        QVERIFY(Ordered({"sync frame_0001.png"_s, "rename frame_0001.png"_s, Sync + added.id, Record()}));
    }

    void SharesContentsWithScenes_data() { AddRows(Sharings); }
    void SharesContentsWithScenes()
    {
        const auto& [name, mayLink, blocks, content, why] = Row(Sharings);
        QVERIFY(WriteFile(Path("content"_s), QByteArray("a scene")));
        int asked = 0;
        const auto goesOn = [&asked, blocks = blocks] { return ++asked <= blocks; };
        QString checksum;
        const QString failure = Failure([&, mayLink = mayLink] {
            checksum = ShareFile(Path("content"_s), Path("scene"_s), mayLink, goesOn);
        });
        QCOMPARE(failure, QString::fromLatin1(why));
        QCOMPARE(checksum, failure.isEmpty() ? Sha256("a scene") : QString());
        QCOMPARE(QFile::permissions(Path("scene"_s)).testFlag(QFile::WriteOwner), !mayLink);
        QCOMPARE(ReadFile(Path("scene"_s)), QByteArray(content));
    }

    void UnpacksWholeFilesOnly()
    {
        FarmData data(m_folder->path());
        ContentStore contents(data.database, Path("contents"_s));
        UploadStore uploads(data.database, contents, Path("uploads"_s), data.terms);
        const QByteArray content(2'000'000, 'a');
        const QByteArray package = Package({{"a", content}});
        const QString id = uploads.Begin(data.account, Sha256(package), package.size(), 1).id;
        uploads.Append(data.account, id, 0, package, 2);
        // A limit on the size of files simulates a full disk.
        ::signal(SIGXFSZ, SIG_IGN);
        rlimit usual {};
        ::getrlimit(RLIMIT_FSIZE, &usual);
        const rlimit small {1'000'000, usual.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
        const QString why = Failure([&] { uploads.Unpack(data.account, id, 3); });
        ::setrlimit(RLIMIT_FSIZE, &usual);
        QCOMPARE(why, "cannot write an unpacked file"_s);
        QVERIFY(uploads.Unpack(data.account, id, 4).unpacked);
        QCOMPARE(contents.KnownTo(data.account, {Sha256(content)}).size(), 1);
    }

    void WaitsForSpaceOnTheDisk()
    {
        FarmAtWork farm;
        farm.settings.lookInterval = std::chrono::milliseconds(20);
        farm.Start(ScriptedTypes("echo x >> ../../log; [ -e ../../gate ] && echo picture > {output}"));
        const QByteArray package = Package({{"scene.txt", "a scene"}});
        fullFile = farm.BeginUpload(package).Data("id").toString();
        const Reply full = farm.Put(fullFile, 0, package);
        QCOMPARE(full.status, 507);
        QCOMPARE(full.Error(), "disk_full"_s);
        QVERIFY(!full.retryAfter.isEmpty());
        fullFile = "scene.unfinished/scene.txt"_s;
        const QString job = farm.Add(1);
        int attempts = 0;
        QVERIFY(QTest::qWaitFor(
            [&attempts] {
                attempts += TakeDiskCalls().count("sync scene.txt"_s);
                return attempts > 5; // a frame has three attempts
            },
            Patience));
        QCOMPARE(farm.Status(job), JobStatus::Running);
        // A renderer that fails on a full disk does not cost an attempt either.
        diskFree = 0;
        fullFile.clear();
        EVENTUALLY(farm.Log().count('x') > 5);
        QCOMPARE(farm.Status(job), JobStatus::Running);
        diskFree = -1;
        QVERIFY(farm.OpenGate());
        EVENTUALLY_COMPARE(farm.Status(job), JobStatus::Finished);
    }

    void AnUploadHasOneWriterAtATime()
    {
        UploadLocks locks;
        const UploadLocks::Hold other(locks, "b"_s);
        {
            const UploadLocks::Hold first(locks, "a"_s);
            QVERIFY_EXCEPTION_THROWN(UploadLocks::Hold(locks, "a"_s), Busy);
        }
        const UploadLocks::Hold next(locks, "a"_s);
    }

    void RefusesPathsThatLeadElsewhere()
    {
        const QString part(255, QLatin1Char('a'));
        const QString deep("a/"_s.repeated(63) + QLatin1Char('a'));
        const QString longest = QStringList {part, part, part, part}.join(QLatin1Char('/'));
        for (const QString& path : {"a"_s, "a/..b/c.d"_s, "1:/b"_s, part, deep, longest})
            QVERIFY2(IsSafePath(path), qPrintable(path));
        for (const QString& path : {QString(), "/a"_s, "a//b"_s, "a/"_s, "./a"_s, "a/../b"_s, "C:/a"_s,
                 "c:"_s, "a\\b"_s, "a\nb"_s, "a\uFFFD"_s, QString(QChar(0xd800)), QString(part + "a"_s),
                 QString(deep + "/a"_s), QString(longest + "/a"_s)})
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

    void TellsOfAChangeWhenOthersCanReadIt()
    {
        FarmData data(m_folder->path());
        std::vector<std::int64_t> told;
        const auto tell = [&] {
            data.database.AfterCommit([&] { told.push_back(data.jobs.List(data.account, {}, 1, 10).total); });
        };
        const auto add = [&](SQLite::Database&) {
            data.jobs.Add(data.Job("new"_s));
            data.database.Write([&](SQLite::Database&) { tell(); });
        };
        const auto failing = [&](SQLite::Database& connection) {
            add(connection);
            throw std::runtime_error("stop");
        };
        tell();
        data.database.Write([&](SQLite::Database& connection) {
            add(connection);
            QCOMPARE(told.size(), std::size_t(1));
            data.jobs.Add(data.Job("another"_s));
        });
        QVERIFY_EXCEPTION_THROWN(data.database.Write(failing), std::runtime_error);
        data.database.Write(add);
        QCOMPARE(told, (std::vector<std::int64_t> {0, 2, 3}));
    }

    void ReadsBesideAWriteAndCopiesWhatItUpgrades()
    {
        const QString file = Path("farm.sqlite"_s);
        storage::Migrations old = farm::Schema();
        old.resize(1);
        Database(file, old).Read([](SQLite::Database& connection) { connection.exec(OldRecords); });
        Database database(file, farm::Schema(), {1, true});
        const SQLite::Database copy(Database::CopyName(file, 1).toStdString());
        QVERIFY(copy.tableExists("jobs") && !copy.tableExists("job_counts"));

        const auto jobs = [&database] {
            return database.Read([](SQLite::Database& connection) {
                return connection.execAndGet("SELECT count(*) FROM jobs").getInt();
            });
        };
        const int before = jobs();
        database.Write([&](SQLite::Database& connection) {
            connection.exec("DELETE FROM jobs");
            QCOMPARE(jobs(), 0);
            QCOMPARE(std::async(std::launch::async, jobs).get(), before);
        });
        QCOMPARE(jobs(), 0);
    }

    void RefusesDataOfANewerFarm()
    {
        FarmData(m_folder->path()).database.Read([](SQLite::Database& connection) {
            connection.exec("PRAGMA user_version = 999");
        });
        QVERIFY_EXCEPTION_THROWN(FarmData(m_folder->path()), std::runtime_error);
    }

    void AFolderServesOneFarmAtATime()
    {
        {
            const DataLock first(m_folder->path(), 0);
            // A process of this machine is never overruled; the lock file of another one may have stayed.
            const QString why = Failure([this] { DataLock(m_folder->path(), 0, true); });
            QVERIFY2(
                why.contains(": process %1 on "_s.arg(QCoreApplication::applicationPid())), qPrintable(why));
            QVERIFY(WriteFile(Path("farm.lock"_s), "process 4711 on elsewhere"));
            QVERIFY(
                Failure([this] { DataLock(m_folder->path(), 0); }).endsWith("process 4711 on elsewhere"_s));
            const DataLock taken(m_folder->path(), 0, true);
        }
        const DataLock next(m_folder->path(), 0);
    }

    // An empty farm gets demo accounts; later the account "demo" gets jobs to render again once it has none left.
    void SuppliesTheDemoAccountWithJobs()
    {
        Database database(Path("farm.sqlite"_s), farm::Schema());
        AccountStore accounts(database, 3600);
        JobStore jobs(database);
        const auto total = [&](const QString& name) {
            ProvideDemo(database, accounts, jobs, 2'000'000'000);
            return jobs.List(accounts.Find(name).value(), {}, 1, 1).total;
        };
        const std::int64_t demo = total("demo"_s);
        const std::int64_t arrears = total("arrears"_s);
        QCOMPARE(total("demo"_s), demo);
        database.Write([](auto& db) { return db.exec("UPDATE jobs SET status = 4 WHERE status <> 5"); });
        QVERIFY(!jobs.HasOpenJobs(accounts.Find("demo"_s).value()));
        QCOMPARE(total("demo"_s), demo);
        QVERIFY(jobs.HasOpenJobs(accounts.Find("demo"_s).value()));
        QCOMPARE(total("arrears"_s), arrears);
        QVERIFY(database.Read(
            [](auto& db) { return db.execAndGet("SELECT min(who) <> '' FROM audit").getInt(); }));
    }

    // The older farm has a prerender job of five frames, the first of which is finished.
    void TakesOverDataOfAnOlderFarm()
    {
        for (std::size_t version = 1; version < farm::Schema().size(); ++version) {
            const QTemporaryDir folder;
            storage::Migrations old = farm::Schema();
            old.resize(version);
            Database(folder.filePath("farm.sqlite"_s), old).Read([](SQLite::Database& connection) {
                connection.exec(OldRecords);
                if (!connection.tableExists("project_members"))
                    connection.exec(OldProjects);
                if (connection.tableExists("frame_ranges"))
                    connection.exec(
                        "INSERT INTO frame_ranges(job, first, last) SELECT job, 1, max(number) FROM frames");
            });
            FarmData data(folder.path());
            // Projects with the same pool have become one, and the balance has become a payment.
            QCOMPARE(data.Balance(), Micros(5'000'000));
            if (const auto bob = data.accounts.Find("bob"_s)) {
                QCOMPARE(data.projects.OfAccount(*bob).at(0).name, "Titles"_s);
                QCOMPARE(data.projects.OfAccount(data.account).size(), std::size_t(1));
                data.SetBalance(5'000'001);
                QCOMPARE(data.Count("SELECT sum(amount) FROM payments"), 5'000'001);
            }
            std::set<FrameKey> taken;
            const FrameTask next
                = RenderQueue(data.database, data.feed, data.terms).Choose({{"povray"_s}}, taken, 1).at(0);
            QCOMPARE("%1 %2 %3"_s.arg(next.jobId).arg(next.Number()).arg(next.FrameSpan()), "old 3 5"_s);
            QVERIFY(data.jobs.Plan(data.account, next.jobId).prerender);
            JobActions(data.database, data.feed, data.terms, [] {
            }).Apply(JobAction::FullRender, data.account, {next.jobId}, 10);
            QCOMPARE(data.Only().progress, 20);
            QCOMPARE(data.Only().status, int(JobStatus::ToFullRender));
        }
    }

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }
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

    /// Whether these disk calls were made in this order, with others in between.
    static bool Ordered(const QStringList& calls)
    {
        int at = -1;
        for (const QString& call : calls) {
            at = diskCalls.indexOf(call, at + 1);
            if (at < 0) {
                qWarning() << "expected" << calls << "among" << diskCalls;
                return false;
            }
        }
        return true;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(StorageTest)
#include "tst_farm_storage.moc"
