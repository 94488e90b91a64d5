#include "farm/slurm/batch.h"
#include "farm/slurm/cluster_limits.h"
#include "farm/slurm/command_fault.h"
#include "farm/slurm/node_health.h"
#include "farm/slurm/run_book.h"
#include "farm/slurm/run_end_rules.h"
#include "farm/slurm/waiting_runs.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

#include <QProcess>
#include <QTemporaryDir>

using namespace farm;

namespace {

// The end of a run, by the state of its task on node n1 (none when Slurm does not know it) and by its evidence (s: it
// was started, o: it has the outcome Cancelled, d: Done, f: SceneFault, m: FarmFault, c: it is to be cancelled, l:
// files would have been seen by now), and the part of the message that tells the user why.
constexpr int Open = -1;
const std::tuple<const char*, const char*, const char*, int, const char*> Ends[] = {
    {"queued", "PENDING", "l", Open, ""},
    {"running", "RUNNING", "sl", Open, ""},
    {"in an unknown state", "FLOATING", "sl", Open, ""},
    {"still completing", "COMPLETING", "soc", Open, ""},
    {"done", "COMPLETED", "sd", int(RunEnd::Done), ""},
    {"done while others of its task are rendered", "RUNNING", "sd", int(RunEnd::Done), ""},
    {"done before its node failed", "NODE_FAIL", "sd", int(RunEnd::Done), ""},
    {"done before it was cancelled", "CANCELLED", "sdc", int(RunEnd::Done), ""},
    {"done and forgotten", "", "sd", int(RunEnd::Done), ""},
    {"scene at fault", "COMPLETED", "sf", int(RunEnd::SceneFault), "a lamp"},
    {"scene at fault while others of its task are rendered", "RUNNING", "sf", int(RunEnd::SceneFault),
        "a lamp"},
    {"renderer not installed", "COMPLETED", "sm", int(RunEnd::FarmFault), "on node n1, a lamp"},
    {"renderer ended by Slurm's signal", "PREEMPTED", "sf", int(RunEnd::Preempted), "node n1"},
    {"renderer ended by Slurm's signal just now", "COMPLETING", "sf", Open, ""},
    {"node failed", "NODE_FAIL", "s", int(RunEnd::MachineLost), "node n1 failed"},
    {"node failed, renderer told to end", "NODE_FAIL", "so", int(RunEnd::MachineLost), "node n1 failed"},
    {"node did not boot", "BOOT_FAIL", "", int(RunEnd::MachineLost), "node n1 did not boot"},
    {"preempted", "PREEMPTED", "so", int(RunEnd::Preempted), "node n1"},
    {"time limit", "TIMEOUT", "so", int(RunEnd::TimeLimit), "time limit"},
    {"time limit of an earlier frame", "TIMEOUT", "", int(RunEnd::MachineLost), "before the frame began"},
    {"memory", "OUT_OF_MEMORY", "s", int(RunEnd::SceneFault), "memory"},
    {"memory of an earlier frame", "OUT_OF_MEMORY", "", int(RunEnd::MachineLost), "before the frame began"},
    {"deadline", "DEADLINE", "", int(RunEnd::Cancelled), "deadline"},
    {"cancelled by the farm", "CANCELLED", "soc", int(RunEnd::Cancelled), ""},
    {"cancelled by an administrator", "CANCELLED", "s", int(RunEnd::Cancelled), "cancelled on the cluster"},
    {"cancelled in the queue", "", "c", int(RunEnd::Cancelled), ""},
    {"ended without a word just now", "FAILED", "", Open, ""},
    {"folder not seen", "FAILED", "l", int(RunEnd::FarmFault), "may not see the farm's shared folder"},
    {"outcome not written", "COMPLETED", "sl", int(RunEnd::FarmFault),
        "node n1 reported no result: the shared folder"},
    {"renderer ended by somebody", "FAILED", "sol", int(RunEnd::MachineLost), "ended on node n1"},
    {"forgotten just now", "", "s", Open, ""},
    {"forgotten", "", "sl", int(RunEnd::MachineLost), "not know the task"},
};

// The errors of Slurm 22.05's commands, their meanings, and part of the sentence about each.
const std::tuple<const char*, const char*, CommandFault, const char*> Faults[] = {
    {"no controller", "slurm_load_jobs error: Unable to contact slurm controller (connect failure)",
        CommandFault::Unreachable, "slurmctld) does not answer"},
    {"slow controller", "sbatch: error: Batch job submission failed: Socket timed out on send/recv operation",
        CommandFault::InDoubt, "in time"},
    {"other munge key", "slurm_load_jobs error: Zero Bytes were transmitted or received",
        CommandFault::Unreachable, "munge key"},
    {"no munge",
        "squeue: error: If munged is up, restart with --num-threads=10\n"
        "squeue: error: Munge encode failed: Failed to access \"/run/munge/munge.socket.2\": No such file\n"
        "slurm_load_jobs error: Protocol authentication error",
        CommandFault::Unreachable, "munge service"},
    {"no configuration", "squeue: fatal: Could not establish a configuration source",
        CommandFault::Unreachable, "slurm.conf"},
    {"clock", "squeue: error: Munge decode failed: Rewound credential\nProtocol authentication error",
        CommandFault::Unreachable, "clocks"},
    {"partition",
        "sbatch: error: invalid partition specified: nope\nsbatch: error: Batch job submission failed: "
        "Invalid partition name specified",
        CommandFault::Refused, "no such partition (sbatch: error: Batch"},
    {"account",
        "sbatch: error: Batch job submission failed: Invalid account or account/partition combination "
        "specified",
        CommandFault::Refused, "does not know the account"},
    {"QOS", "sbatch: error: Batch job submission failed: Invalid qos specification", CommandFault::Refused,
        "QOS"},
    {"limit", "sbatch: error: Batch job submission failed: Job violates accounting/QOS policy",
        CommandFault::Unreachable, "a limit of the account"},
    {"licence", "sbatch: error: Batch job submission failed: Invalid license specification",
        CommandFault::Refused, "licence"},
    {"anything else", "sbatch: error: Batch job submission failed: No such luck", CommandFault::Unreachable,
        "ended with code 1 (sbatch: error: Batch job"},
};

// Runs that the cluster renders, runs that wait there, and the number of runs that it is to hold.
const std::tuple<const char*, int, int, int> Loads[] = {
    {"nothing sent", 0, 0, 20},
    {"nothing begun", 0, 20, 20},
    {"all begun", 20, 0, 60},
    {"busy", 100, 1, 140},
};

ClusterTask Task(int index, const char* state)
{
    return {"quillstar-1-x"_s, index, "7_%1"_s.arg(index), QString::fromLatin1(state), "n1"_s, {}};
}

/// A batch of two runs in two tasks.
Batch TwoRuns()
{
    return {"quillstar-1-x"_s, {}, {"r1"_s, "r2"_s}};
}

} // namespace

