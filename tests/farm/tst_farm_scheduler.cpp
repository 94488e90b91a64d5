#include "farm/base/local_time.h"
#include "farm/jobs/job_actions.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/frames_in_work.h"
#include "farm/rendering/hindrances.h"
#include "farm/rendering/render_queue.h"
#include "farm/rendering/scene_files.h"
#include "farm/rendering/scheduler.h"
#include "farm/uploads/content_store.h"
#include "tests/farm/farm_fixture.h"
#include "tests/support/disk_calls.h"

#include <QTimer>

using namespace farm;

namespace {

/// Holds runs until the test ends them.
class StandInExecutor : public Executor
{
public:
    int Capacity() const override { return capacity; }
    void SetCapacity(int runs) override { capacity = runs; }
    Availability Has(const JobType&) override
    {
        return hindrance.isEmpty() ? Availability::Present : Availability::Missing;
    }
    QString HindranceOf(const JobType&) const override
    {
        ++looks;
        return hindrance;
    }
    void Start(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            Hold(run.id, run.order.files);
    }
    void Cancel(const RunId& run) override { cancelled.append(run); }
    void Attach(const std::vector<RecordedRun>& runs) override
    {
        for (const RecordedRun& run : runs)
            Hold(run.id, run.files);
    }
    void Stop() override { }

    void Hold(const RunId& run, const RunFiles& place)
    {
        held.append(run);
        files = place;
    }
    void End(const RunResult& result) { emit Ended(held.takeFirst(), result); }

    int capacity = 1;
    mutable int looks = 0; ///< at the jobs, by the scheduler
    QString hindrance;
    QStringList held;
    QStringList cancelled;
    RunFiles files; ///< the files of the last run that it holds
};

// The scheduler acts within this many looks at the jobs, or not at all.
constexpr int MostLooks = 5;

/// Does something when a run is prepared, just before the executor gets it.
class BeforeStart : public QObject
{
public:
    explicit BeforeStart(std::function<void()> work)
        : m_work(std::move(work))
    {
        qApp->installEventFilter(this);
    }
    bool IsDone() const { return !m_work; }

private:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        const auto* const timer = qobject_cast<QTimer*>(object);
        if (m_work && event->type() == QEvent::Timer && timer && timer->isSingleShot()
            && timer->interval() == 0)
            std::exchange(m_work, nullptr)();
        return false;
    }

    std::function<void()> m_work;
};

// The ends of the runs of a job with one frame, one after another, the first perhaps of a run that an earlier farm has
// begun, and the job afterwards: its status, how often the frame was charged and failed, and its message after the
// first end.
struct Fate
{
    const char* name;
    const char* ends;
    JobStatus status;
    int charges;
    int failures;
    const char* message;
};
const Fate Fates[] = {
    {"done", "done", JobStatus::Finished, 1, 0, ""},
    {"done while no farm ran", "attached done", JobStatus::Finished, 1, 0, ""},
    {"kept but not recorded by the earlier farm", "attached kept", JobStatus::Finished, 1, 0, ""},
    {"done, but its picture was lost with the machine", "attached empty done", JobStatus::Finished, 1, 0, ""},
    {"done without a picture", "empty done", JobStatus::Finished, 1, 1, ""},
    {"machine lost while no farm ran", "attached lost done", JobStatus::Finished, 1, 0, ""},
    {"ended by others", "lost preempted preempted cancelled done", JobStatus::Finished, 1, 0, ""},
    {"refused by the cluster", "refused refused refused refused done", JobStatus::Finished, 1, 0,
        "Frame 1 waits: the cluster has no such partition."},
    {"cancelled by somebody else", "cancelled cancelled cancelled cancelled done", JobStatus::Finished, 1, 0,
        "Frame 1 waits: the cluster has no such partition."},
    {"failed at every attempt", "failed failed failed", JobStatus::Failed, 0, 3, ""},
    {"done while the disk failed", "broken-disk done", JobStatus::Finished, 1, 0, ""},
    {"kept while the disk failed", "broken-folder done", JobStatus::Finished, 1, 0, ""},
    {"done while the database failed", "broken-database done", JobStatus::Finished, 1, 0, ""},
    {"failed while the database failed", "broken-database failed failed failed", JobStatus::Failed, 0, 3, ""},
    {"failed on a full disk", "broken-full failed done", JobStatus::Finished, 1, 0,
        "Frame 1 waits: the disk is full."},
    {"without a picture on a full disk", "broken-full empty done", JobStatus::Finished, 1, 0,
        "Frame 1 waits: the disk is full."},
    {"filled the disk itself", "filling filling filling", JobStatus::Failed, 0, 3, ""},
    {"its folder was lost", "gone done", JobStatus::Finished, 1, 0,
        "Frame 1 waits: the folder of the frame cannot be read."},
    {"stopped", "stop cancelled", JobStatus::Paused, 0, 0, ""},
    {"stopped when it was done", "stop done", JobStatus::Paused, 1, 0, ""},
};

