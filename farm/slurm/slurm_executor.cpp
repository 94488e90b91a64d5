#include "farm/slurm/slurm_executor.h"

#include "farm/slurm/command_fault.h"
#include "farm/slurm/earlier_batches.h"

#include <QStandardPaths>

#include <spdlog/spdlog.h>

#include <algorithm>
#include <utility>

namespace farm {

namespace {

// Frames that one click puts to work are gathered for this long, so that they share batches.
constexpr std::chrono::milliseconds Gather {300};
// Slurm's default of MaxArraySize is 1001.
constexpr int LargestBatch = 1000;
// After a failure, sbatch is tried again after this many intervals.
constexpr int RestAfterFault = 3;
// The most tasks that one scancel names, so that its command line does not become too long.
constexpr int TasksPerCancel = 1000;

} // namespace

SlurmExecutor::SlurmExecutor(const SlurmSettings& settings, const JobTypes& types, NodeBoard& nodes)
    : m_settings(settings)
    , m_types(types)
    , m_lists(settings.folder)
    , m_commands(settings.commandTimeout)
    , m_probe(settings, m_commands)
    , m_book(settings.fileDelay)
    , m_nodes(settings, types, {m_commands, m_health, nodes})
{
    for (const char* program : {"sbatch", "squeue", "scancel", "scontrol"}) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
            throw std::runtime_error(std::string("rendering on a Slurm cluster needs the program ") + program
                + ", which is missing (Debian: slurm-client)");
    }
    m_lists.MakeFolder();
    qRegisterMetaType<std::vector<RunLook>>();
    qRegisterMetaType<std::vector<RunFinding>>();
    for (QTimer* timer : {&m_turn, &m_cancel, &m_report})
        timer->setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, &SlurmExecutor::RunTurn);
    connect(&m_cancel, &QTimer::timeout, this, &SlurmExecutor::CancelTasks);
    connect(&m_report, &QTimer::timeout, this, &SlurmExecutor::ReportEnds);
    connect(&m_probe, &RendererProbe::Changed, this, &Executor::AvailabilityChanged);
    connect(&m_probe, &RendererProbe::Warned, this,
        [](const QString& warning) { spdlog::warn("{}", warning.toStdString()); });
    m_folders.moveToThread(&m_folderThread);
    connect(this, &SlurmExecutor::LookWanted, &m_folders, &RunFolders::LookAt);
    connect(&m_folders, &RunFolders::Looked, this, &SlurmExecutor::HandleFindings);
    m_folderThread.start();
}

SlurmExecutor::~SlurmExecutor()
{
    SlurmExecutor::Stop();
    m_folderThread.quit();
    m_folderThread.wait();
}

Availability SlurmExecutor::Has(const JobType& type)
{
    const Availability availability = m_probe.Has(type.program, PlacementFor(m_settings, type));
    if (availability != Availability::Present)
        TakeTurn();
    return availability;
}

QString SlurmExecutor::HindranceOf(const JobType& type) const
{
    for (const auto& entry : m_faults) {
        if (!entry.second.isEmpty())
            return entry.second;
    }
    const Placement placement = PlacementFor(m_settings, type);
    const QString fault = m_probe.HindranceOf(type.program, placement);
    return fault.isEmpty() ? m_book.HindranceOf(placement) : fault;
}

void SlurmExecutor::Start(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        Placement placement = PlacementFor(m_settings, m_types.value(run.task.type));
        placement.resources = run.order.resources;
        m_waiting.Add({run.id, run.order.files, run.task.type, run.task.key.job, placement});
    }
    TakeTurn();
}

void SlurmExecutor::Cancel(const RunId& run)
{
    if (m_waiting.Remove(run)) {
        EndLater(run, RunEnd::Cancelled, {});
        return;
    }
    m_book.Cancel(run);
    m_cancel.start(Gather);
}