class SlurmTest : public QObject
{
    Q_OBJECT

private slots:
    void KnowsHowARunEnded_data() { AddRows(Ends); }
    void KnowsHowARunEnded()
    {
        const auto& [name, state, there, end, message] = Row(Ends);
        const auto is = [there = QByteArray(there)](char sign) { return there.contains(sign); };
        RunEvidence evidence;
        if (*state != 0)
            evidence.task = Task(1, state);
        evidence.wasStarted = is('s');
        evidence.isCancelWanted = is('c');
        evidence.isLate = is('l');
        for (const auto& [sign, outcome] : {std::pair('o', RunEnd::Cancelled), std::pair('d', RunEnd::Done),
                 std::pair('f', RunEnd::SceneFault), std::pair('m', RunEnd::FarmFault)}) {
            if (is(sign))
                evidence.outcome = RunResult {outcome, "a lamp is missing"_s, {}, 1234, {}};
        }
        const auto result = EndOf(evidence);
        QCOMPARE(result ? int(result->end) : Open, end);
        if (!result)
            return;
        QVERIFY2(result->message.contains(QLatin1String(message)), qPrintable(result->message));
        QCOMPARE(result->coreMilliseconds, std::int64_t(evidence.outcome ? 1234 : 0));
        QCOMPARE(result->host, *state != 0 ? "n1"_s : QString());
    }

    void SaysWhyACommandFailed_data() { AddRows(Faults); }
    void SaysWhyACommandFailed()
    {
        const auto& [name, errors, fault, sentence] = Row(Faults);
        const CommandResult result {CommandResult::End::Exited, 1, {}, errors};
        QCOMPARE(int(FaultOf(result)), int(fault));
        const QString text = FaultText("sbatch"_s, result);
        QVERIFY2(text.contains(QLatin1String(sentence)), qPrintable(text));
    }

