#include "farm/slurm/run_end_rules.h"

#include <QMap>

namespace farm {

namespace {

bool IsOneOf(const QString& state, std::initializer_list<const char*> states)
{
    for (const char* one : states) {
        if (state == QLatin1String(one))
            return true;
    }
    return false;
}

/// Whether the run ended for the reason that quillstar-run-frame reports. When Slurm ends a task, it also signals the
/// renderer, which then seems to have failed; only Slurm knows why it ended the task.
bool IsTrue(const RunResult& outcome, const std::optional<ClusterTask>& task)
{
    if (outcome.end == RunEnd::Done || outcome.end == RunEnd::Cancelled)
        return outcome.end == RunEnd::Done;
    return !task || IsOneOf(task->state, {"COMPLETED", "FAILED"})
        || (PhaseOf(task->state) == TaskPhase::Running && task->state != QLatin1String("COMPLETING"));
}

QString NodeOf(const RunEvidence& evidence)
{
    if (evidence.outcome && !evidence.outcome->host.isEmpty())
        return evidence.outcome->host;
    return evidence.task ? evidence.task->node : QString();
}

/// @param message may name the node as %1.
RunResult Result(const RunEvidence& evidence, RunEnd end, const QString& message)
{
    RunResult result = evidence.outcome.value_or(RunResult {});
    result.end = end;
    result.host = NodeOf(evidence);
    const QString node
        = result.host.isEmpty() ? QStringLiteral("its node") : QStringLiteral("node ") + result.host;
    result.message = QString(message).replace(QLatin1String("%1"), node);
    return result;
}

/// The end of a run whose task has ended in a state that says why.
std::optional<RunResult> EndByState(const RunEvidence& evidence)
{
    struct Meaning
    {
        RunEnd end;
        QString message;
        /// Whether the frame being rendered is to blame, so that the other frames of the task only have to wait for
        /// another task.
        bool concernsFrame;
    };
    static const QMap<QString, Meaning> meanings {
        {QStringLiteral("NODE_FAIL"), {RunEnd::MachineLost, QStringLiteral("%1 failed"), false}},
        {QStringLiteral("BOOT_FAIL"), {RunEnd::MachineLost, QStringLiteral("%1 did not boot"), false}},
        {QStringLiteral("PREEMPTED"),
            {RunEnd::Preempted, QStringLiteral("another job of the cluster took the place on %1"), false}},
        {QStringLiteral("TIMEOUT"),
            {RunEnd::TimeLimit, QStringLiteral("the renderer exceeded its time limit"), true}},
        {QStringLiteral("DEADLINE"),
            {RunEnd::Cancelled, QStringLiteral("the cluster's deadline for the task has passed"), false}},
        {QStringLiteral("OUT_OF_MEMORY"),
            {RunEnd::SceneFault, QStringLiteral("the renderer needs more memory than it may use on %1"),
                true}},
        {QStringLiteral("CANCELLED"),
            {RunEnd::Cancelled, QStringLiteral("the task was cancelled on the cluster"), false}},
    };
    const auto meaning = meanings.constFind(evidence.task->state);
    if (meaning == meanings.cend())
        return std::nullopt;
    if (meaning->concernsFrame && !evidence.wasStarted)
        return Result(evidence, RunEnd::MachineLost, QStringLiteral("the task ended before the frame began"));
    return Result(evidence, meaning->end, meaning->message);
}

/// The end of a run whose task has ended without saying anything about it.
RunResult EndWithoutOutcome(const RunEvidence& evidence)
{
    if (!evidence.task)
        return Result(
            evidence, RunEnd::MachineLost, QStringLiteral("the cluster does not know the task any more"));
    if (evidence.outcome)
        return Result(evidence, RunEnd::MachineLost, QStringLiteral("the renderer was ended on %1"));
    if (!evidence.wasStarted)
        return Result(evidence, RunEnd::FarmFault,
            QStringLiteral("%1 did not begin the frame; it may not see the farm's shared folder"));
    const QString cause = evidence.complaint.isEmpty()
        ? QStringLiteral("the shared folder may be full or not writable there")
        : evidence.complaint;
    return Result(evidence, RunEnd::FarmFault, QStringLiteral("%1 reported no result: ") + cause);
}

} // namespace

TaskPhase PhaseOf(const QString& state)
{
    if (IsOneOf(state,
            {"PENDING", "CONFIGURING", "REQUEUED", "REQUEUE_FED", "REQUEUE_HOLD", "RESV_DEL_HOLD",
                "SPECIAL_EXIT"}))
        return TaskPhase::Queued;
    if (IsOneOf(state,
            {"COMPLETED", "FAILED", "CANCELLED", "TIMEOUT", "DEADLINE", "NODE_FAIL", "BOOT_FAIL", "PREEMPTED",
                "OUT_OF_MEMORY", "REVOKED"}))
        return TaskPhase::Ended;
    return TaskPhase::Running;
}

std::optional<RunResult> EndOf(const RunEvidence& evidence)
{
    if (evidence.outcome && IsTrue(*evidence.outcome, evidence.task)) {
        RunResult result = *evidence.outcome;
        result.host = NodeOf(evidence);
        if (result.end == RunEnd::FarmFault)
            return Result(evidence, result.end, QStringLiteral("on %1, ") + result.message);
        return result;
    }
    if (evidence.task && PhaseOf(evidence.task->state) != TaskPhase::Ended)
        return std::nullopt;
    if (evidence.isCancelWanted)
        return Result(evidence, RunEnd::Cancelled, {});
    if (evidence.task) {
        const auto result = EndByState(evidence);
        if (result)
            return result;
    }
    if (!evidence.isLate)
        return std::nullopt;
    return EndWithoutOutcome(evidence);
}

} // namespace farm
