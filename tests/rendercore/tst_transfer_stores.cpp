// The data that a killed client finds at its next start.
#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/download_store.h"
#include "host/rendercore/file_hashing.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_records.h"
#include "host/rendercore/submit/submit_schema.h"
#include "host/rendercore/submit/submit_text.h"
#include "tests/support/disk_calls.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

namespace {

const QString Ann = "farm/ann"_s;
const QString Bob = "farm/bob"_s;
constexpr const char* FirstSubmitSchema = R"sql(
CREATE TABLE tasks(number INTEGER PRIMARY KEY AUTOINCREMENT, owner TEXT NOT NULL, scene TEXT NOT NULL,
    started TEXT NOT NULL, submission TEXT NOT NULL, stage INTEGER NOT NULL DEFAULT 0, error INTEGER NOT NULL DEFAULT 0,
    message TEXT NOT NULL DEFAULT '', arguments TEXT NOT NULL DEFAULT '[]', goes_on_without INTEGER NOT NULL DEFAULT 0,
    arguments_checked INTEGER NOT NULL DEFAULT 0, refused TEXT NOT NULL DEFAULT '[]', done INTEGER NOT NULL DEFAULT 0,
    work TEXT NOT NULL DEFAULT '{}');
INSERT INTO tasks(owner, scene, started, submission, arguments) VALUES('farm/ann', '/a.pov', 't', 's', '[]');
INSERT INTO tasks(owner, scene, started, submission, arguments) VALUES('farm/ann', '/b.pov', 't', 's', '[{"width":"9"}]');
)sql";

FarmFile File(const char* name, char checksum = 'a', qint64 size = 10)
{
    return {QString::fromLatin1(name), size, QString(64, QLatin1Char(checksum))};
}

/// Everything that is stored of a submission.
QStringList Stored(const SubmitTask& task)
{
    QStringList values {
        task.id, task.scene, task.started, task.submission, task.message.Text(), task.work.scene};
    const int numbers[] = {int(task.stage), int(task.error), task.isDone, task.goesOnWithout,
        task.areArgumentsChecked, task.areArgumentsEdited, task.work.width, task.work.height};
    for (const int number : numbers)
        values.append(QString::number(number));
    values.append(QString::fromUtf8(QJsonDocument(QJsonArray::fromVariantList(task.arguments)).toJson()));
    for (const PackedFile& file : task.work.files)
        values += {file.path, file.source, file.checksum, QString::number(file.package)};
    for (const Package& package : task.work.packages)
        values += {package.checksum, QString::number(package.size)};
    return values + task.refused + TaskMessage::Texts(task.work.missing);
}

/// A kind of order, whether the farm lists the file as before, and the results for waiting, finished, failed and stopped
/// tasks: new, resumed, doubtful or untouched.
const std::tuple<const char*, DownloadOrder::Kind, bool, const char*> ReconcileCases[] = {
    {"automatic, same", DownloadOrder::Automatic, true, "----"},
    {"automatic, changed", DownloadOrder::Automatic, false, "n---"},
    {"manual, same", DownloadOrder::Manual, true, "-drr"},
    {"manual, changed", DownloadOrder::Manual, false, "nnnn"},
    {"renewal, changed", DownloadOrder::Renewal, false, "n---"},
};

/// The window's name for the folder, the farm's name for the file, and the path; empty when the name is shortened.
const std::tuple<const char*, QString, QString, QString> NameCases[] = {
    {"harmless", "12_shot"_s, "frame 1.png"_s, "12_shot/frame 1.png"_s},
    {"climbing", ".."_s, "../../.bashrc"_s, "%2E%2E/%2E.%2F..%2F.bashrc"_s},
    {"empty and hidden", {}, ".part"_s, "_/%2Epart"_s},
    {"absolute", "/etc"_s, "a\\b\nc"_s, "%2Fetc/a%5Cb%0Ac"_s},
    {"long", "s"_s, "\xc3\xa4"_s.repeated(200) + ".png"_s, {}},
    {"long and beyond the plane", "s"_s, "\xf0\x9f\x8c\x84"_s.repeated(80), {}},
    {"with a long suffix", "s"_s, "a."_s + "\xc3\xa4"_s.repeated(200), {}},
};

} // namespace