void SlurmExecutor::Attach(const std::vector<RecordedRun>& runs)
{
    const auto batches = EarlierBatches(m_lists, runs, m_settings, m_types);
    for (const EarlierBatch& earlier : batches) {
        if (earlier.held.empty())
            m_strangers.append(earlier.batch.name);
        else
            m_book.Add(earlier.batch, earlier.files, earlier.held);
    }
    for (const RecordedRun& run : runs) {
        if (m_book.Has(run.id))
            continue;
        // Its list is written before the batch is submitted and removed when all runs have ended.
        const RunFinding finding = Look({run.id, run.files, true, true});
        if (finding.outcome)
            m_ends.emplace_back(run.id, *finding.outcome);
        else
            EndLater(
                run.id, RunEnd::MachineLost, QStringLiteral("the frame had not been sent to the cluster"));
    }
    m_report.start(std::chrono::milliseconds {0});
    // The first turn only looks at the files: runs that ended while no farm ran need no answer from the cluster.
    m_isInTurn = true;
    emit LookWanted(m_book.FirstLooks());
}

void SlurmExecutor::Stop()
{
    for (QTimer* timer : {&m_turn, &m_cancel, &m_report})
        timer->stop();
    m_commands.Stop();
    m_isStopped = true;
}

void SlurmExecutor::EndLater(const RunId& run, RunEnd end, const QString& message)
{
    RunResult result;
    result.end = end;
    result.message = message;
    m_ends.emplace_back(run, result);
    m_report.start(std::chrono::milliseconds {0});
}

void SlurmExecutor::ReportEnds()
{
    for (const auto& [run, result] : std::exchange(m_ends, {}))
        emit Ended(run, result);
    if (std::exchange(m_hasOtherFaults, false))
        emit AvailabilityChanged();
}

void SlurmExecutor::Complain(const QString& thing, const QString& fault)
{
    if (std::exchange(m_faults[thing], fault) == fault)
        return;
    if (fault.isEmpty())
        spdlog::info("{} works again", thing.toStdString());
    else
        spdlog::error("frames wait for the cluster: {}", fault.toStdString());
    m_hasOtherFaults = true;
    m_report.start(std::chrono::milliseconds {0});
}

/// Begins a turn as soon as the interval since the last one is over.
void SlurmExecutor::TakeTurn()
{
    if (m_isInTurn || m_turn.isActive())
        return;
    const auto sinceLast
        = std::chrono::duration_cast<std::chrono::milliseconds>(RunBook::Clock::now() - m_lastTurn);
    m_turn.start(std::max(Gather, m_settings.interval - sinceLast));
}

// A turn submits, asks Slurm about all jobs, and looks at the files of those that have begun or ended. The commands run
// one after another, so the query includes what has just been submitted. The query about the runs comes before the jobs
// of the probe, which find out what else the cluster can render.
void SlurmExecutor::RunTurn()
{
    m_isInTurn = true;
    m_lastTurn = RunBook::Clock::now();
    if (m_arraySize == 0)
        LearnLimits();
    CancelTasks();
    if (m_lastTurn >= m_submitAgain)
        SubmitWaiting();
    const bool hasWork = !m_book.IsEmpty();
    if (hasWork)
        AskQueue();
    m_probe.Submit();
    if (!hasWork && (m_probe.IsWaiting() || !m_strangers.isEmpty()))
        AskQueue();
    else if (!hasWork)
        EndTurn();
}

void SlurmExecutor::EndTurn()
{
    m_isInTurn = false;
    const bool hasWork = !m_book.IsEmpty() || !m_waiting.IsEmpty() || m_probe.IsWaiting() || m_probe.IsDue()
        || !m_strangers.isEmpty();
    if (hasWork)
        TakeTurn();
}

