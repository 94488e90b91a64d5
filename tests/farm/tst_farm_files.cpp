#include "farm/base/errors.h"
#include "farm/jobs/job_actions.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/job_folders.h"
#include "farm/rendering/scene_files.h"
#include "farm/uploads/content_store.h"
#include "tests/farm/farm_at_work.h"
#include "tests/farm/package_fixture.h"
#include "tests/support/disk_calls.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace farm;

namespace {

constexpr const char* Copying = "cp {scene} {output}";
constexpr std::int64_t Gibibyte = std::int64_t {1} << 30;

bool Always()
{
    return true;
}

} // namespace

/// The files that the farm removes from its data folder, and the moments at which it does.
class FilesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_farm = std::make_unique<FarmAtWork>();
        diskFree = -1;
        stuckFile.clear();
    }

    void DeletingAJobFreesItsFiles()
    {
        m_farm->Start(ScriptedTypes(Copying));
        const QString kept = Submit("kept"_s);
        const QString gone = Submit("gone"_s);
        for (const QString& id : {kept, gone})
            EVENTUALLY_COMPARE(m_farm->Status(id), JobStatus::Finished);
        QCOMPARE(Storage("used").toInt(), 13);
        QCOMPARE(Storage("pictures").toInt(), 14);
        QCOMPARE(Storage("jobs")[0]["files"_s].toInt(), 13);
        QVERIFY(!Storage("moreJobs").toBool());
        const auto oneJob = m_farm->Get("/account/storage?jobs=1"_s);
        QVERIFY(oneJob.Data("moreJobs").toBool() && oneJob.Data("jobs").toArray().size() == 1);
        QCOMPARE(m_farm->Apply("delete"_s, {gone}).status, 200);
        QCOMPARE(m_farm->Get("/jobs/%1/files"_s.arg(gone)).Data("list"), QJsonValue(QJsonArray()));
        QCOMPARE(m_farm->Get("/jobs/%1/files/frame_0001.txt"_s.arg(gone)).status, 404);
        EVENTUALLY_COMPARE(Storage("jobs").toArray().size(), 1);
        QCOMPARE(Folders(), QStringList {kept});
        QCOMPARE(m_farm->data.Count("SELECT count(*) FROM frame_logs"), 1);
        // The other job needs the contents.
        const auto free
            = [this] { return m_farm->Send("DELETE", "/account/storage"_s).Data("freed").toInt(); };
        QCOMPARE(free(), 0);
        const int entries = m_farm->data.Count("SELECT max(key) FROM audit");
        QCOMPARE(m_farm->Apply("delete"_s, {kept}).status, 200);
        QCOMPARE(Storage("unneeded").toInt(), 13);
        QCOMPARE(free(), 13);
        QCOMPARE(Storage("used").toInt(), 0);
        QCOMPARE(
            m_farm->Send("DELETE", "/uploads/"_s + m_farm->BeginUpload("other").Data("id").toString()).status,
            200);
        QStringList changes;
        ForEachAuditEntryAfter(m_farm->data.database, entries,
            [&](const AuditEntry& entry) { changes.append(entry.action + u' ' + entry.details); });
        QCOMPARE(changes.join(u';'), "job delete ;files free 13 bytes;upload delete 5 bytes"_s);
        EVENTUALLY_COMPARE(Folders(), QStringList());
        EVENTUALLY_COMPARE(m_farm->data.Count("SELECT count(*) FROM frames"), 0);
        // The job's record stays, and its files can be sent again.
        QCOMPARE(m_farm->Get("/jobs/"_s + kept).Data("jobDatas")["jobProgress"_s].toInt(), 100);
        QCOMPARE(m_farm->Known({Sha256("a leaf")}), QJsonArray());
        EVENTUALLY_COMPARE(m_farm->Status(Submit("again"_s)), JobStatus::Finished);
    }

    // Early versions of the farm did not mark the run that a job's folder belongs to.
    void AFolderWithoutAMarkKeepsItsPicturesAndLogs()
    {
        const QString id = m_farm->Add(2);
        m_farm->data.Change(
            "UPDATE frames SET finished_at = 7, file = 'frame_0001.txt', size = 5 WHERE number = 1");
        const QString folder = m_farm->Path("jobs/"_s + id);
        QVERIFY(QDir().mkpath(folder + "/logs"_s) && WriteFile(folder + "/frame_0001.txt"_s, "early")
            && WriteFile(folder + "/logs/frame_0001.txt"_s, "early log"));
        m_farm->Start();
        QCOMPARE(m_farm->Get("/jobs/%1/frames/1/full-log"_s.arg(id)).bytes, QByteArray("early log"));
        m_farm->Start(ScriptedTypes(Copying));
        EVENTUALLY_COMPARE(m_farm->Status(id), JobStatus::Finished);
        QCOMPARE(ReadFile(folder + "/frame_0001.txt"_s), QByteArray("early"));
        // The database keeps the end of a log whose file is gone.
        QVERIFY(QFile::remove(folder + "/logs/frame_0001.txt"_s));
        m_farm->data.Change("INSERT INTO frame_logs VALUES (1, 1, 'the end')");
        QCOMPARE(m_farm->Get("/jobs/%1/frames/1/full-log"_s.arg(id)).bytes, QByteArray("the end"));
    }

    void ARunningJobIsFreedOnceItsRendererIsGone()
    {
        m_farm->Start(ScriptedTypes("echo x > ../../begun; echo x > {output}; sleep 600"));
        const QString id = Submit("job"_s);
        EVENTUALLY(QFile::exists(m_farm->Path("jobs/begun"_s)));
        QCOMPARE(m_farm->Apply("delete"_s, {id}).status, 200);
        EVENTUALLY_COMPARE(Folders(), QStringList());
        EVENTUALLY_COMPARE(m_farm->data.Count("SELECT files FROM jobs"), 0);
    }

    // A farm that was killed in the middle goes on from any point.
    void FreesWhatIsMarked()
    {
        const QString folder = m_farm->Path("jobs"_s);
        JobFolders folders(m_farm->data.database, folder);
        const QString open = Prepared(JobStatus::Running);
        const QString paused = Prepared(JobStatus::Paused);
        const QString deleted = Prepared(JobStatus::Deleted);
        QVERIFY(QDir().mkpath(folder + "/.removed/of a round before"_s));
        const auto begin = [this](int job) {
            m_farm->data.Change(
                qPrintable("INSERT INTO runs(id, job, run, frame) VALUES (%1, %1, 1, 1)"_s.arg(job)));
        };
        begin(2);
        begin(3);
        QVERIFY(!folders.FreeDeleted(Always));
        QVERIFY(!folders.Tidy(Always));
        QCOMPARE(Folders().size(), 3);
        m_farm->data.Change("DELETE FROM runs");
        int files = 2;
        QVERIFY(!folders.FreeDeleted([&files] { return --files > 0; }));
        QCOMPARE(m_farm->data.Count("SELECT files FROM jobs WHERE status = 5"), 1);
        QVERIFY(folders.FreeDeleted(Always) && folders.Tidy(Always));
        QCOMPARE(m_farm->data.Count("SELECT files FROM jobs WHERE status = 5"), 0);
        QCOMPARE(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 2);
        QVERIFY(QFile::exists(folder + "/%1/runs/j1/half.png"_s.arg(open)));
        QVERIFY(QFile::exists(folder + "/%1/scene/maps"_s.arg(open)));
        QCOMPARE(QDir(folder + u'/' + paused).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
            QStringList {"frame_0001.png"_s});
        QVERIFY(!QFile::exists(folder + u'/' + deleted));
        // A run that began just before the deletion has made the folder again.
        QVERIFY(QDir().mkpath(folder + u'/' + deleted));
        begin(3);
        m_farm->data.Change("DELETE FROM runs");
        QVERIFY(folders.FreeDeleted(Always));
        QVERIFY(!QFile::exists(folder + u'/' + deleted));
    }

    // Else such a frame would be tried for ever, with the machine's place that it takes.
    void APictureThatCannotBeKeptIsTheFaultOfItsScene()
    {
        ContentStore contents(m_farm->data.database, m_farm->Path("contents"_s));
        const SceneFiles scenes(m_farm->data.database, contents, {});
        const FrameFiles files(m_farm->Path("jobs"_s), scenes);
        FrameTask task;
        task.jobId = "job"_s;
        task.key.number = 1;
        const QString folder = files.FilesOf(task.jobId, "run"_s).OutputFolder();
        const QByteArray picture = QFile::encodeName(folder + "/frame_0001.png"_s);
        QVERIFY(QDir().mkpath(folder) && WriteFile(QString::fromUtf8(picture), "a picture"));
        QVERIFY(::link(picture.constData(), QByteArray(picture + ".link").constData()) == 0);
        diskFree = 0;
        QVERIFY_EXCEPTION_THROWN(files.Keep(task, "png"_s, "run"_s), SceneError);
        diskFree = -1;
        // The system's administrator may read everything.
        if (::geteuid() != 0) {
            QVERIFY(::chmod(picture.constData(), 0200) == 0);
            QVERIFY_EXCEPTION_THROWN(files.Keep(task, "png"_s, "run"_s), SceneError);
            QVERIFY(::chmod(picture.constData(), 0600) == 0);
        }
        QCOMPARE(files.Keep(task, "png"_s, "run"_s).size, std::int64_t(9));
    }

    void UnremovableFilesKeepNothingElse()
    {
        const QString before = m_farm->Path("jobs/.removed/0"_s);
        QVERIFY(QDir().mkpath(before + "/folder"_s));
        for (const char* name : {"/a", "/folder/stuck", "/folder/z", "/z"})
            QVERIFY(WriteFile(before + QLatin1String(name), "x"));
        Prepared(JobStatus::Deleted);
        stuckFile = "stuck"_s;
        JobFolders folders(m_farm->data.database, m_farm->Path("jobs"_s));
        QVERIFY(folders.FreeDeleted(Always));
        QCOMPARE(m_farm->data.Count("SELECT files FROM jobs"), 0);
        QCOMPARE(QDir(before + "/folder"_s).entryList(QDir::Files), QStringList {"stuck"_s});
        QCOMPARE(QDir(before).entryList(QDir::Files), QStringList());
        QCOMPARE(QDir(m_farm->Path("jobs/.removed"_s)).count(), 3U); // with "." and ".."
        stuckFile.clear();
        QVERIFY(folders.FreeDeleted(Always));
        QVERIFY(!QFile::exists(m_farm->Path("jobs/.removed"_s)));
    }

    void ContentsGoSomeTimeAfterTheirLastUse()
    {
        FarmData& data = m_farm->data;
        const std::int64_t bob = data.Add("bob", "x");
        ContentStore contents(data.database, m_farm->Path("contents"_s));
        NewJob job = data.Job("job"_s);
        job.files = {{"scene.txt"_s, Send(contents, data.account, "needed", 100)}};
        const QString id = data.jobs.Add(job).id;
        const QString needed = job.files[0].checksum;
        const QString shared = Send(contents, data.account, "shared", 100);
        Send(contents, bob, "shared", 500);
        const QString asked = Send(contents, data.account, "asked for", 100);
        contents.Touch(data.account, {asked}, 4000);
        const auto known = [&](std::int64_t account) {
            QStringList names;
            const QStringList found = contents.KnownTo(account, {needed, shared, asked});
            for (const QString& checksum : found)
                names.append(checksum == needed ? "needed"_s : checksum == shared ? "shared"_s : "asked"_s);
            return names.join(u' ');
        };
        contents.ForgetUnneeded(99, 5000);
        QCOMPARE(known(data.account), "needed shared asked"_s);
        contents.ForgetUnneeded(100, 5000);
        QCOMPARE(known(data.account), "needed asked"_s);
        QCOMPARE(known(bob), "shared"_s);
        JobActions(data.database, data.feed, data.terms, [] {
        }).Apply(JobAction::Delete, data.account, {id}, 5000);
        contents.ForgetUnneeded(4999, 6000);
        QCOMPARE(known(data.account), "needed"_s);
        QCOMPARE(known(bob), QString());
        // One that arrives again at this moment stays.
        const auto taken = contents.Take({Unpacked(contents, "needed")});
        contents.ForgetUnneeded(5000, 6000);
        contents.Give(data.account, {Unpacked(contents, "needed")}, 7000);
        QCOMPARE(known(data.account), "needed"_s);
    }

    void TheQuotaIsNoObstacleForWhatCouldBeFreed()
    {
        m_farm->settings.quota = 100'000;
        m_farm->Start();
        QCOMPARE(m_farm->Deliver(Package({{"a", QByteArray(60'000, 'a')}})).status, 200);
        const QByteArray package = Package({{"b", QByteArray(60'000, 'b')}});
        QCOMPARE(m_farm->Deliver(package).status, 507);
        m_farm->data.Change("UPDATE contents SET used_at = used_at - 90000");
        const QString upload = m_farm->BeginUpload(package).Data("id").toString();
        QCOMPARE(m_farm->Unpack(upload).status, 200);
        // Deleting an upload frees its announced size.
        const QByteArray large(39'000, 'x');
        const QString unwanted = m_farm->BeginUpload(large).Data("id").toString();
        QCOMPARE(m_farm->BeginUpload(QByteArray(39'000, 'y')).status, 507);
        QCOMPARE(m_farm->Send("DELETE", "/uploads/"_s + unwanted).status, 200);
        QCOMPARE(m_farm->BeginUpload(QByteArray(39'000, 'y')).status, 200);
    }

    void BelowTheReserveNothingNewIsTaken()
    {
        m_farm->settings.diskReserve = Gibibyte;
        m_farm->settings.lookInterval = std::chrono::milliseconds(20);
        diskFree = 4 * Gibibyte;
        m_farm->Start(ScriptedTypes(Copying));
        const QString done = Submit("done"_s);
        EVENTUALLY_COMPARE(m_farm->Status(done), JobStatus::Finished);
        const QByteArray package = Package({{"more.txt", "more"}});
        const QString upload = m_farm->BeginUpload(package).Data("id").toString();
        diskFree = Gibibyte - 1;
        QCOMPARE(m_farm->Put(upload, 0, package).Error(), "disk_full"_s);
        QCOMPARE(m_farm->BeginUpload("other").Error(), "disk_full"_s);
        QCOMPARE(m_farm->Post("/jobs"_s, SubmissionOf(PlainFiles, "next"_s)).Error(), "disk_full"_s);
        const QString waiting = m_farm->Add(1);
        QVERIFY(!m_farm->SignIn("ann", "secret").isEmpty());
        QCOMPARE(m_farm->Get("/jobs/%1/files/frame_0001.txt"_s.arg(done)).status, 200);
        QCOMPARE(m_farm->Apply("delete"_s, {done}).status, 200);
        EVENTUALLY(!Folders().contains(done));
        QCOMPARE(m_farm->Job(waiting).progress, 0);
        diskFree = -1;
        m_farm->settings.diskReserve = 0;
        m_farm->Start(ScriptedTypes(Copying));
        EVENTUALLY_COMPARE(m_farm->Status(waiting), JobStatus::Finished);
        QCOMPARE(m_farm->Put(upload, 0, package).status, 200);
    }

    // The older database takes the role of one from a backup, which does not know the newer files.
    void StopsAtADatabaseThatDoesNotBelongToTheFiles()
    {
        m_farm->Start();
        m_farm->Deliver(Package(PlainFiles));
        m_farm->End();
        const QString content
            = m_farm->Path("contents/%1/%2"_s.arg(Sha256("a leaf").left(2), Sha256("a leaf")));
        const auto refuses = [this](const char* why) {
            try {
                m_farm->Start();
                return false;
            } catch (const std::runtime_error& error) {
                return QByteArray(error.what()).contains(why);
            }
        };
        m_farm->data.Change("UPDATE data_mark SET number = number - 1");
        QVERIFY(refuses("farm.sqlite is older"));
        m_farm->data.Change("UPDATE data_mark SET number = number + 1, farm = 'x' || farm");
        QVERIFY(refuses("is not that of"));
        m_farm->data.Change("DELETE FROM data_mark");
        QVERIFY(refuses("is not that of"));
        QVERIFY(QFile::exists(content));
        const QString database = m_farm->Path("farm.sqlite"_s);
        QVERIFY(QFile::rename(database, database + ".away"_s));
        QVERIFY(refuses("farm.sqlite is missing"));
        QVERIFY(!QFile::exists(database) && QFile::exists(content));
        QVERIFY(QFile::rename(database + ".away"_s, database));
        m_farm->settings.acceptDatabase = true;
        m_farm->Start();
        m_farm->settings.acceptDatabase = false;
        m_farm->Start();
        QCOMPARE(m_farm->Known({Sha256("a leaf")}).size(), 1);
        // A folder that was made for a backup has no mark.
        m_farm->End();
        QVERIFY(QFile::remove(m_farm->Path("data.mark"_s)));
        m_farm->Start();
        // An old database that is refused is not brought up to date.
        const QTemporaryDir other;
        storage::Migrations old = Schema();
        old.resize(3);
        Database oldDatabase(other.filePath("farm.sqlite"_s), old);
        WriteFile(other.filePath("data.mark"_s), "other 7");
        m_farm->settings.dataFolder = other.path();
        QVERIFY(refuses("is not that of"));
        oldDatabase.Read([](SQLite::Database& connection) {
            QCOMPARE(connection.execAndGet("PRAGMA user_version").getInt(), 3);
        });
    }

private:
    QString Submit(const QString& name)
    {
        m_farm->Deliver(Package(PlainFiles));
        return m_farm->Post("/jobs"_s, SubmissionOf(PlainFiles, name)).Data("job_id").toString();
    }

    QJsonValue Storage(const char* key) { return m_farm->Get("/account/storage"_s).Data(key); }

    QStringList Folders() const
    {
        return QDir(m_farm->Path("jobs"_s)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    }

    /// A job whose folder holds a frame and something that a renderer has left.
    QString Prepared(JobStatus status)
    {
        const QString id = m_farm->Add(1, status);
        const QString folder = m_farm->Path("jobs/"_s + id);
        m_farm->data.Change("UPDATE jobs SET files = 2");
        QDir().mkpath(folder + "/runs/j1"_s);
        QDir().mkpath(folder + "/scene/maps"_s);
        WriteFile(folder + "/runs/j1/half.png"_s, "half");
        WriteFile(folder + "/frame_0001.png"_s, "whole");
        return id;
    }

    static UnpackedFile Unpacked(ContentStore& contents, const QByteArray& bytes)
    {
        UnpackedFile file;
        file.size = bytes.size();
        file.checksum = Sha256(bytes);
        file.file = contents.NewIncomingFolder() + "/0"_s;
        WriteFile(file.file, bytes);
        return file;
    }

    static QString Send(
        ContentStore& contents, std::int64_t account, const QByteArray& bytes, std::int64_t now)
    {
        const UnpackedFile file = Unpacked(contents, bytes);
        const auto taken = contents.Take({file});
        contents.Give(account, {file}, now);
        return file.checksum;
    }

    std::unique_ptr<FarmAtWork> m_farm;
};

QTEST_GUILESS_MAIN(FilesTest)
#include "tst_farm_files.moc"
