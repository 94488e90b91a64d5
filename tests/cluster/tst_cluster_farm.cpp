#include "tests/cluster/cluster.h"
#include "tests/farm/farm_fixture.h"

#include <QImage>
#include <QProcess>

using namespace farm;

namespace {

constexpr int Frames = 12;

/// A farm as a program in its own folder, with a job of ann's.
class FarmProgram
{
    QTemporaryDir m_folder;

public:
    void Start(const QStringList& options)
    {
        const QStringList arguments {"--data"_s, m_folder.path(), "--no-demo"_s, "--stop-with-stdin"_s};
        m_program = std::make_unique<WorkerProcess>(QStringLiteral(FARM_DAEMON), arguments + options);
        m_program->Await("listening on ");
    }

    /// Kills it, so that it cannot prepare for its end.
    void Kill() { m_program.reset(); }

    void Submit()
    {
        NewJob job = data.Job("job"_s, Frames);
        job.scene = "ripples.pov"_s;
        job.width = 480;
        job.height = 270;
        m_job = data.jobs.Add(job).id;
    }

    int Finished() { return data.Count("SELECT count(*) FROM frames WHERE finished_at IS NOT NULL"); }

    QImage Picture(int frame) const
    {
        const QString name = "jobs/%1/frame_%2.png"_s.arg(m_job).arg(frame, 4, 10, QLatin1Char('0'));
        return QImage(m_folder.filePath(name));
    }

    FarmData data {m_folder.path()};

private:
    QString m_job;
    std::unique_ptr<WorkerProcess> m_program;
};

/// The farm's frames as Slurm lists them.
QStringList Tasks(const QString& format)
{
    QProcess squeue;
    squeue.start("squeue"_s, {"-h"_s, "--array"_s, "--states=all"_s, "--format=%j "_s + format});
    squeue.waitForFinished(Patience);
    QStringList tasks;
    const QStringList lines = QString::fromUtf8(squeue.readAll()).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (!line.contains("probe"_s))
            tasks.append(line.section(QLatin1Char(' '), 1));
    }
    return tasks;
}

/// The nodes on which the tasks were, by their states.
QMap<QString, QStringList> NodesByState()
{
    QMap<QString, QStringList> nodes;
    const QStringList tasks = Tasks("%T %N"_s);
    for (const QString& task : tasks)
        nodes[task.section(QLatin1Char(' '), 0, 0)].append(task.section(QLatin1Char(' '), 1));
    return nodes;
}

} // namespace

class ClusterFarmTest : public QObject
{
    Q_OBJECT

private slots:
    void RendersEachFrameOnceThoughFarmAndNodeAreKilled()
    {
        Cluster cluster;
        if (!cluster.reason.isEmpty())
            QSKIP(qPrintable(cluster.reason));
        const QStringList onCluster {"--executor"_s, "slurm"_s, "--slurm-interval"_s, "1"_s,
            "--slurm-file-delay"_s, "5"_s, "--slurm-partition"_s, "main"_s};
        FarmProgram farm;
        farm.Submit();
        farm.Start(onCluster);
        EVENTUALLY(farm.Finished() >= 2);
        // It has just begun a frame, so that it does not end the frame before it is killed.
        bool hasBegun = false;
        EVENTUALLY(hasBegun = hasBegun || Tasks("%T %N %M"_s).contains("RUNNING n1 0:00"_s));
        QVERIFY(cluster.Do("kill n1"_s));
        farm.Kill();
        QVERIFY(farm.Finished() < Frames);
        farm.Start(onCluster);
        EVENTUALLY(NodesByState().contains("NODE_FAIL"_s));
        QVERIFY(cluster.Do("start n1"_s));
        EVENTUALLY_COMPARE(farm.data.Only().status, int(JobStatus::Finished));

        const auto nodes = NodesByState();
        QCOMPARE(nodes["COMPLETED"_s].size(), Frames);
        QVERIFY(nodes["COMPLETED"_s].contains("n1"_s) && nodes["COMPLETED"_s].contains("n2"_s));
        QCOMPARE(nodes["NODE_FAIL"_s], QStringList {"n1"_s});
        QCOMPARE(farm.data.Count("SELECT count(*) FROM charges WHERE core_milliseconds > 0"), Frames);
        QCOMPARE(farm.data.Count("SELECT count(DISTINCT frame) FROM charges"), Frames);
        QCOMPARE(farm.data.Count("SELECT sum(failures) FROM frames"), 0);

        FarmProgram local;
        local.Submit();
        local.Start({"--slots"_s, "2"_s});
        EVENTUALLY_COMPARE(local.data.Only().status, int(JobStatus::Finished));
        for (int frame = 1; frame <= Frames; ++frame) {
            QVERIFY(!farm.Picture(frame).isNull());
            QCOMPARE(farm.Picture(frame), local.Picture(frame));
        }
    }
};

QTEST_GUILESS_MAIN(ClusterFarmTest)
#include "tst_cluster_farm.moc"