void SlurmExecutor::LearnLimits()
{
    m_commands.Run({QStringLiteral("scontrol"), {QStringLiteral("show"), QStringLiteral("config")}, {},
        [this](const CommandResult& result) {
            if (!result.IsOk())
                return; // squeue will fail and report it
            const ClusterLimits limits = ReadLimits(result.output);
            m_arraySize = limits.arraySize;
            m_hasAccounting = limits.hasAccounting;
            const QStringList warnings = Warnings(limits, m_settings);
            for (const QString& warning : warnings)
                spdlog::warn("{}", warning.toStdString());
        }});
}

void SlurmExecutor::AskQueue()
{
    m_commands.Run({QStringLiteral("squeue"),
        {QStringLiteral("--me"), QStringLiteral("--noheader"), QStringLiteral("--array"),
            QStringLiteral("--states=all"), QStringLiteral("--format=") + QLatin1String(QueueFormat)},
        {}, [this](const CommandResult& result) { HandleQueue(result); }});
}

void SlurmExecutor::HandleQueue(const CommandResult& result)
{
    const QString program = QStringLiteral("squeue");
    Complain(program, result.IsOk() ? QString() : FaultText(program, result));
    if (!result.IsOk())
        return EndTurn();
    const std::vector<ClusterTask> tasks = ReadQueue(result.output);
    m_probe.Update(tasks);
    m_book.Update(tasks, RunBook::Clock::now());
    CancelStrangers(tasks);
    const QStringList lost = m_book.LostSubmissions();
    for (const QString& batch : lost)
        TakeBack(batch);
    if (m_hasAccounting && !m_book.GoneBatches().isEmpty())
        AskAccounting();
    else
        LookAtRuns();
}

void SlurmExecutor::AskAccounting()
{
    m_commands.Run({QStringLiteral("sacct"),
        {QStringLiteral("--noheader"), QStringLiteral("--parsable2"), QStringLiteral("--allocations"),
            QStringLiteral("--starttime=now-7days"),
            QStringLiteral("--name=") + m_book.GoneBatches().join(QLatin1Char(',')),
            QStringLiteral("--format=") + QLatin1String(AccountingFormat)},
        {}, [this](const CommandResult& result) {
            if (result.IsOk())
                m_book.AddAccounts(ReadAccounting(result.output));
            LookAtRuns();
        }});
}

void SlurmExecutor::LookAtRuns()
{
    const std::vector<RunLook> looks = m_book.Looks(RunBook::Clock::now());
    if (looks.empty())
        EndTurn();
    else
        emit LookWanted(looks);
}

void SlurmExecutor::HandleFindings(const std::vector<RunFinding>& findings)
{
    if (m_isStopped)
        return;
    for (const RunFinding& finding : findings) {
        if (m_book.MarkStarted(finding))
            emit Started(finding.run, finding.node, finding.startedAt);
        const auto [type, node] = m_book.TypeAndNodeOf(finding);
        const auto end = m_book.TakeEnd(finding, RunBook::Clock::now());
        if (!end)
            continue;
        m_ends.emplace_back(finding.run, *end);
        if (m_health.Note(type, node, *end, RunBook::Clock::now()))
            spdlog::error(
                "frames of type {} fail on node {} before they begin: {}; the farm leaves it out for ten "
                "minutes when another node renders them",
                type.toStdString(), node.toStdString(), end->message.toStdString());
    }
    const QStringList empty = m_book.TakeEmptyBatches();
    ReportEnds();
    for (const QString& batch : empty)
        m_lists.Remove(batch);
    EndTurn();
}

void SlurmExecutor::SubmitWaiting()
{
    const int most = std::min(LargestBatch, m_arraySize > 1 ? m_arraySize - 1 : LargestBatch);
    for (const std::vector<WaitingRun>& runs : m_waiting.TakeBatches(most))
        Submit(runs);
}