QMap<QString, RunEnd> Words()
{
    return QMap<QString, RunEnd> {{"done"_s, RunEnd::Done}, {"kept"_s, RunEnd::Done},
        {"empty"_s, RunEnd::Done}, {"gone"_s, RunEnd::Done}, {"lost"_s, RunEnd::MachineLost},
        {"preempted"_s, RunEnd::Preempted}, {"refused"_s, RunEnd::FarmFault},
        {"cancelled"_s, RunEnd::Cancelled}, {"failed"_s, RunEnd::SceneFault},
        {"filling"_s, RunEnd::SceneFault}};
}

} // namespace

class SchedulerTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_data = std::make_unique<FarmData>(m_folder->path());
        fullFile.clear();
        diskFiller.clear();
        fullError = 0;
        WriteFile(Path("scene.txt"_s), "the farm's scene");
        m_id = m_data->jobs.Add(m_data->Job("job"_s)).id;
    }

    void RecordsHowRunsEnd_data() { AddRows(Fates); }
    void RecordsHowRunsEnd()
    {
        const Fate& fate = Row(Fates);
        QStringList ends = QString::fromLatin1(fate.ends).split(u' ');
        if (ends.first() == "attached"_s)
            m_data->Change("INSERT INTO runs(id, job, run, frame) VALUES ('j1-r1-f1-x', 1, 1, 1)");
        AtWork work(*this);
        if (ends.removeAll("attached"_s) > 0)
            QCOMPARE(work.executor.held, QStringList {"j1-r1-f1-x"_s});
        const bool isStopped = ends.removeAll("stop"_s) > 0;
        const QString fault = ends.first().startsWith("broken"_s) ? ends.takeFirst() : QString();
        for (int at = 0; at < ends.size(); ++at) {
            EVENTUALLY_COMPARE(work.executor.held.size(), 1);
            if (isStopped) {
                work.Apply(JobAction::Stop, m_id);
                QCOMPARE(work.executor.cancelled, work.executor.held);
            }
            Leave(ends.at(at), work.executor.files);
            if (at == 0)
                Break(fault);
            work.executor.looks = 0;
            RunResult result {
                Words().value(ends.at(at)), "the cluster has no such partition"_s, {}, 1234, "n1"_s};
            work.executor.End(result);
            if (at == 0 && !fault.isEmpty()) {
                EVENTUALLY(work.executor.looks > MostLooks || !work.executor.held.isEmpty());
                QCOMPARE(m_data->Count("SELECT count(*) FROM charges"), 0);
                Break({});
            }
            EVENTUALLY(RunCount() == 0 || !work.executor.held.isEmpty());
            if (at == 0 && *fate.message != '\0')
                QCOMPARE(m_data->Only().message, QLatin1String(fate.message));
        }
        EVENTUALLY_COMPARE(JobStatus(m_data->Only().status), fate.status);
        EVENTUALLY(QDir(Path("jobs/%1/runs"_s.arg(m_id))).isEmpty() && RunCount() == 0);
        QCOMPARE(m_data->Count("SELECT count(*) FROM charges WHERE core_milliseconds = 1234"), fate.charges);
        QCOMPARE(m_data->Count("SELECT failures FROM frames"), fate.failures);
        QCOMPARE(m_data->Only().message.isEmpty(), fate.failures < 3);
        QVERIFY(work.executor.held.isEmpty());
    }

    void NodesWhoseClocksAreAheadBeginNoFrameInTheFuture()
    {
        AtWork work(*this);
        EVENTUALLY_COMPARE(work.executor.held.size(), 1);
        emit work.executor.Started(work.executor.held.constFirst(), "n1"_s, Now() + 3600);
        const FrameInWork frame = work.inWork.OfJob(1)[1];
        QVERIFY(frame.since <= Now());
        QCOMPARE(frame.Seconds(frame.since - 60), std::int64_t(0));
    }

    void AStopTakesEffectWhileARunIsBeingStarted()
    {
        AtWork work(*this);
        const BeforeStart stop([&] { work.Apply(JobAction::Stop, m_id); });
        EVENTUALLY(stop.IsDone() && RunCount() == 0);
        QCOMPARE(work.executor.held, QStringList());
        QCOMPARE(JobStatus(m_data->Only().status), JobStatus::Paused);
    }

    void ALateEndLeavesThePictureOfTheNextRun()
    {
        AtWork work(*this);
        work.executor.capacity = 2;
        EVENTUALLY_COMPARE(work.executor.held.size(), 1);
        const RunFiles late = work.executor.files;
        work.Apply(JobAction::Restart, m_id);
        EVENTUALLY_COMPARE(work.executor.held.size(), 2);
        Leave("done"_s, work.executor.files);
        RunResult done;
        done.end = RunEnd::Done;
        work.executor.held.move(1, 0);
        work.executor.End(done);
        EVENTUALLY_COMPARE(JobStatus(m_data->Only().status), JobStatus::Finished);
        Leave("done"_s, late);
        WriteFile(late.Log(), "too late");
        WriteFile(late.OutputFolder() + "/frame_0001.txt"_s, "too late");
        work.executor.End(done);
        EVENTUALLY(RunCount() == 0 && QDir(Path("jobs/%1/runs"_s.arg(m_id))).isEmpty());
        QCOMPARE(ReadFile(Path("jobs/%1/frame_0001.txt"_s.arg(m_id))), QByteArray("a picture"));
        QCOMPARE(ReadFile(Path("jobs/%1/logs/frame_0001.txt"_s.arg(m_id))), QByteArray("drawing"));
    }

    void ARunBeginsWithoutThePicturesOfEarlierOnes()
    {
        const QString folder = Path("jobs/"_s + m_id);
        QVERIFY(QDir().mkpath(folder) && WriteFile(folder + "/frame_0001.txt"_s, "a picture")
            && WriteFile(folder + "/run"_s, "1"));
        m_data->Change("UPDATE jobs SET run = 2");
        AtWork work(*this);
        EVENTUALLY_COMPARE(work.executor.held.size(), 1);
        QVERIFY(!QFile::exists(folder + "/frame_0001.txt"_s));
        QCOMPARE(ReadFile(folder + "/run"_s), QByteArray("2"));
    }

    void OnlyFaultsOfTheSceneCostAttempts()
    {
        QVERIFY(QFile::rename(Path("scene.txt"_s), Path("away"_s)));
        AtWork work(*this);
        EVENTUALLY_COMPARE(
            m_data->Only().message, "1 of 1 frames failed. Frame 1: the scene file is missing"_s);
        QVERIFY(QFile::rename(Path("away"_s), Path("scene.txt"_s)));
        fullFile = "scene.unfinished/scene.txt"_s;
        fullError = EIO;
        work.Apply(JobAction::Recover, m_id);
        work.executor.looks = 0;
        EVENTUALLY(m_data->Only().message.startsWith("Frame 1 waits: "_s) && work.executor.looks > MostLooks);
        QCOMPARE(m_data->Count("SELECT failures FROM frames"), 0);
        fullError = 0;
        EVENTUALLY_COMPARE(work.executor.held.size(), 1);
    }

    // On one slot, where nothing is chosen while the frame is rendered.
    void OnlyQuickFailuresStopATypeOfJobs_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::newRow("slow") << 60;
        QTest::newRow("quick") << 1;
    }
    void OnlyQuickFailuresStopATypeOfJobs()
    {
        QFETCH(int, seconds);
        for (int job = 2; job <= 3; ++job)
            m_data->jobs.Add(m_data->Job("job"_s, 2));
        AtWork work(*this);
        RunResult failure {RunEnd::SceneFault, "no lamp"_s, {}, 1, "n1"_s};
        failure.seconds = seconds;
        for (int attempt = 1; attempt <= 9; ++attempt) {
            if (m_data->Count("SELECT count(*) FROM stopped_types") > 0)
                break;
            EVENTUALLY_COMPARE(work.executor.held.size(), 1);
            work.executor.End(failure);
            EVENTUALLY(m_data->Count("SELECT sum(failures) FROM frames") == attempt);
        }
        QCOMPARE(m_data->Count("SELECT count(*) FROM stopped_types"), seconds > 10 ? 0 : 1);
    }

    void JobsTellWhatHindersTheirType()
    {
        m_data->Change("UPDATE jobs SET message = 'Frame 7: no lamp'");
        AtWork work(*this);
        const auto changes = m_data->feed.Subscribe(m_data->account);
        work.executor.hindrance = "the controller (slurmctld) does not answer"_s;
        work.scheduler.Nudge();
        QVERIFY(changes->Wait(std::chrono::milliseconds(Patience))->list);
        QCOMPARE(m_data->Only().message, "The job waits: the controller (slurmctld) does not answer."_s);
        work.executor.hindrance.clear();
        work.scheduler.Nudge();
        QCOMPARE(m_data->Only().message, "Frame 7: no lamp"_s);
        m_data->Change("UPDATE jobs SET type = 'gone'");
        QVERIFY(!work.executor.held.isEmpty() || m_data->Only().message.contains("7"_s));
        AtWork next(*this);
        next.scheduler.Nudge();
        QCOMPARE(
            m_data->Only().message, "The job waits: the farm's job types have no type \"gone\" any more."_s);
    }