    void ReadsWhatTheClusterPrints()
    {
        const auto queue = ReadQueue("quillstar-1-x|7|2|NODE_FAIL|n1|NodeDown\nother|8|N/A|RUNNING|n2|None\n"
                                     "quillstar-1-x|7|3|PENDING||(a | b)\n\nsqueue: nonsense\n");
        QCOMPARE(queue.size(), std::size_t(2));
        QCOMPARE(queue[0].id + queue[0].state + queue[0].node, "7_2NODE_FAILn1"_s);
        QCOMPARE(queue[1].reason, "(a | b)"_s);
        const auto accounts
            = ReadAccounting("quillstar-1-x|7_2|CANCELLED by 0|n1\nbatch|7_2.batch|FAILED|n1\n"
                             "quillstar-1-x|7_3|PENDING|None assigned\n");
        QCOMPARE(accounts.size(), std::size_t(2));
        QCOMPARE(accounts[0].state + accounts[0].node + accounts[1].node, "CANCELLEDn1"_s);
        const ClusterLimits limits
            = ReadLimits("Configuration data\nAccountingStorageType   = accounting_storage/none\n"
                         "MaxArraySize            = 101\nMinJobAge               = 20 sec\n");
        QCOMPARE(limits.arraySize, 101);
        QCOMPARE(Warnings(limits, {}).size(), 1);
        QVERIFY(!limits.hasAccounting);
        SlurmSettings settings;
        settings.account = "studio"_s;
        QVERIFY(Warnings(limits, settings).at(0).contains("ignores the account \"studio\""_s));
    }

    void AsksTheClusterForWhatAFrameNeeds()
    {
        Batch batch = TwoRuns();
        batch.runs.push_back("r3"_s);
        batch.placement = {"gpu"_s, {}, "night"_s, {}, 2, {}};
        Resources& resources = batch.placement.resources;
        resources.cores = 8;
        resources.memory = 1'500'000'000;
        resources.licences = QStringList {"maya:1"_s, "vray:2"_s};
        resources.timeLimit = std::chrono::seconds {90};
        const QString arguments = SubmitArguments(batch).join(QLatin1Char(' '));
        for (const char* part : {"--array=1-2 ", "--no-requeue", "--cpus-per-task=8", "--mem=1431M",
                 "--licenses=maya:1,vray:2", "--partition=gpu", "--qos=night", "--time=7 "})
            QVERIFY2(arguments.contains(QLatin1String(part)), qPrintable(arguments));
        QVERIFY(SubmitArguments(batch, {"n1"_s, "n7"_s}).contains("--exclude=n1,n7"_s));
        for (const char* part : {"--account", "--gres", "--constraint", "--exclude"})
            QVERIFY2(!arguments.contains(QLatin1String(part)), qPrintable(arguments));
    }

    // The script as a node would run it, with a stand-in for quillstar-run-frame.
    void ATaskRendersItsRunsOnce()
    {
        const QTemporaryDir folder;
        const QString list = folder.filePath("a 'list'"_s);
        QByteArray runs;
        for (int i = 1; i <= 5; ++i) {
            const QString run = folder.filePath("run %1"_s.arg(i));
            QVERIFY(QDir().mkpath(run));
            runs += run.toUtf8() + '\n';
        }
        QVERIFY(WriteFile(list, runs));
        const QString runner = folder.filePath("runner"_s);
        QVERIFY(WriteFile(runner,
            "#!/bin/sh\necho \"$1\" | tail -c 13 >>\"${0%/*}/log\"\n"
            "case $1 in *4/order.json) kill -TERM $PPID ;; esac\n"));
        QVERIFY(QFile::setPermissions(runner, QFile::ReadOwner | QFile::ExeOwner));
        QVERIFY(WriteFile(folder.filePath("run 3/started"_s), "another task"));
        const auto runTask = [&](int task) {
            QProcess shell;
            shell.setProcessEnvironment([task] {
                QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
                environment.insert("SLURM_ARRAY_TASK_ID"_s, QString::number(task));
                environment.insert("SLURMD_NODENAME"_s, "n1"_s);
                return environment;
            }());
            shell.start("/bin/sh"_s, {});
            shell.write(BatchScript(3, list, runner));
            shell.closeWriteChannel();
            return shell.waitForFinished(Patience) ? shell.exitCode() : -1;
        };
        QCOMPARE(runTask(1), 0);
        QCOMPARE(runTask(1), 0);
        // It is told to end while it renders its first frame.
        QCOMPARE(runTask(2), 0);
        QCOMPARE(
            ReadFile(folder.filePath("log"_s)), QByteArray("1/order.json\n2/order.json\n4/order.json\n"));
        QVERIFY(ReadFile(folder.filePath("run 1/started"_s)).startsWith("n1 "));
        QVERIFY(!QFile::exists(folder.filePath("run 5/started"_s)));
        QVERIFY(QFile::remove(list));
        QCOMPARE(runTask(2), 66);
    }

