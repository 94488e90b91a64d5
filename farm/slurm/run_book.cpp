#include "farm/slurm/run_book.h"

#include "farm/slurm/pending_reason.h"
#include "farm/slurm/run_end_rules.h"

namespace farm {

RunBook::RunBook(std::chrono::milliseconds fileDelay)
    : m_fileDelay(fileDelay)
{
}

void RunBook::Add(const Batch& batch, const std::vector<RunFiles>& files, const std::set<RunId>& held)
{
    HeldBatch& added = m_batches[batch.name];
    added.batch = batch;
    for (std::size_t i = 0; i < batch.runs.size(); ++i) {
        if (held.count(batch.runs[i]) == 0)
            continue;
        HeldRun& run = m_runs[batch.runs[i]];
        run.files = files.at(i);
        run.batch = batch.name;
        run.task = batch.TaskOf(static_cast<int>(i));
        ++added.runs;
    }
}

void RunBook::SetJob(const QString& batch, const QString& id)
{
    m_batches.at(batch).job = id;
    m_batches.at(batch).doubts.reset();
}

void RunBook::Doubt(const QString& batch)
{
    m_batches.at(batch).doubts = 0;
}

std::vector<RunBook::Returned> RunBook::Remove(const QString& name)
{
    std::vector<Returned> returned;
    for (const RunId& id : m_batches.at(name).batch.runs) {
        const auto run = m_runs.find(id);
        if (run == m_runs.end())
            continue;
        returned.push_back({id, run->second.files, run->second.isCancelWanted});
        m_runs.erase(run);
    }
    m_batches.erase(name);
    return returned;
}

bool RunBook::HasEnded(const HeldRun& run)
{
    return run.seen && PhaseOf(run.seen->state) == TaskPhase::Ended;
}

void RunBook::Update(const std::vector<ClusterTask>& tasks, Clock::time_point now)
{
    std::map<std::pair<QString, int>, const ClusterTask*> byPlace;
    std::set<QString> known;
    for (const ClusterTask& task : tasks) {
        byPlace[{task.batch, task.index}] = &task;
        known.insert(task.batch);
        const auto batch = m_batches.find(task.batch);
        if (batch != m_batches.end())
            batch->second.job = task.id.section(QLatin1Char('_'), 0, 0);
    }
    for (auto& [name, batch] : m_batches) {
        if (!batch.doubts)
            continue;
        if (known.count(name) != 0)
            batch.doubts.reset();
        else
            ++*batch.doubts;
    }
    for (auto& entry : m_runs) {
        HeldRun& run = entry.second;
        const auto task = byPlace.find({run.batch, run.task});
        run.isGone = task == byPlace.end() && !m_batches.at(run.batch).doubts;
        if (task != byPlace.end())
            run.seen = *task->second;
        if (!IsOver(run))
            run.overSince.reset();
        else if (!run.overSince)
            run.overSince = now;
    }
    FindHindrances();
    CountRunsToHold();
}

void RunBook::FindHindrances()
{
    m_hindrances.clear();
    std::map<Placement, QString> shortages;
    std::set<Placement> running;
    for (const auto& entry : m_runs) {
        const HeldRun& run = entry.second;
        if (!run.seen || IsOver(run))
            continue;
        const Placement& placement = m_batches.at(run.batch).batch.placement;
        const QString hindrance = HindranceIn(run.seen->reason);
        const QString shortage = ShortageIn(run.seen->reason);
        if (PhaseOf(run.seen->state) == TaskPhase::Running)
            running.insert(placement);
        else if (!hindrance.isEmpty())
            m_hindrances.emplace(placement, hindrance);
        else if (!shortage.isEmpty())
            shortages.emplace(placement, shortage);
    }
    for (const auto& [placement, shortage] : shortages) {
        if (running.count(placement) == 0)
            m_hindrances.emplace(placement, shortage);
    }
}

QString RunBook::HindranceOf(const Placement& placement) const
{
    const auto hindrance = m_hindrances.find(placement);
    return hindrance == m_hindrances.end() ? QString() : hindrance->second;
}

void RunBook::AddAccounts(const std::vector<ClusterTask>& tasks)
{
    for (const ClusterTask& task : tasks) {
        // The accounting may lag behind, so only the states of ends count.
        if (PhaseOf(task.state) != TaskPhase::Ended)
            continue;
        for (auto& entry : m_runs) {
            HeldRun& run = entry.second;
            if (run.isGone && run.batch == task.batch && run.task == task.index)
                run.seen = task;
        }
    }
}

QStringList RunBook::GoneBatches() const
{
    std::set<QString> gone;
    for (const auto& entry : m_runs) {
        if (entry.second.isGone)
            gone.insert(entry.second.batch);
    }
    return {gone.begin(), gone.end()};
}

QStringList RunBook::LostSubmissions() const
{
    QStringList lost;
    for (const auto& [name, batch] : m_batches) {
        if (batch.doubts.value_or(0) >= 2)
            lost.append(name);
    }
    return lost;
}

// Only a few runs are sent ahead, because the cluster renders in the order of submission, whoever else submits jobs
// meanwhile. When nothing waits there, the cluster may be able to render many more.
void RunBook::CountRunsToHold()
{
    constexpr int PartAhead = 5;
    int running = 0;
    int waiting = 0;
    for (const auto& entry : m_runs) {
        const HeldRun& run = entry.second;
        const bool isRunning = run.seen && PhaseOf(run.seen->state) == TaskPhase::Running;
        running += int(isRunning && !run.isGone);
        waiting += int(!isRunning && !IsOver(run));
    }
    m_runsToHold = LeastToHold + running + (waiting > 0 ? running / PartAhead : running);
}

void RunBook::Cancel(const RunId& run)
{
    const auto held = m_runs.find(run);
    if (held != m_runs.end())
        held->second.isCancelWanted = true;
}

QStringList RunBook::TakeTasksToCancel()
{
    std::set<std::pair<QString, int>> wanted;
    for (const auto& entry : m_runs) {
        if (!entry.second.isCancelWanted)
            wanted.emplace(entry.second.batch, entry.second.task);
    }
    QStringList tasks;
    for (const auto& entry : m_runs) {
        const HeldRun& run = entry.second;
        const QString job = m_batches.at(run.batch).job;
        const QString task = QStringLiteral("%1_%2").arg(job).arg(run.task);
        if (wanted.count({run.batch, run.task}) == 0 && !job.isEmpty()
            && m_cancelledTasks.insert(task).second)
            tasks.append(task);
    }
    return tasks;
}

void RunBook::CancelAgain(const QStringList& tasks)
{
    for (const QString& task : tasks)
        m_cancelledTasks.erase(task);
}

bool RunBook::IsLate(const HeldRun& run, Clock::time_point now) const
{
    return run.overSince && now - *run.overSince >= m_fileDelay;
}

std::vector<RunLook> RunBook::FirstLooks() const
{
    std::vector<RunLook> looks;
    for (const auto& [id, run] : m_runs)
        looks.push_back({id, run.files, true, false});
    return looks;
}

std::vector<RunLook> RunBook::Looks(Clock::time_point now) const
{
    std::vector<RunLook> looks;
    for (const auto& [id, run] : m_runs) {
        const bool isOver = IsOver(run);
        const bool isRunning = run.seen && !isOver && PhaseOf(run.seen->state) == TaskPhase::Running;
        if (!isOver && !isRunning)
            continue;
        // A task that renders one frame has an outcome when it ends; one that renders several has one after each frame.
        const bool wantsOutcome = isOver || m_batches.at(run.batch).batch.placement.framesPerTask > 1
            || run.seen->state == QLatin1String("COMPLETING");
        if (wantsOutcome || !run.isStarted)
            looks.push_back(
                {id, run.files, wantsOutcome, IsLate(run, now) || (isOver && run.isCancelWanted)});
    }
    return looks;
}

std::pair<QString, QString> RunBook::TypeAndNodeOf(const RunFinding& finding) const
{
    const auto run = m_runs.find(finding.run);
    if (run == m_runs.end())
        return {};
    const bool isTold = finding.node.isEmpty() && run->second.seen;
    return {m_batches.at(run->second.batch).batch.type, isTold ? run->second.seen->node : finding.node};
}

bool RunBook::MarkStarted(const RunFinding& finding)
{
    const auto run = m_runs.find(finding.run);
    if (run == m_runs.end() || run->second.isStarted || finding.node.isEmpty())
        return false;
    run->second.isStarted = true;
    return true;
}

std::optional<RunResult> RunBook::TakeEnd(const RunFinding& finding, Clock::time_point now)
{
    const auto held = m_runs.find(finding.run);
    if (held == m_runs.end())
        return std::nullopt;
    const HeldRun& run = held->second;
    RunEvidence evidence;
    if (!run.isGone || HasEnded(run))
        evidence.task = run.seen;
    const bool isDone = finding.outcome && finding.outcome->end == RunEnd::Done;
    if (!evidence.task && !run.isGone && !isDone)
        return std::nullopt;
    evidence.wasStarted = run.isStarted || !finding.node.isEmpty();
    evidence.outcome = finding.outcome;
    evidence.complaint = finding.complaint;
    evidence.isCancelWanted = run.isCancelWanted;
    evidence.isLate = IsLate(run, now);
    auto end = EndOf(evidence);
    if (!end)
        return std::nullopt;
    if (end->host.isEmpty())
        end->host = finding.node;
    --m_batches.at(run.batch).runs;
    m_runs.erase(held);
    return end;
}

QStringList RunBook::TakeEmptyBatches()
{
    QStringList empty;
    for (auto batch = m_batches.begin(); batch != m_batches.end();) {
        if (batch->second.runs > 0) {
            ++batch;
            continue;
        }
        for (int task = 1; task <= batch->second.batch.TaskCount(); ++task)
            m_cancelledTasks.erase(QStringLiteral("%1_%2").arg(batch->second.job).arg(task));
        empty.append(batch->first);
        batch = m_batches.erase(batch);
    }
    return empty;
}

} // namespace farm
