// Whose turn it is, and what becomes of a task when one of its stages has ended.
#include "submit_queue.h"
#include "submit_text.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

constexpr int kFirstPauseMs = 500;
constexpr int kMostDoublings = 6; // 32 seconds

} // namespace

void SubmitQueue::Advance()
{
    while (!m_run && !m_pause.isActive()) {
        SubmitTask* task = NextTask();
        if (!task)
            return;
        m_current = task->id;
        if (WaitsForCheck(*task)) {
            task->stage = SubmitStage::Submit;
            Rest(*task, SubmitError::AwaitsUser, QString::fromLatin1(SubmitText::CheckArguments));
            continue;
        }
        Begin(*task);
        return;
    }
}

/// The task whose turn it is, otherwise the first that can go on; null when there is none.
SubmitTask* SubmitQueue::NextTask()
{
    SubmitTask* current = Find(m_current);
    if (current && current->IsRunnable())
        return current;
    for (const QString& id : qAsConst(m_ids)) {
        SubmitTask* task = Find(id);
        if (task && task->IsRunnable())
            return task;
    }
    return nullptr;
}

bool SubmitQueue::WaitsForCheck(const SubmitTask& task) const
{
    // The window lets the arguments of exactly these be edited.
    const QString suffix = QFileInfo(task.scene).suffix();
    return task.next == SubmitStage::Submit && !task.areArgumentsChecked
        && (suffix == QLatin1String("ma") || suffix == QLatin1String("mb")) && m_mustCheck && m_mustCheck();
}

void SubmitQueue::Begin(SubmitTask& task)
{
    if (task.stage != task.next) {
        task.stage = task.next;
        task.progress = 0;
        task.message.clear();
        task.uploadText.clear();
    }
    if (NeedsFarm(task.next) && !m_access.IsOpen()) {
        // The next access brings it forward.
        task.message = QString::fromLatin1(SubmitText::Unreachable);
        task.uploadText = task.message;
        return;
    }
    m_runningStage = task.next;
    m_run = std::make_shared<std::atomic<bool>>(false);
    const StageOrder order {task, m_access, PackageFolder(task.number), m_run};
    emit Ordered([order](SubmitWorker& worker) { worker.Run(order); });
}

void SubmitQueue::ShowProgress(qint64 number, int percent, const QString& text)
{
    SubmitTask* task = Find(IdOf(number));
    if (!task || !task->IsRunnable() || !m_run || *m_run)
        return;
    task->progress = percent;
    task->uploadText = text;
    task->message.clear();
}

void SubmitQueue::TakeOutcome(qint64 number, const StageOutcome& outcome)
{
    m_run.reset();
    if (std::exchange(m_discardAfterRun, false))
        Discard(number);
    SubmitTask* task = Find(IdOf(number));
    if (task && !task->isDone) {
        if (outcome.kind == StageOutcome::Kind::Done)
            StageDone(*task, outcome);
        else if (outcome.kind == StageOutcome::Kind::TryAgain && task->IsRunnable())
            TryLater(*task, outcome);
        else if (outcome.kind == StageOutcome::Kind::Failed && task->IsRunnable())
            StageFailed(*task, outcome);
        else if (outcome.kind == StageOutcome::Kind::Interrupted && NeedsFarm(outcome.stage))
            task->work = outcome.work;
    }
    Advance();
}

void SubmitQueue::StageDone(SubmitTask& task, const StageOutcome& outcome)
{
    m_pauses = 0;
    if (outcome.stage == SubmitStage::Submit) {
        Finish(task, outcome.message);
        return;
    }
    if (outcome.stage == SubmitStage::Analyze) {
        // Arguments that the user has set survive another analysis, and so does the consent to what was missing.
        if (task.arguments.isEmpty())
            task.arguments = outcome.arguments;
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
    m_pauses = outcome.cameForward ? 0 : std::min(m_pauses + 1, kMostDoublings);
    task.work = outcome.work;
    task.next = outcome.next;
    task.message = outcome.message;
    task.uploadText = outcome.message;
    m_pause.start(kFirstPauseMs << m_pauses);
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