    void SubmitsAgainOnlyWhatTheClusterDoesNotKnow()
    {
        RunBook book(std::chrono::seconds {60});
        const auto now = RunBook::Clock::now();
        for (const bool isKnown : {true, false}) {
            book.Add(TwoRuns(), {{"/a"_s}, {"/b"_s}}, {"r1"_s, "r2"_s});
            book.Doubt("quillstar-1-x"_s);
            book.Update({}, now);
            QVERIFY(book.Looks(now).empty() && book.LostSubmissions().isEmpty());
            book.Update(
                isKnown ? std::vector {Task(1, "PENDING"), Task(2, "PENDING")} : std::vector<ClusterTask>(),
                now);
            QCOMPARE(book.LostSubmissions().isEmpty(), isKnown);
            book.Cancel("r2"_s);
            QCOMPARE(book.TakeTasksToCancel(), isKnown ? QStringList {"7_2"_s} : QStringList());
            const auto returned = book.Remove("quillstar-1-x"_s);
            QCOMPARE(returned.size(), std::size_t(2));
            QVERIFY(returned[1].isCancelWanted && !returned[0].isCancelWanted);
            QVERIFY(book.IsEmpty());
        }
    }

    void StoppingAJobEndsNoFramesOfOthers()
    {
        const auto batches = [](int framesPerTask) {
            WaitingRuns waiting;
            for (const char* run : {"1a", "2a", "1b", "2b", "2c"}) {
                Placement placement;
                placement.framesPerTask = framesPerTask;
                waiting.Add({QLatin1String(run), {}, "povray"_s, run[0] - '0', placement});
            }
            QStringList all;
            for (const auto& batch : waiting.TakeBatches(1)) {
                QString runs;
                for (const WaitingRun& run : batch)
                    runs += run.id;
                all.append(runs);
            }
            return waiting.IsEmpty() ? all.join(u' ') : QString();
        };
        QCOMPARE(batches(1), "1a 2a 1b 2b 2c"_s);
        QCOMPARE(batches(2), "1a1b 2a2b 2c"_s);
        // An earlier farm may have mixed them.
        RunBook book(std::chrono::seconds {60});
        Batch batch = TwoRuns();
        batch.placement.framesPerTask = 2;
        book.Add(batch, {{"/a"_s}, {"/b"_s}}, {"r1"_s, "r2"_s});
        book.SetJob(batch.name, "7"_s);
        book.Cancel("r1"_s);
        QCOMPARE(book.TakeTasksToCancel(), QStringList());
        book.Cancel("r2"_s);
        QCOMPARE(book.TakeTasksToCancel(), QStringList {"7_1"_s});
    }

    void LeavesOutNodesThatFailBeforeAFrameBegins()
    {
        NodeHealth health;
        const auto now = NodeHealth::Clock::now();
        const auto later = now + NodeHealth::LeftOutFor;
        const auto note = [&](const char* node, RunEnd end, const char* type = "blender") {
            return health.Note(QLatin1String(type), QLatin1String(node), {end, "no lamp"_s, {}, 0, {}}, now);
        };
        QVERIFY(!note("n1", RunEnd::FarmFault) && !note("n1", RunEnd::Preempted));
        QVERIFY(!note("n1", RunEnd::FarmFault) && !note("n1", RunEnd::Done, "povray"));
        QVERIFY(note("n1", RunEnd::FarmFault) && !note("", RunEnd::FarmFault));
        // The fault may be everywhere.
        QCOMPARE(health.LeftOut("blender"_s, now), QStringList());
        QVERIFY(!note("n2", RunEnd::SceneFault));
        QCOMPARE(health.LeftOut("blender"_s, now), QStringList {"n1"_s});
        QCOMPARE(health.AllLeftOut(now).size(), std::size_t(1));
        QCOMPARE(health.AllLeftOut(now)["n1"_s], (std::map<QString, QString> {{"blender"_s, "no lamp"_s}}));
        QCOMPARE(health.LeftOut("povray"_s, now), QStringList());
        QCOMPARE(health.LeftOut("blender"_s, later), QStringList());
        QVERIFY(!note("n1", RunEnd::Done) && !note("n1", RunEnd::FarmFault));
        QCOMPARE(health.LeftOut("blender"_s, now), QStringList());
    }

