#include "farm/base/local_time.h"
#include "farm/slurm/slurm_executor.h"
#include "tests/cluster/cluster.h"
#include "tests/support/test_files.h"

#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>

#include <sstream>

using namespace farm;

namespace {

// Stands in for quillstar-run-frame: notes that it begins, and renders until the file "gate" is there.
const char* const Runner = "#!/bin/sh\nrun=${1%/*}\necho x >>\"$run/begun\"\n"
                           "trap 'echo {\\\"end\\\":\\\"cancelled\\\"} >\"$run/outcome.json\"; exit' TERM\n"
                           "while ! [ -e \"$run/../gate\" ]; do sleep 0.1; done\n"
                           "echo {\\\"end\\\":\\\"done\\\"} >\"$run/outcome.json\"\n";

/// Runs without a farm, and what the executor reports about them.
class Bench
{
    QTemporaryDir m_folder;

public:
    Bench()
    {
        settings.folder = m_folder.filePath("batches"_s);
        settings.runner = m_folder.filePath("runner"_s);
        settings.interval = std::chrono::milliseconds {500};
        settings.fileDelay = std::chrono::milliseconds {2000};
        settings.commandTimeout = std::chrono::milliseconds {3000};
        WriteFile(settings.runner, Runner);
        QFile::setPermissions(settings.runner, QFile::ReadOwner | QFile::ExeOwner);
        type.program = "sh"_s;
        auto sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(m_log);
        spdlog::set_default_logger(std::make_shared<spdlog::logger>("test", sink));
    }

    ~Bench()
    {
        executor.reset();
        if (QTest::currentTestFailed())
            qWarning("%s", m_log.str().c_str());
    }

    /// A new executor, as after a restart of the farm, takes over the runs that have not ended.
    void Open()
    {
        executor.reset();
        executor = std::make_unique<SlurmExecutor>(settings, JobTypes {{"sh"_s, type}}, nodes);
        QObject::connect(executor.get(), &Executor::Started, executor.get(),
            [this](const RunId& run, const QString& host) { hosts[run] = host; });
        QObject::connect(executor.get(), &Executor::Ended, executor.get(),
            [this](const RunId& run, const RunResult& result) {
                ++endCount;
                m_open.removeOne(run);
                ends[run] = result;
            });
        std::vector<RecordedRun> recorded;
        for (const RunId& run : qAsConst(m_open))
            recorded.push_back({run, {}, FilesOf(run), {}});
        executor->Attach(recorded);
    }

    void Start(const QStringList& ids)
    {
        std::vector<Run> runs;
        for (const RunId& id : ids) {
            QDir().mkpath(FilesOf(id).folder);
            Run run;
            run.id = id;
            run.task.type = "sh"_s;
            run.order.files = FilesOf(id);
            runs.push_back(run);
        }
        m_open += ids;
        executor->Start(runs);
    }

    bool OpenGate() const { return WriteFile(m_folder.filePath("gate"_s), {}); }
    int Begun(const RunId& run) const { return ReadFile(FilesOf(run).folder + "/begun"_s).count('x'); }
    bool HasEnded(const RunId& run, RunEnd end) const { return ends.contains(run) && ends[run].end == end; }
    bool HasLogged(const char* text) const { return m_log.str().find(text) != std::string::npos; }

    /// The node as somebody who looks now sees it.
    RenderNode Node(const QString& name)
    {
        for (const RenderNode& node : nodes.Look(Now()).value_or(NodeReport()).nodes) {
            if (node.name == name)
                return node;
        }
        return {};
    }

    SlurmSettings settings;
    JobType type;
    NodeBoard nodes;
    std::unique_ptr<SlurmExecutor> executor;
    QMap<RunId, QString> hosts;
    QMap<RunId, RunResult> ends;
    int endCount = 0;

private:
    RunFiles FilesOf(const RunId& run) const { return {m_folder.filePath(run)}; }

    std::ostringstream m_log;
    QStringList m_open;
};

} // namespace

class ClusterExecutorTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_cluster = std::make_unique<Cluster>();
        if (!m_cluster->reason.isEmpty())
            QSKIP(qPrintable(m_cluster->reason));
    }

    void init() { m_bench = std::make_unique<Bench>(); }
    void cleanup() { m_bench.reset(); }
    void cleanupTestCase() { m_cluster.reset(); }

    void LosesNothingWhenFarmNodeAndControllerEnd()
    {
        const QStringList runs {"r1"_s, "r2"_s, "r3"_s, "r4"_s};
        m_bench->Open();
        m_bench->Start(runs);
        EVENTUALLY_COMPARE(m_bench->hosts.size(), 2);
        QVERIFY(m_bench->hosts["r1"_s] != m_bench->hosts["r2"_s]);
        m_bench->Open();
        QVERIFY(m_cluster->Do("stop controller"_s));
        EVENTUALLY(m_bench->HasLogged("slurmctld) does not answer"));
        QCOMPARE(int(m_bench->executor->Has(m_bench->type)), int(Availability::Unknown));
        QVERIFY(m_cluster->Do("start controller"_s));
        EVENTUALLY(m_bench->HasLogged("squeue works again"));
        QCOMPARE(int(m_bench->executor->Has(m_bench->type)), int(Availability::Unknown));
        const QString lost = m_bench->hosts["r1"_s];
        QVERIFY(m_cluster->Do("kill "_s + lost));
        EVENTUALLY(m_bench->HasEnded("r1"_s, RunEnd::MachineLost));
        QCOMPARE(m_bench->ends["r1"_s].host, lost);
        QCOMPARE(m_bench->endCount, 1);
        QVERIFY(m_cluster->Do("start "_s + lost));
        QVERIFY(m_bench->OpenGate());
        EVENTUALLY_COMPARE(m_bench->endCount, 4);
        for (const RunId& run : runs) {
            QCOMPARE(m_bench->Begun(run), 1);
            QVERIFY(run == "r1"_s || m_bench->HasEnded(run, RunEnd::Done));
        }
        EVENTUALLY(m_bench->executor->Has(m_bench->type) == Availability::Present);
        EVENTUALLY(QDir(m_bench->settings.folder).isEmpty());
    }

    void CancelsWhatRunsAndWhatWaits()
    {
        m_bench->Open();
        m_bench->Start({"r1"_s, "r2"_s, "r3"_s});
        m_bench->executor->Cancel("r3"_s);
        EVENTUALLY(m_bench->HasEnded("r3"_s, RunEnd::Cancelled));
        m_bench->Start({"r4"_s, "r5"_s});
        EVENTUALLY_COMPARE(m_bench->hosts.size(), 2);
        m_bench->executor->Cancel("r1"_s);
        m_bench->executor->Cancel("r4"_s);
        EVENTUALLY(
            m_bench->HasEnded("r1"_s, RunEnd::Cancelled) && m_bench->HasEnded("r4"_s, RunEnd::Cancelled));
        QVERIFY(m_bench->OpenGate());
        EVENTUALLY(m_bench->HasEnded("r2"_s, RunEnd::Done) && m_bench->HasEnded("r5"_s, RunEnd::Done));
        QCOMPARE(m_bench->Begun("r3"_s) + m_bench->Begun("r4"_s), 0);
        QCOMPARE(m_bench->endCount, 5);
    }

    void RendersSeveralFramesInATask()
    {
        m_bench->settings.framesPerTask = 3;
        m_bench->type.slurm.insert("constraint"_s, "second"_s);
        QVERIFY(m_bench->OpenGate());
        m_bench->Open();
        m_bench->Start({"r1"_s, "r2"_s, "r3"_s, "r4"_s});
        EVENTUALLY_COMPARE(m_bench->endCount, 4);
        for (const char* run : {"r1", "r2", "r3", "r4"}) {
            QVERIFY(m_bench->HasEnded(QLatin1String(run), RunEnd::Done));
            QCOMPARE(m_bench->hosts[QLatin1String(run)], "n2"_s);
        }
    }

    void LeavesOutANodeOnWhichFramesCannotBegin()
    {
        QVERIFY(WriteFile(m_bench->settings.runner,
            "#!/bin/sh\n[ $SLURMD_NODENAME = n2 ] && end=done || end=farm_fault\n"
            "echo {\\\"end\\\":\\\"$end\\\",\\\"message\\\":\\\"no lamp\\\"} >\"${1%/*}/outcome.json\"\n"));
        m_bench->Open();
        m_bench->Start({"r1"_s, "r2"_s, "r3"_s, "r4"_s, "r5"_s, "r6"_s, "r7"_s, "r8"_s});
        EVENTUALLY_COMPARE(m_bench->endCount, 8);
        QVERIFY(m_bench->HasLogged("fail on node n1 before they begin: on node n1, no lamp"));
        const QStringList next {"s1"_s, "s2"_s, "s3"_s, "s4"_s};
        m_bench->Start(next);
        EVENTUALLY_COMPARE(m_bench->endCount, 12);
        for (const RunId& run : next)
            QVERIFY(m_bench->HasEnded(run, RunEnd::Done));
        EVENTUALLY(m_bench->Node("n1"_s).leftOut["sh"_s].contains("no lamp"_s));
        QVERIFY(m_bench->Node("n2"_s).leftOut.empty());
    }

    void TellsTheStatesOfAllNodes()
    {
        m_bench->Open();
        EVENTUALLY_COMPARE(m_bench->Node("n1"_s).state + m_bench->Node("n2"_s).state, "idleidle"_s);
        QVERIFY(m_cluster->Do("drain n1 fan | <b>"_s));
        EVENTUALLY_COMPARE(m_bench->Node("n1"_s).state, "drained"_s);
        QCOMPARE(m_bench->Node("n1"_s).reason, "fan | <b>"_s);
        QVERIFY(m_cluster->Do("kill n2"_s));
        EVENTUALLY_COMPARE(m_bench->Node("n2"_s).state, "down"_s);
        QCOMPARE(m_bench->Node("n2"_s).detail, "not responding"_s);
        QVERIFY(!m_bench->Node("n2"_s).reason.isEmpty());
        QVERIFY(m_cluster->Do("resume n1"_s) && m_cluster->Do("start n2"_s));
        EVENTUALLY_COMPARE(m_bench->Node("n1"_s).state + m_bench->Node("n2"_s).state, "idleidle"_s);
        QVERIFY(m_bench->Node("n1"_s).reason.isEmpty());
    }

    void SaysWhatTheClusterLacks_data()
    {
        static const std::tuple<const char*, const char*, const char*, const char*> lacks[] = {
            {"partition", "partition", "gone", "no such partition"},
            {"constraint", "constraint", "gone", "no node has the features"},
            {"renderer", "program", "no-such-renderer", "no-such-renderer is not installed on node n"},
            {"shared folder", "constraint", "first", "node n1 does not see the farm's folder"},
        };
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("sentence");
        for (const auto& [name, setting, value, sentence] : lacks)
            QTest::newRow(name) << QString::fromLatin1(setting) << QString::fromLatin1(value)
                                << QString::fromLatin1(sentence);
    }
    void SaysWhatTheClusterLacks()
    {
        QFETCH(QString, setting);
        QFETCH(QString, value);
        QFETCH(QString, sentence);
        const bool isHidden = value == "first"_s;
        if (isHidden)
            QVERIFY(m_cluster->Do("hide n1 "_s + QFileInfo(m_bench->settings.folder).path()));
        if (setting == "program"_s)
            m_bench->type.program = value;
        else
            m_bench->type.slurm.insert(setting, value);
        m_bench->Open();
        QCOMPARE(int(m_bench->executor->Has(m_bench->type)), int(Availability::Unknown));
        EVENTUALLY_COMPARE(int(m_bench->executor->Has(m_bench->type)), int(Availability::Missing));
        const QString hindrance = m_bench->executor->HindranceOf(m_bench->type);
        QVERIFY2(hindrance.contains(sentence), qPrintable(hindrance));
        // A run that is sent all the same ends without counting against its frame.
        if (setting != "program"_s) {
            m_bench->Start({"r1"_s});
            EVENTUALLY(m_bench->HasEnded("r1"_s, RunEnd::FarmFault));
            QVERIFY(isHidden || m_bench->ends["r1"_s].message.contains(sentence));
        }
        if (isHidden)
            QVERIFY(m_cluster->Do("kill n1"_s) && m_cluster->Do("start n1"_s));
    }

    void FindsARendererThatTheNodesHave()
    {
        // The nodes get the search path of the farm, and by it a wrong clock.
        const QByteArray path = qgetenv("PATH");
        const QString date = QFileInfo(m_bench->settings.runner).path() + "/date"_s;
        QVERIFY(WriteFile(date, "#!/bin/sh\necho 1000000000\n"));
        QVERIFY(QFile::setPermissions(date, QFile::ReadOwner | QFile::ExeOwner));
        qputenv("PATH", QFileInfo(date).path().toUtf8() + ':' + path);
        m_bench->Open();
        QSignalSpy changed(m_bench->executor.get(), &Executor::AvailabilityChanged);
        QCOMPARE(int(m_bench->executor->Has(m_bench->type)), int(Availability::Unknown));
        QVERIFY(changed.wait(Patience));
        QCOMPARE(int(m_bench->executor->Has(m_bench->type)), int(Availability::Present));
        QVERIFY(m_bench->HasLogged("the clocks of node n"));
        qputenv("PATH", path);
    }

private:
    std::unique_ptr<Cluster> m_cluster;
    std::unique_ptr<Bench> m_bench;
};

QTEST_GUILESS_MAIN(ClusterExecutorTest)
#include "tst_cluster_executor.moc"
