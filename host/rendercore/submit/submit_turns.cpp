// Whose turn it is, and what becomes of a task when one of its stages has ended.
#include "host/rendercore/submit/submit_queue.h"
#include "host/rendercore/submit/submit_text.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

constexpr int kFirstPauseMs = 500;
constexpr int kMostDoublings = 6; // 32 seconds
constexpr int kMostFailures = 7;  // about a minute in all; the next one is the last

/// @param retryAfter seconds that the farm asks for.
int PauseMs(int pauses, int retryAfter)
{
    return std::max(kFirstPauseMs << std::min(pauses, kMostDoublings), retryAfter * 1000);
}

} // namespace

void SubmitQueue::Advance()
{
    while (!m_run) {
        SubmitTask* task = NextTask();
        if (!task)
            return;
        m_turn = task->number;
        m_keepsTurn = true;
        if (!WaitsForCheck(*task)) {
            Begin(*task);
            return;
        }
        task->stage = SubmitStage::Submit;
        Rest(*task, SubmitError::AwaitsUser, QString::fromLatin1(SubmitText::CheckArguments));
    }
}

/// The task whose turn it is, otherwise the next in the circle that can go on. Null when there is none; the pause runs
/// until there is.
SubmitTask* SubmitQueue::NextTask()
{
    m_pause.stop();
    SubmitTask* current = m_keepsTurn ? Find(m_turn) : nullptr;
    if (current && current->IsRunnable() && WaitOf(*current) == 0)
        return current;
    qint64 shortest = -1;
    auto number = m_runnable.upper_bound(m_turn);
    for (std::size_t left = m_runnable.size(); left > 0; --left) {
        if (number == m_runnable.end())
            number = m_runnable.begin();
        SubmitTask& task = m_tasks.at(*number++);
        const qint64 wait = WaitOf(task);
        if (wait == 0)
            return &task;
        if (wait > 0 && (shortest < 0 || wait < shortest))
            shortest = wait;
    }
    if (shortest > 0)
        m_pause.start(static_cast<int>(shortest));
    return nullptr;
}

/// Milliseconds until a task that is runnable may go on; -1 when it waits for another access, which it then tells.
qint64 SubmitQueue::WaitOf(SubmitTask& task) const
{
    if (!NeedsFarm(task.next) || WaitsForCheck(task))
        return 0;
    if (m_access.IsOpen() && !m_isSignedOut)
        return std::max(m_farmPause.remainingTime(), task.notBefore.remainingTime());
    Enter(task);
    task.message = QString::fromLatin1(m_isSignedOut ? SubmitText::SessionEnded : SubmitText::Unreachable);
    task.uploadText = task.message;
    return -1;
}

bool SubmitQueue::WaitsForCheck(const SubmitTask& task) const
{
    // The window lets the arguments of exactly these be edited.
    const QString suffix = QFileInfo(task.scene).suffix();
    return task.next == SubmitStage::Submit && !task.areArgumentsChecked
        && (suffix == QLatin1String("ma") || suffix == QLatin1String("mb")) && m_mustCheck && m_mustCheck();
}

/// Shows a task in the stage that comes next.
void SubmitQueue::Enter(SubmitTask& task)
{
    if (task.stage == task.next)
        return;
    task.stage = task.next;
    task.progress = 0;
    task.message.clear();
    task.uploadText.clear();
}

void SubmitQueue::Begin(SubmitTask& task)
{
    Enter(task);
    m_runningStage = task.next;
    m_run = std::make_shared<std::atomic<bool>>(false);
    const StageOrder order {task, m_access, PackageFolder(task.number), m_run};
    emit Ordered([order](SubmitWorker& worker) { worker.Run(order); });
}

void SubmitQueue::ShowProgress(qint64 number, int percent, const QString& text)
{
    SubmitTask* task = Find(number);
    if (!task || !task->IsRunnable() || !m_run || *m_run)
        return;
    task->progress = percent;
    task->uploadText = text;
    task->message.clear();
}