    void SendsLittleAheadOfWhatTheClusterRenders_data() { AddRows(Loads); }
    void SendsLittleAheadOfWhatTheClusterRenders()
    {
        const auto& [name, running, waiting, hold] = Row(Loads);
        RunBook book(std::chrono::seconds {60});
        Batch batch {"quillstar-1-x"_s, {}, {}, {}, 0};
        std::vector<ClusterTask> tasks;
        for (int i = 1; i <= running + waiting; ++i) {
            batch.runs.push_back(QString::number(i));
            tasks.push_back(Task(i, i <= running ? "RUNNING" : "PENDING"));
        }
        book.Add(batch, std::vector<RunFiles>(batch.runs.size()), {batch.runs.begin(), batch.runs.end()});
        book.Update(tasks, RunBook::Clock::now());
        QCOMPARE(book.RunsToHold(), hold);
    }

    void SaysWhyTasksWait()
    {
        RunBook book(std::chrono::seconds {60});
        book.Add(TwoRuns(), {{"/a"_s}, {"/b"_s}}, {"r1"_s, "r2"_s});
        for (const auto& [state, reason, sentence] : {std::tuple("RUNNING", "Priority", ""),
                 {"RUNNING", "PartitionDown", "partition of the cluster is down"},
                 {"RUNNING", "JobHeldAdmin", "held on the cluster"}, {"RUNNING", "AssocGrpCpuLimit", ""},
                 {"PENDING", "AssocGrpCpuLimit", "limit of the account"}, {"PENDING", "Licenses", "licences"},
                 {"PENDING", "QOSNotAllowed", "may not use the QOS"}, {"PENDING", "Resources", ""}}) {
            ClusterTask task = Task(2, "PENDING");
            task.reason = QLatin1String(reason);
            book.Update({Task(1, state), task}, RunBook::Clock::now());
            const QString hindrance = book.HindranceOf({});
            QCOMPARE(hindrance.isEmpty(), *sentence == '\0');
            QVERIFY2(hindrance.contains(QLatin1String(sentence)), qPrintable(hindrance));
        }
    }

    // It does not wait for the cluster, which may be down.
    void ARunThatWasDoneWhileNoFarmRanEndsAtOnce()
    {
        RunBook book(std::chrono::seconds {60});
        book.Add(TwoRuns(), {{"/a"_s}, {"/b"_s}}, {"r1"_s, "r2"_s});
        QCOMPARE(book.FirstLooks().size(), std::size_t(2));
        for (const auto& [run, end] : {std::pair("r1"_s, RunEnd::Done), {"r2"_s, RunEnd::Cancelled}}) {
            RunFinding finding;
            finding.run = run;
            finding.outcome = RunResult {end, {}, {}, 1234, {}};
            const auto result = book.TakeEnd(finding, RunBook::Clock::now());
            QCOMPARE(result.has_value(), end == RunEnd::Done);
            QCOMPARE(book.Has(run), end != RunEnd::Done);
        }
    }

    void GivesUpARunOnlyAfterClosingIt()
    {
        const QTemporaryDir folder;
        for (const bool hasBegun : {false, true}) {
            const QString place = folder.filePath(hasBegun ? "b"_s : "a"_s);
            QVERIFY(QDir().mkpath(place));
            if (hasBegun)
                QVERIFY(WriteFile(place + "/started"_s, "n2 1234\n"));
            RunBook book(std::chrono::seconds {60});
            book.Add({"quillstar-1-x"_s, {}, {"r1"_s}}, {{place}}, {"r1"_s});
            auto now = RunBook::Clock::now();
            book.Update({}, now);
            RunFinding finding = Look(book.Looks(now).at(0));
            QVERIFY(!book.TakeEnd(finding, now));
            now += std::chrono::minutes {2};
            book.Update({}, now);
            finding = Look(book.Looks(now).at(0));
            QCOMPARE(finding.isClosed, !hasBegun);
            QCOMPARE(book.MarkStarted(finding), hasBegun);
            QVERIFY(QFile::exists(place + "/started"_s));
            const auto end = book.TakeEnd(finding, now);
            QVERIFY(end && end->end == RunEnd::MachineLost);
            QCOMPARE(end->host, hasBegun ? "n2"_s : QString());
            QCOMPARE(book.TakeEmptyBatches(), QStringList {"quillstar-1-x"_s});
        }
    }
};

QTEST_GUILESS_MAIN(SlurmTest)
#include "tst_farm_slurm.moc"
