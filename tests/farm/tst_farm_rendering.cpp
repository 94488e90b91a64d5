#include "farm/rendering/frame_files.h"
#include "farm/rendering/local_executor.h"
#include "farm/rendering/render_queue.h"
#include "farm/rendering/scene_files.h"
#include "farm/rendering/scheduler.h"
#include "farm/uploads/content_store.h"
#include "tests/farm/farm_fixture.h"

#include <QtTest>

using namespace farm;

namespace {

constexpr Micros workshopPrice = 500'000;

/// A data folder at whose jobs a scheduler works. Destroyed, it leaves what a farm leaves that ends.
class Workshop
{
public:
    Workshop(const QString& folder, const QString& script, int slotCount = 1, int timeLimit = 600)
        : data(folder)
        , contents(data.database, QDir(folder).filePath(QStringLiteral("contents")))
        , scenes(data.database, contents, folder)
        , files(QDir(folder).filePath(QStringLiteral("jobs")), scenes)
        , queue(data.database, workshopPrice)
        , executor(slotCount)
    {
        WriteFile(QDir(folder).filePath(QStringLiteral("scene.txt")), "a scene");
        const QString types = QDir(folder).filePath(QStringLiteral("types.json"));
        WriteFile(types, ScriptedTypes(script, timeLimit));
        scheduler = std::make_unique<Scheduler>(queue, executor, files, ReadJobTypes(types));
    }

    ~Workshop() { scheduler->Stop(); }

    int Status() { return data.Only().status; }
    QByteArray Frame(const QString& job, int number) const
    {
        return ReadFile(
            files.JobFolder(job) + QLatin1Char('/') + FrameFiles::FrameName(number, QStringLiteral("txt")));
    }

    FarmData data;
    ContentStore contents;
    SceneFiles scenes;
    FrameFiles files;
    RenderQueue queue;
    LocalExecutor executor;
    std::unique_ptr<Scheduler> scheduler;
};

} // namespace

class RenderingTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void PlaceholdersAreFilledInOnce()
    {
        const QMap<QString, QString> values {{QStringLiteral("scene"), QStringLiteral("{output}")},
            {QStringLiteral("output"), QStringLiteral("x y")}};
        const QStringList filled = FillIn({QStringLiteral("+I{scene} {output}{output} {other} {")}, values);
        QCOMPARE(filled, QStringList {QStringLiteral("+I{output} x yx y {other} {")});
    }

    void UnusableJobTypesAreRefused()
    {
        for (const char* types : {"povray", "[]", R"({"a":{"suffix":"png"}})", R"({"a":{"program":"sh"}})",
                 R"({"a":{"program":"sh","suffix":"png","frame_time_limit":0}})", R"({"a":7})"}) {
            QVERIFY(WriteFile(Path("types.json"), types));
            try {
                ReadJobTypes(Path("types.json"));
                QFAIL(types);
            } catch (const std::runtime_error&) {
            }
        }
    }

    void AJobIsRenderedFrameByFrame()
    {
        Workshop workshop(m_folder->path(),
            QStringLiteral(
                "cat {scene} > {output}; echo ' {frame}/{frames} {clock} {width}x{height}' >> {output}; "
                "ps -o ni= -p $$ > ../../nice"),
            2);
        NewJob job = workshop.data.Job(QStringLiteral("job"), 4);
        job.width = 64;
        job.height = 36;
        const QString id = workshop.data.jobs.Add(job).id;
        workshop.scheduler->Nudge();
        QCOMPARE(workshop.Status(), int(JobStatus::Running));
        QTRY_COMPARE_WITH_TIMEOUT(workshop.Status(), int(JobStatus::Finished), patienceMs);
        QCOMPARE(workshop.data.Only().progress, 100);
        QCOMPARE(workshop.Frame(id, 1), QByteArray("a scene 1/4 0.000000 64x36\n"));
        QCOMPARE(workshop.Frame(id, 4), QByteArray("a scene 4/4 0.750000 64x36\n"));
        QCOMPARE(ReadFile(Path("jobs/nice")).trimmed(), QByteArray("19"));
        QCOMPARE(QDir(workshop.files.JobFolder(id)).entryList(QDir::Files).size(), 5);
    }

    void EachFrameIsChargedOnce()
    {
        Workshop workshop(m_folder->path(), QString());
        const std::int64_t job = workshop.data.jobs.Add(workshop.data.Job(QStringLiteral("job"), 3)).key;
        workshop.queue.Finish({job, 2}, {}, 3001, 100);
        workshop.queue.Finish({job, 2}, {}, 9999, 101);
        workshop.queue.Finish({job, 7}, {}, 9999, 102);
        QCOMPARE(workshop.data.Only().cost, Micros(1500500));
        QCOMPARE(workshop.data.Only().progress, 33);
        QCOMPARE(workshop.data.accounts.Info(workshop.data.account).balance, Micros(10000000 - 1500500));
    }

    void WorkIsChargedAndWaitingIsNot()
    {
        Workshop workshop(m_folder->path(),
            QStringLiteral(
                "i=0; [ {frames} -eq 1 ] && sleep 0.5 || while [ $i -lt 300000 ]; do i=$((i+1)); done; "
                "cp {scene} {output}"));
        for (int frames : {1, 2}) {
            workshop.data.jobs.Add(workshop.data.Job(QStringLiteral("job"), frames));
            workshop.scheduler->Nudge();
            QTRY_COMPARE_WITH_TIMEOUT(workshop.Status(), int(JobStatus::Finished), patienceMs);
            QCOMPARE(workshop.data.Only().cost > Charge(100, workshopPrice) * frames, frames == 2);
        }
    }

    void ARendererThatFailsFailsTheJob_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<int>("timeLimit");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* name, const char* script, int timeLimit, const char* message) {
            QTest::newRow(name) << QString::fromLatin1(script) << timeLimit << QString::fromLatin1(message);
        };
        row("error code", "echo no such lamp >&2; exit 3", 600,
            "the renderer ended with code 3\nno such lamp");
        row("crash", "kill -SEGV $$", 600, "the renderer crashed");
        row("no picture", "true", 600, "the renderer left no picture");
        row("empty picture", ": > {output}", 600, "the renderer left no picture");
        row("endless", "sleep 600", 1, "the renderer exceeded its time limit");
    }

    void ARendererThatFailsFailsTheJob()
    {
        QFETCH(QString, script);
        QFETCH(int, timeLimit);
        const QString firstIsFine
            = QStringLiteral("[ {frame} -gt 1 ] || { cp {scene} {output}; exit; }; echo x >> ../../log; ");
        Workshop workshop(m_folder->path(), firstIsFine + script, 1, timeLimit);
        const AddedJob job = workshop.data.jobs.Add(workshop.data.Job(QStringLiteral("job"), 4));
        workshop.scheduler->Nudge();
        QTRY_COMPARE_WITH_TIMEOUT(workshop.Status(), int(JobStatus::Failed), patienceMs);
        QCOMPARE(ReadFile(Path("jobs/log")).count('x'), 3);
        QCOMPARE(workshop.data.Only().progress, 25);
        QCOMPARE(workshop.Frame(job.id, 1), QByteArray("a scene"));
        QTEST(workshop.data.Only().message, "message");
    }

    void WithoutItsRendererAJobWaits()
    {
        Workshop workshop(m_folder->path(), QStringLiteral("cp {scene} {output}"));
        JobType type;
        type.program = QStringLiteral("no-such-renderer");
        type.suffix = QStringLiteral("txt");
        Scheduler scheduler(
            workshop.queue, workshop.executor, workshop.files, {{QStringLiteral("povray"), type}});
        workshop.data.jobs.Add(workshop.data.Job(QStringLiteral("job")));
        scheduler.Nudge();
        QCOMPARE(workshop.Status(), int(JobStatus::Waiting));
        workshop.scheduler->Nudge();
        QTRY_COMPARE_WITH_TIMEOUT(workshop.Status(), int(JobStatus::Finished), patienceMs);
    }

    void RunningJobsTakeTurns()
    {
        Workshop workshop(m_folder->path(), QStringLiteral("cat {scene} >> ../../log; cp {scene} {output}"));
        const QStringList scenes {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
        for (const QString& scene : scenes) {
            WriteFile(m_folder->filePath(scene), scene.toLatin1());
            NewJob job = workshop.data.Job(scene, 3);
            job.scene = scene;
            // The last one waits until the running ones need no slot any more.
            job.status = scene == QLatin1String("c") ? JobStatus::Waiting : JobStatus::Running;
            workshop.data.jobs.Add(job);
        }
        workshop.scheduler->Nudge();
        QTRY_COMPARE_WITH_TIMEOUT(workshop.Status(), int(JobStatus::Finished), patienceMs);
        QCOMPARE(ReadFile(Path("jobs/log")), QByteArray("abababccc"));
    }

private:
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(RenderingTest)
#include "tst_farm_rendering.moc"