void SubmitQueue::TakeOutcome(qint64 number, const StageOutcome& outcome)
{
    const InterruptFlag run = std::exchange(m_run, nullptr);
    if (std::exchange(m_discardAfterRun, false))
        Discard(number);
    SubmitTask* task = Find(number);
    if (task && !task->isDone) {
        if (outcome.kind == StageOutcome::Kind::Done)
            StageDone(*task, outcome);
        else if (outcome.kind == StageOutcome::Kind::TryAgain && task->IsRunnable() && run && !*run)
            TryLater(*task, outcome);
        else if (outcome.kind == StageOutcome::Kind::Failed && task->IsRunnable())
            StageFailed(*task, outcome);
        else if (outcome.kind != StageOutcome::Kind::Failed && NeedsFarm(outcome.stage))
            task->work = outcome.work;
    }
    Advance();
}

void SubmitQueue::StageDone(SubmitTask& task, const StageOutcome& outcome)
{
    if (NeedsFarm(outcome.stage))
        m_farmPauses = 0;
    if (outcome.cameForward)
        task.failures = 0;
    if (outcome.stage == SubmitStage::Submit) {
        Finish(task, outcome.message);
        return;
    }
    if (outcome.stage == SubmitStage::Analyze) {
        // Arguments that the user has set survive another analysis, and so does the consent to the scene's own and to
        // what was missing, as long as these are the same.
        if (!task.areArgumentsEdited && task.arguments != outcome.arguments) {
            task.areArgumentsChecked = false;
            task.arguments = outcome.arguments;
        }
        task.goesOnWithout = task.goesOnWithout
            && std::all_of(outcome.work.missing.cbegin(), outcome.work.missing.cend(),
                [&task](const QString& file) { return task.work.missing.contains(file); });
    }
    task.work = outcome.work;
    task.next = outcome.next;
    task.message.clear();
    task.uploadText.clear();
    task.progress = 100;
    if (outcome.stage == SubmitStage::Checksum)
        Keep([&task](SubmitStore& store) { store.SaveWork(task); });
    const bool mustAsk
        = outcome.stage == SubmitStage::CopySame && !task.work.missing.isEmpty() && !task.goesOnWithout;
    if (!mustAsk)
        return;
    task.next = SubmitStage::CopySame;
    if (!task.IsRunnable())
        return;
    Rest(task, SubmitError::AwaitsUser, task.work.missing.join(QLatin1Char('\n')));
    Ask(task);
}

void SubmitQueue::TryLater(SubmitTask& task, const StageOutcome& outcome)
{
    if (outcome.cameForward) {
        task.failures = 0;
        m_farmPauses = 0;
    }
    task.work = outcome.work;
    task.next = outcome.next;
    task.message = outcome.message;
    task.uploadText = outcome.message;
    m_keepsTurn = false;
    MakeWait(task, outcome);
}

void SubmitQueue::MakeWait(SubmitTask& task, const StageOutcome& outcome)
{
    switch (outcome.obstacle) {
    case StageOutcome::Obstacle::Session:
        m_isSignedOut = true;
        return;
    case StageOutcome::Obstacle::Farm:
        m_farmPause.setRemainingTime(PauseMs(m_farmPauses, outcome.retryAfter));
        m_farmPauses = std::min(m_farmPauses + 1, kMostDoublings);
        return;
    case StageOutcome::Obstacle::Request:
        m_farmPauses = 0;
        if (task.failures == kMostFailures) {
            Rest(task, SubmitError::FarmRefused, QString::fromLatin1(SubmitText::Failing));
            return;
        }
        task.notBefore.setRemainingTime(PauseMs(task.failures++, outcome.retryAfter));
    }
}

void SubmitQueue::StageFailed(SubmitTask& task, const StageOutcome& outcome)
{
    if (outcome.stage == SubmitStage::Upload || outcome.stage == SubmitStage::Uncompress) {
        task.work = outcome.work;
        task.refused = outcome.refused;
    }
    // What could not be packed, or not be unpacked by the farm, is looked for and packed anew.
    if (outcome.stage == SubmitStage::Compress || outcome.stage == SubmitStage::Checksum
        || outcome.stage == SubmitStage::Uncompress)
        task.next = SubmitStage::Analyze;
    const QString message = outcome.refused.isEmpty()
        ? outcome.message
        : QString(outcome.message + QLatin1Char('\n') + outcome.refused.join(QLatin1Char('\n')));
    Rest(task, outcome.error, message);
    Ask(task);
}

void SubmitQueue::Finish(SubmitTask& task, const QString& jobNumber)
{
    task.isDone = true;
    task.progress = 100;
    task.stage = SubmitStage::Submit;
    Rest(task, SubmitError::None, QStringLiteral("Submitted as job %1.").arg(jobNumber));
    Discard(task.number);
}
