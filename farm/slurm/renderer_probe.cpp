#include "farm/slurm/renderer_probe.h"

#include "farm/base/local_time.h"
#include "farm/base/random.h"
#include "farm/slurm/command_fault.h"
#include "farm/slurm/pending_reason.h"
#include "farm/slurm/run_end_rules.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace farm {

namespace {

constexpr int TryEvery = 60;          // intervals
constexpr int AskAgain = 6;           // intervals after a refusal, which costs the cluster next to nothing
constexpr qint64 ClockTolerance = 60; // s

} // namespace

RendererProbe::RendererProbe(const SlurmSettings& settings, ClusterCommands& commands)
    : m_settings(settings)
    , m_commands(commands)
{
}

Availability RendererProbe::Has(const QString& program, const Placement& placement)
{
    return m_states[{program, placement}].availability;
}

QString RendererProbe::HindranceOf(const QString& program, const Placement& placement) const
{
    const auto known = m_states.find({program, placement});
    return known == m_states.end() ? QString() : known->second.fault;
}

void RendererProbe::Withdraw(const Placement& placement, const QString& fault)
{
    for (auto& [question, state] : m_states) {
        const auto& asked = question.second;
        if (asked < placement || placement < asked)
            continue;
        Conclude(state, Availability::Missing, fault);
        state.nextTry = Clock::now() + AskAgain * m_settings.interval;
    }
}

bool RendererProbe::IsWaiting() const
{
    return std::any_of(
        m_states.begin(), m_states.end(), [](const auto& entry) { return !entry.second.job.isEmpty(); });
}

bool RendererProbe::IsDue(const State& state)
{
    return state.availability != Availability::Present && state.job.isEmpty()
        && Clock::now() >= state.nextTry;
}

bool RendererProbe::IsDue() const
{
    return std::any_of(
        m_states.begin(), m_states.end(), [](const auto& entry) { return IsDue(entry.second); });
}

void RendererProbe::Submit()
{
    for (auto& [question, state] : m_states) {
        if (!IsDue(state))
            continue;
        state.job = ClusterJobPrefix() + QStringLiteral("probe-") + NewId();
        state.isSubmitted = false;
        state.submittedAt = Now();
        state.overSince.reset();
        Batch batch {state.job, question.second, {QStringLiteral("probe")}};
        batch.placement.resources.timeLimit = std::chrono::seconds {60};
        m_commands.Run({QStringLiteral("sbatch"), SubmitArguments(batch), Script(question.first, state.job),
            [this, asked = question](const CommandResult& result) { HandleSubmission(asked, result); }});
    }
}

QByteArray RendererProbe::Script(const QString& program, const QString& job) const
{
    const QString answer = AnswerFile(job);
    return QStringLiteral("#!/bin/sh\n"
                          "PATH=${PATH:-/usr/local/bin:/usr/bin:/bin}\n"
                          "{\n"
                          "    echo \"$SLURMD_NODENAME $(date +%s)\"\n"
                          "    command -v %1 >/dev/null && echo renderer\n"
                          "    command -v %2 >/dev/null && echo runner\n"
                          "    echo end\n"
                          "} >%3.new && mv %3.new %3\n")
        .arg(Quoted(program), Quoted(m_settings.runner), Quoted(answer))
        .toUtf8();
}

QString RendererProbe::AnswerFile(const QString& job) const
{
    return QDir(m_settings.folder).absoluteFilePath(job);
}

void RendererProbe::HandleSubmission(const Question& question, const CommandResult& result)
{
    State& state = m_states[question];
    if (result.IsOk() || FaultOf(result) == CommandFault::InDoubt) {
        state.isSubmitted = true;
        return;
    }
    const QString fault = FaultText(QStringLiteral("sbatch"), result);
    const bool isRefused = FaultOf(result) == CommandFault::Refused;
    Conclude(state, isRefused ? Availability::Missing : state.availability, fault);
    state.nextTry = Clock::now() + (isRefused ? AskAgain : 1) * m_settings.interval;
}

void RendererProbe::Update(const std::vector<ClusterTask>& tasks)
{
    for (auto& [question, state] : m_states) {
        if (!state.isSubmitted || ReadAnswer(question, state))
            continue;
        const QString& job = state.job;
        const auto task = std::find_if(
            tasks.begin(), tasks.end(), [&job](const ClusterTask& one) { return one.batch == job; });
        if (task != tasks.end() && PhaseOf(task->state) != TaskPhase::Ended) {
            Note(state, state.availability, HindranceIn(task->reason));
            continue;
        }
        if (!state.overSince)
            state.overSince = Clock::now();
        if (Clock::now() - *state.overSince < m_settings.fileDelay)
            continue;
        const QString node
            = task != tasks.end() ? QStringLiteral("node ") + task->node : QStringLiteral("a node");
        Conclude(state, Availability::Missing,
            QStringLiteral("%1 does not see the farm's folder %2, or may not write there")
                .arg(node, m_settings.folder));
    }
}

bool RendererProbe::ReadAnswer(const Question& question, State& state)
{
    QFile file(AnswerFile(state.job));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QStringList lines = QString::fromUtf8(file.read(4096)).split(QLatin1Char('\n'));
    file.remove();
    const QString node = lines[0].section(QLatin1Char(' '), 0, 0);
    const qint64 time = lines[0].section(QLatin1Char(' '), 1).toLongLong();
    if (time < state.submittedAt - ClockTolerance || time > Now() + ClockTolerance)
        emit Warned(QStringLiteral("the clocks of node %1 and of this machine are apart (%2 there, %3 here)")
                        .arg(node, TimeText(time), TimeText(Now())));
    QString fault;
    if (!lines.contains(QLatin1String("renderer")))
        fault = QStringLiteral("the renderer %1 is not installed on node %2").arg(question.first, node);
    else if (!lines.contains(QLatin1String("runner")))
        fault = QStringLiteral("%1 is not installed on node %2").arg(m_settings.runner, node);
    Conclude(state, fault.isEmpty() ? Availability::Present : Availability::Missing, fault);
    return true;
}

void RendererProbe::Conclude(State& state, Availability availability, const QString& fault)
{
    state.job.clear();
    state.isSubmitted = false;
    state.nextTry = Clock::now() + TryEvery * m_settings.interval;
    Note(state, availability, fault);
}

void RendererProbe::Note(State& state, Availability availability, const QString& fault)
{
    const bool isOther = state.fault != fault || state.availability != availability;
    state.fault = fault;
    state.availability = availability;
    if (isOther)
        emit Changed();
}

} // namespace farm