private:
    /// The scheduler and its dependencies.
    struct AtWork
    {
        explicit AtWork(SchedulerTest& test)
            : data(*test.m_data)
            , contents(test.m_data->database, test.Path("contents"_s))
            , scenes(test.m_data->database, contents, test.m_folder->path())
            , files(test.Path("jobs"_s), scenes)
            , queue(test.m_data->database, test.m_data->feed, test.m_data->terms,
                  {std::chrono::hours(1), std::chrono::seconds(0)})
            , runs(test.m_data->database)
            , hindrances(test.m_data->database, test.m_data->feed)
            , scheduler({queue, runs, executor, files, inWork, hindrances}, {{"povray"_s, TextType()}},
                  {test.m_folder->path(), {}}, std::chrono::milliseconds(20))
        {
            scheduler.Nudge();
        }
        ~AtWork() { scheduler.Stop(); }

        void Apply(JobAction action, const QString& id)
        {
            JobActions(data.database, data.feed, data.terms, [this] {
                scheduler.Nudge();
            }).Apply(action, data.account, {id}, 100);
        }

        FarmData& data;
        ContentStore contents;
        SceneFiles scenes;
        FrameFiles files;
        RenderQueue queue;
        RunTable runs;
        FramesInWork inWork;
        Hindrances hindrances;
        StandInExecutor executor;
        Scheduler scheduler;
    };

    /// Leaves the files of a run that ends in this way.
    void Leave(const QString& end, const RunFiles& files) const
    {
        QDir().mkpath(files.OutputFolder());
        WriteFile(files.Order(), "{}");
        WriteFile(files.Log(), "drawing");
        if (end == "done"_s)
            WriteFile(files.OutputFolder() + "/frame_0001.txt"_s, "a picture");
        if (end == "filling"_s) {
            diskFiller = files.OutputFolder() + "/cache"_s;
            WriteFile(diskFiller, "much");
        }
        if (end == "gone"_s)
            QDir(files.folder).removeRecursively();
        if (end == "kept"_s)
            WriteFile(Path("jobs/%1/frame_0001.txt"_s.arg(m_id)), "a picture");
    }

    static JobType TextType()
    {
        JobType type;
        type.program = "sh"_s;
        type.suffix = "txt"_s;
        return type;
    }

    /// Makes the farm's disk or database fail, or work again.
    void Break(const QString& what)
    {
        fullFile = what == "broken-folder"_s ? m_id : "frame_0001.txt"_s;
        fullError = what == "broken-disk"_s || what == "broken-folder"_s ? EIO : 0;
        diskFree = what == "broken-full"_s ? 0 : -1;
        m_data->Change(what == "broken-database"_s
                ? "CREATE TRIGGER broken BEFORE DELETE ON runs BEGIN SELECT RAISE(ABORT, 'broken'); END"
                : "DROP TRIGGER IF EXISTS broken");
    }

    int RunCount() { return m_data->Count("SELECT count(*) FROM runs"); }
    QString Path(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FarmData> m_data;
    QString m_id;
};

QTEST_GUILESS_MAIN(SchedulerTest)
#include "tst_farm_scheduler.moc"