class TransferStoresTest : public QObject
{
    Q_OBJECT

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }
    DownloadStore Downloads() const { return DownloadStore(Path("downloads.sqlite"_s)); }
    SubmitStore Submissions() const { return SubmitStore(Path("submissions.sqlite"_s)); }

    OrderOutcome Apply(DownloadOrder::Kind kind, const FarmFiles& files, const QString& owner = Ann) const
    {
        return Downloads().Apply(owner, {"j1"_s, "shot"_s, kind, 0}, files, Path("frames"_s));
    }

    /// The open orders as "job kind" each.
    QString Orders(int limit = 9, const QString& owner = Ann) const
    {
        QStringList orders;
        const auto open = Downloads().OpenOrders(owner, limit);
        for (const DownloadOrder& order : open)
            orders.append(order.job + QString::number(order.kind));
        return orders.join(QLatin1Char(' '));
    }

    std::unique_ptr<QTemporaryDir> m_folder;

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void SubmissionsSurvive()
    {
        SubmitTask task = Submissions().Add(Ann, "/x/a.b.pov"_s);
        QCOMPARE(task.id, "a.b.1"_s);
        task.stage = SubmitStage::Upload;
        task.error = SubmitError::UploadRefused;
        task.message = "why"_s;
        task.arguments = MakeArguments(1, 9, 640, 480);
        task.refused = QStringList {"/a"_s};
        task.work = {"p"_s, {{"p"_s, "s"_s, "c"_s, 0, false}}, {{"d"_s, 1LL << 40, false, {}}},
            {TaskMessage(SubmitText::Outside, {"m"_s})}, 32, 16};
        for (const bool isEven : {true, false}) {
            task.isDone = task.areArgumentsChecked = isEven;
            task.goesOnWithout = task.areArgumentsEdited = !isEven;
            SubmitTask changed = task;
            changed.work = {}; // is not saved
            TakeDiskCalls();
            isEven ? Submissions().SaveWork(task) : Submissions().Save(changed);
            QVERIFY(TakeDiskCalls().contains("sync submissions.sqlite-wal"_s));
            QCOMPARE(Stored(Submissions().Load(Ann).value(0)), Stored(task));
        }
    }

    void ChangesThatCannotBeWrittenAreKept()
    {
        TaskMessage error;
        storage::Database database(Path("submissions.sqlite"_s), SubmitSchema());
        const auto run = [&database](const char* sql) {
            database.Write([sql](SQLite::Database& connection) { connection.exec(sql); });
        };
        {
            WriteFile(Path("a.pov"_s), {});
            SubmitRecords records(m_folder->path());
            SubmitTask task = records.Add(Ann, Path("a.pov"_s), 0, &error).value();
            const SubmitTask gone = records.Add(Ann, Path("a.pov"_s), 0, &error).value();
            QVERIFY(!records.Add(Ann, Path("b.pov"_s), 0, &error) && !error.IsEmpty());
            task.error = SubmitError::Stopped;
            records.Save({task}, false);
            QCOMPARE(Submissions().Load(Ann).at(0).error, SubmitError::Stopped); // at once
            records.Remove({records.Add(Ann, Path("a.pov"_s), 0, &error).value().number});
            QCOMPARE(Submissions().Load(Ann).size(), 2);
            run("ALTER TABLE tasks RENAME TO away");
            task.error = SubmitError::GivenUp;
            records.Save({task}, false);
            records.Remove({gone.number});
            QVERIFY(!records.Load(Ann));
            run("ALTER TABLE away RENAME TO tasks");
        }
        QCOMPARE(Submissions().Load(Ann).size(), 1);
        QCOMPARE(Submissions().Load(Ann).at(0).error, SubmitError::GivenUp);
    }

    void HashesFilesWhileTransfersGoOn()
    {
        QFile part(Path("part"_s));
        QVERIFY(part.open(QIODevice::ReadWrite) && part.resize(50'000'000));
        FileHashing hashing(&part);
        QSignalSpy finished(&hashing, &FileHashing::Finished);
        QTimer others;
        QSignalSpy turns(&others, &QTimer::timeout);
        others.start(0);
        QVERIFY(finished.wait(Patience) && turns.count() > 1 && hashing.IsComplete());
        QCOMPARE(hashing.Checksum(), storage::FileChecksum(part.fileName()));
        QFile endless("/dev/zero"_s);
        QVERIFY(endless.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        const FileHashing abandoned(&endless); // or its end would wait for ever
    }

    void EachOwnerHasTasksOfTheirOwn()
    {
        SubmitStore store = Submissions();
        SubmitTask task = store.Add(Ann, "/a.pov"_s);
        SubmitTask other = store.Add(Bob, "/a.pov"_s);
        const qint64 third = store.Add(Ann, "/a.pov"_s).number;
        QVERIFY(task.submission != other.submission);
        QCOMPARE(store.Numbers(), QSet<qint64>({task.number, other.number, third}));
        task.message = other.message = {SubmitText::Submitted, {"7"_s}};
        store.SaveAll({&task, &other});
        QCOMPARE(store.Load(Ann).size(), 2);
        QCOMPARE(store.Load(Ann).constLast().number, third);
        QVERIFY(store.Load(Ann).constFirst().message == task.message);
        QVERIFY(store.Load(Bob).constFirst().message == task.message);
        store.Remove({task.number, third});
        store.Save(task);
        QVERIFY(store.Load(Ann).isEmpty() && store.Load(Bob).size() == 1);
        QCOMPARE(store.Add(Ann, "/a.pov"_s).id, "a.4"_s); // numbers are never reused
    }

    void SubmissionsOfAnEarlierVersionSurvive()
    {
        {
            const storage::Database earlier(Path("submissions.sqlite"_s), {FirstSubmitSchema});
        }
        const QVector<SubmitTask> tasks = Submissions().Load(Ann);
        QCOMPARE(tasks.size(), 2);
        QVERIFY(!tasks.at(0).areArgumentsEdited && tasks.at(1).areArgumentsEdited);
    }

    void OrdersSurvive()
    {
        DownloadStore store = Downloads();
        const auto order = [&](const char* jobs, DownloadOrder::Kind kind, const QString& owner = Ann) {
            DownloadOrders orders;
            const QStringList given = QString::fromLatin1(jobs).split(QLatin1Char(' '));
            for (const QString& job : given)
                orders.append({job, "shot"_s, kind, 0});
            return store.AddOrders(owner, orders) ? Orders(9, owner) : "known"_s;
        };
        TakeDiskCalls();
        QCOMPARE(order("b", DownloadOrder::Automatic), "b0"_s);
        QVERIFY(TakeDiskCalls().contains("sync downloads.sqlite-wal"_s));
        QCOMPARE(order("b", DownloadOrder::Automatic), "known"_s);
        QCOMPARE(order("b", DownloadOrder::Automatic, Bob), "b0"_s);
        QCOMPARE(order("a", DownloadOrder::Manual), "b0 a1"_s);
        QCOMPARE(Orders(1), "b0"_s);
        QCOMPARE(order("b", DownloadOrder::Manual), "a1 b1"_s);
        store.PostponeOrder(Ann, "a"_s);
        QCOMPARE(Orders(), "b1 a1"_s);

        const DownloadOrder stale = store.OpenOrders(Ann, 1).constFirst();
        order("b", DownloadOrder::Manual); // once more, while it is being answered
        store.CloseOrder(Ann, stale);
        QCOMPARE(Orders(), "a1 b1"_s);
        const auto open = store.OpenOrders(Ann, 9);
        for (const DownloadOrder& one : open)
            store.CloseOrder(Ann, one);
        QCOMPARE(Orders(), QString());
        QCOMPARE(order("a", DownloadOrder::Automatic), "a0"_s); // the manual order brought nothing
        store.ReopenOrder(Ann, "a"_s);
        QCOMPARE(Orders(), "a0"_s); // it was open
        store.CloseOrder(Ann, store.OpenOrders(Ann, 1).constFirst());
        store.ReopenOrder(Ann, "a"_s);
        QCOMPARE(Orders() + Orders(9, Bob), "a2b0"_s);
        // A renewal brings no new files, so an automatic order takes its place.
        QCOMPARE(order("a c d", DownloadOrder::Automatic), "a0 c0 d0"_s);
    }

    void AppliesLists_data() { AddRows(ReconcileCases); }

    void AppliesLists()
    {
        const auto& [name, kind, isSame, results] = Row(ReconcileCases);
        const DownloadState states[] = {
            DownloadState::Waiting, DownloadState::Finished, DownloadState::Failed, DownloadState::Stopped};
        for (int index = 0; index < 4; ++index) {
            init();
            DownloadTasks tasks = Apply(DownloadOrder::Automatic, {File("f.png")}).added;
            QCOMPARE(tasks.size(), 1);
            tasks[0].state = states[index];
            tasks[0].progress = 50;
            tasks[0].message = "why"_s;
            Downloads().Save(tasks);
            const OrderOutcome outcome = Apply(kind, {File("f.png", isSame ? 'a' : 'b'), File("new.png")});
            const char result = results[index];
            QCOMPARE(QList<int>({outcome.renewed.size(), outcome.resumed.size(), outcome.doubtful.size(),
                         outcome.added.size()}),
                QList<int>({result == 'n', result == 'r', result == 'd', kind != DownloadOrder::Renewal}));
            QCOMPARE(outcome.names, QStringList({"f.png"_s, "new.png"_s}));
            const DownloadTask task = *Downloads().Find(Ann, tasks[0].id);
            const bool isWaiting = result == 'n' || result == 'r';
            QCOMPARE(task.state, isWaiting ? DownloadState::Waiting : states[index]);
            QCOMPARE(task.message.IsEmpty(), isWaiting);
            QCOMPARE(task.progress, result == 'n' ? 0 : 50);
            QCOMPARE(task.checksum.at(0), QLatin1Char(result == 'n' ? 'b' : 'a'));
            QCOMPARE(task.fresh, result == 'n' && states[index] == DownloadState::Finished);
            const auto reports = outcome.renewed + outcome.resumed;
            for (const DownloadTask& reported : reports)
                QVERIFY(reported.state == task.state && reported.fresh == task.fresh
                    && reported.message.IsEmpty());
        }
    }

    void GivesEachFileAPlaceOfItsOwn()
    {
        QDir().mkpath(Path("frames/shot"_s));
        QVERIFY(WriteFile(Path("frames/shot/a.png"_s), "of another size"));
        QVERIFY(WriteFile(Path("frames/shot/b.png"_s), "equal size"));
        QVERIFY(QFile::link(Path("nowhere"_s), Path("frames/shot/c.png"_s)));
        DownloadTasks tasks
            = Apply(DownloadOrder::Automatic, {File("a.png"), File("b.png"), File("c.png")}).added;
        tasks += Apply(DownloadOrder::Automatic, {File("a.png")}, Bob).added;
        const QStringList names {"a.png"_s, "b.png"_s, "c.png"_s, "a (2).png"_s};
        const QStringList others {"a (3).png"_s, "b (2).png"_s, "c (2).png"_s, "a (4).png"_s};
        for (int index = 0; index < names.size(); ++index) {
            DownloadTask task = tasks.value(index);
            QCOMPARE(task.file, QString(Path("frames/shot/"_s) + names.at(index)));
            QVERIFY(WriteFile(Path("frames/shot/a (2).png"_s), "in the way"));
            QVERIFY(Downloads().Rename(&task));
            QCOMPARE(task.file, QString(Path("frames/shot/"_s) + others.at(index)));
            QCOMPARE(Downloads().Find(index < 3 ? Ann : Bob, task.id)->file, task.file);
        }
        // The unfinished ones follow the folder.
        const MovedTasks moved = Downloads().MoveUnfinished(Ann, Path("new"_s), tasks.at(0).id, 1);
        QCOMPARE(moved.size(), 1);
        QCOMPARE(moved.constFirst().before, Path("frames/shot/b (2).png"_s));
        QCOMPARE(Downloads().Find(Ann, tasks.at(1).id)->file, Path("new/shot/b.png"_s));
        QVERIFY(Downloads().MoveUnfinished(Ann, Path("new"_s), tasks.at(2).id, 9).isEmpty());
    }

    void RemovedTasksComeBackByCommandOnly()
    {
        const FarmFiles files {File("a.png"), File("b.png"), File("c.png"), File("new.png")};
        DownloadTasks tasks = Apply(DownloadOrder::Automatic, files.mid(0, 3)).added;
        tasks[0].state = tasks[1].state = DownloadState::Finished;
        DownloadStore store = Downloads();
        store.Save(tasks);
        const qint64 now = QDateTime::currentSecsSinceEpoch();
        QVERIFY(store.RemoveFinished(Ann, now - 60, 9).isEmpty());
        QVERIFY(store.HasWaiting(Ann, "j1"_s));
        store.Remove(Ann, {tasks.at(2).id});
        QVERIFY(!store.HasWaiting(Ann, "j1"_s));
        QCOMPARE(store.RemoveFinished(Ann, now + 60, 1), TaskIds {tasks.at(0).id});
        QCOMPARE(store.RemoveFinished(Ann, now + 60, 9), TaskIds {tasks.at(1).id});
        QCOMPARE(Apply(DownloadOrder::Automatic, files).added.value(0).name, "new.png"_s);
        QCOMPARE(Apply(DownloadOrder::Manual, files).added.size(), 3);
    }

    void FindsTasksOfTheirOwner()
    {
        DownloadTasks tasks
            = Apply(DownloadOrder::Automatic, {File("c.png"), File("a.png"), File("b.png", 'b', 0)}).added;
        const qint64 theirs = Apply(DownloadOrder::Automatic, {File("a.png")}, Bob).added.constFirst().id;
        DownloadStore store = Downloads();
        QCOMPARE(store.TasksAfter(Ann, 0, 2).size(), 2);
        QCOMPARE(store.TasksAfter(Ann, tasks.at(0).id, 9).constFirst().name, "a.png"_s);
        QVERIFY(!store.Find(Ann, theirs));
        tasks[1].state = DownloadState::Stopped;
        store.Save(tasks);
        QCOMPARE(store.NextWaiting(Ann, tasks.at(0).id)->id, tasks.at(2).id);
        QVERIFY(!store.NextWaiting(Ann, tasks.at(2).id));

        const auto fail = [](DownloadTask& task) {
            task.state = DownloadState::Failed;
            return task.name != "a.png"_s;
        };
        TakeDiskCalls();
        QCOMPARE(store.Change(Ann, {theirs, tasks.at(2).id, tasks.at(1).id, 77}, fail).size(), 1);
        QVERIFY(TakeDiskCalls().contains("sync downloads.sqlite-wal"_s));
        QCOMPARE(store.Find(Ann, tasks.at(1).id)->state, DownloadState::Stopped);
        QCOMPARE(store.Find(Ann, tasks.at(2).id)->state, DownloadState::Failed);
        QCOMPARE(store.Remove(Ann, {tasks.at(2).id, theirs, 77, tasks.at(0).id}).size(), 2);
        QVERIFY(store.Find(Bob, theirs));
        QVERIFY(!store.Find(Ann, tasks.at(0).id));
        const OrderOutcome again = Apply(DownloadOrder::Manual, {File("c.png"), File("c.png", 'b')});
        QVERIFY(again.added.constFirst().id > theirs);          // ids are never reused
        QCOMPARE(again.added.size() + again.renewed.size(), 2); // the same name twice is one task
    }

    void KeepsHostileNamesInTheFolder_data() { AddRows(NameCases); }

    void KeepsHostileNamesInTheFolder()
    {
        const auto& [name, folder, remote, path] = Row(NameCases);
        const QString file = DownloadPaths::Destination("/srv"_s, folder, remote);
        QVERIFY2(path.isEmpty() || file == "/srv/"_s + path, qPrintable(file));
        QCOMPARE(QDir::cleanPath(file), file);
        QCOMPARE(file.count(QLatin1Char('/')), 3);
        QCOMPARE(QString::fromUtf8(file.toUtf8()), file); // no split surrogate pair
        QVERIFY(QFileInfo(DownloadPaths::PartFile(file)).fileName().toUtf8().size() < 255);
        const QString second = DownloadPaths::Destination("/srv"_s, folder, remote, 2);
        QVERIFY(second != file);
        QCOMPARE(second.endsWith(".png"_s), remote.endsWith(".png"_s));
        const QString longer = DownloadPaths::Destination("/srv"_s, folder, remote + ".png"_s);
        QCOMPARE(longer == file + ".png"_s, !path.isEmpty()); // long names stay distinct
    }
};

QTEST_GUILESS_MAIN(TransferStoresTest)
#include "tst_transfer_stores.moc"