void SlurmExecutor::Submit(const std::vector<WaitingRun>& runs)
{
    const WaitingRun& first = runs.front();
    Batch batch {NewBatchName(first.placement.framesPerTask), first.placement, {}, first.type, first.job};
    std::vector<RunFiles> files;
    QStringList folders;
    for (const WaitingRun& run : runs) {
        batch.runs.push_back(run.id);
        files.push_back(run.files);
        folders.append(run.files.folder);
    }
    try {
        m_lists.Write(batch.name, folders);
    } catch (const std::runtime_error& error) {
        for (const WaitingRun& run : runs)
            m_waiting.Add(run);
        return Complain(m_settings.folder, QString::fromUtf8(error.what()));
    }
    Complain(m_settings.folder, {});
    m_book.Add(batch, files, {batch.runs.begin(), batch.runs.end()});
    const QStringList leftOut = m_health.LeftOut(batch.type, RunBook::Clock::now());
    m_commands.Run({QStringLiteral("sbatch"), SubmitArguments(batch, leftOut),
        BatchScript(batch.placement.framesPerTask, m_lists.File(batch.name), m_settings.runner),
        [this, name = batch.name](const CommandResult& result) { HandleSubmission(name, result); }});
}

void SlurmExecutor::HandleSubmission(const QString& batch, const CommandResult& result)
{
    const QString program = QStringLiteral("sbatch");
    if (result.IsOk()) {
        m_book.SetJob(batch, QString::fromLatin1(result.output).section(QLatin1Char(';'), 0, 0).trimmed());
        return Complain(program, {});
    }
    const QString fault = FaultText(program, result);
    // A refusal concerns only the types with this placement.
    const CommandFault kind = FaultOf(result);
    Complain(program, kind == CommandFault::Refused ? QString() : fault);
    switch (kind) {
    case CommandFault::InDoubt:
        return m_book.Doubt(batch);
    case CommandFault::Refused:
        m_probe.Withdraw(m_book.BatchOf(batch).placement, fault);
        m_health.Forget(m_book.BatchOf(batch).type);
        return TakeBack(batch, fault);
    case CommandFault::Unreachable:
        m_submitAgain = RunBook::Clock::now() + RestAfterFault * m_settings.interval;
        return TakeBack(batch);
    }
}

void SlurmExecutor::TakeBack(const QString& name, const QString& refusal)
{
    const Batch batch = m_book.BatchOf(name);
    for (const RunBook::Returned& run : m_book.Remove(name)) {
        if (run.isCancelWanted)
            EndLater(run.id, RunEnd::Cancelled, {});
        else if (!refusal.isEmpty())
            EndLater(run.id, RunEnd::FarmFault, refusal);
        else
            m_waiting.Add({run.id, run.files, batch.type, batch.job, batch.placement});
    }
    m_lists.Remove(name);
}

void SlurmExecutor::CancelTasks()
{
    const QStringList tasks = m_book.TakeTasksToCancel();
    for (int first = 0; first < tasks.size(); first += TasksPerCancel) {
        const QStringList some = tasks.mid(first, TasksPerCancel);
        m_commands.Run(
            {QStringLiteral("scancel"), some, {}, [this, some](const CommandResult& result) {
                 // scancel refuses tasks that have ended, which is fine.
                 const bool hasReached = result.IsOk()
                     || (result.end == CommandResult::End::Exited && !result.errors.contains("contact"));
                 if (!hasReached)
                     m_book.CancelAgain(some);
             }});
    }
}

/// Cancels tasks from before the restart that nobody wants any more.
void SlurmExecutor::CancelStrangers(const std::vector<ClusterTask>& tasks)
{
    const QStringList strangers = std::exchange(m_strangers, {});
    for (const QString& name : strangers) {
        const bool isThere = std::any_of(
            tasks.begin(), tasks.end(), [&name](const ClusterTask& task) { return task.batch == name; });
        if (isThere)
            m_commands.Run({QStringLiteral("scancel"),
                {QStringLiteral("--me"), QStringLiteral("--name=") + name}, {}, [](const CommandResult&) {}});
        m_lists.Remove(name);
    }
}

} // namespace farm
