#include "host/rendercore/submit/submit_queue.h"

#include "host/rendercore/submit/scene_analysis.h"
#include "host/rendercore/submit/submit_rules.h"
#include "host/rendercore/submit/submit_text.h"
#include "host/rendercore/submit/task_packages.h"

#include <QDir>
#include <QFileInfo>

#include <memory>

SubmitQueue::SubmitQueue(const QString& folder, QObject* parent)
    : QObject(parent)
    , m_packages(QDir(folder).filePath(QStringLiteral("submit")))
    , m_ledger(folder)
    , m_worker(
          QStringLiteral("submissions"),
          [database = QDir(folder).filePath(QStringLiteral("submissions.sqlite"))] {
              return std::make_unique<SubmitWorker>(database);
          },
          QThread::LowPriority)
{
    m_clock.start();
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &SubmitQueue::Advance);
    connect(&m_ledger, &SubmitLedger::Loaded, this, &SubmitQueue::HandleLoaded);
    connect(&m_ledger, &SubmitLedger::Added, this, &SubmitQueue::HandleAdded);
    connect(&m_ledger, &SubmitLedger::Refused, this, &SubmitQueue::SceneRefused);
    connect(&m_ledger, &SubmitLedger::Replaced, this, &SubmitQueue::HandleReplaced);
    m_ledger.Sweep(m_packages);
}

SubmitQueue::~SubmitQueue()
{
    Interrupt();
}

void SubmitQueue::SetAccess(const FarmAccess& access)
{
    // The token of a session that has ended may be set again before the client has signed out.
    const bool isEnded = !m_endedToken.isEmpty() && access.token == m_endedToken;
    const bool isOtherOwner = m_access.owner != (isEnded ? QString() : access.owner);
    const bool isSame = access.apiRoot == m_access.apiRoot && access.token == m_access.token;
    if (isOtherOwner)
        EndSession();
    else if (!isSame && m_run && NeedsFarm(m_run->stage))
        Interrupt();
    m_access = access;
    if (isEnded) {
        m_access.owner.clear();
        return;
    }
    m_endedToken.clear();
    m_turns.SetFarm(access.IsOpen());
    if (isOtherOwner && !access.owner.isEmpty())
        m_ledger.Begin(access.owner);
    Advance();
}

void SubmitQueue::HandleLoaded(const QVector<SubmitTask>& tasks)
{
    bool hasNew = false;
    for (SubmitTask task : tasks) {
        if (m_tasks.Find(task.number))
            continue;
        SubmitRules::Restore(task);
        Insert(task);
        hasNew = true;
    }
    if (hasNew)
        emit ListChanged();
    for (const SubmitTask& task : tasks)
        Ask(task);
    emit Loaded();
    Advance();
}

void SubmitQueue::Insert(const SubmitTask& task)
{
    m_tasks.Insert(task);
    if (task.IsRunnable())
        m_turns.Add(task.number);
}

/// Asks the user the question that the task waits for.
void SubmitQueue::Ask(const SubmitTask& task)
{
    // Copies, since a receiver may remove the task.
    const QString id = task.id;
    const SubmitRules::Question question = SubmitRules::QuestionOf(task);
    if (question == SubmitRules::Question::RetryUpload)
        emit UploadFailed(id, QStringList(task.refused));
    else if (question == SubmitRules::Question::AcceptMissingFiles)
        emit TexturesLacking(id, TaskMessage::Texts(task.work.missing));
}

SubmitQueue::Answer SubmitQueue::Submit(const QString& scene, int priority)
{
    const QString path = QDir::cleanPath(QFileInfo(scene).absoluteFilePath());
    if (m_access.owner.isEmpty() || KindOfScene(path) == nullptr)
        return Answer::Refused;
    if (m_ledger.IsAdding(path) || m_tasks.HasUnfinished(path))
        return Answer::Known;
    m_ledger.Add(path, priority);
    return Answer::Accepted;
}

void SubmitQueue::HandleAdded(const SubmitTask& task)
{
    if (m_tasks.Find(task.number))
        return;
    Insert(task);
    emit ListChanged();
    Advance();
}

void SubmitQueue::Remove(const QStringList& ids)
{
    const QVector<qint64> numbers = m_tasks.NumbersOf(ids);
    if (numbers.isEmpty())
        return;
    m_ledger.Remove(numbers);
    for (const qint64 number : numbers) {
        if (m_run && number == m_run->task) {
            m_run->discardAfterwards = true;
            Interrupt();
        } else {
            Discard(number);
        }
        m_turns.Remove(number);
        m_tasks.Erase(number);
    }
    emit ListChanged();
    Advance();
}

void SubmitQueue::EndSession()
{
    m_ledger.Remove(m_tasks.Done());
    m_ledger.End();
    m_endedToken = m_access.token;
    m_access.owner.clear();
    Clear();
}

void SubmitQueue::Clear()
{
    Interrupt();
    m_pause.stop();
    const bool hadTasks = !m_tasks.Ids().isEmpty();
    m_tasks.Clear();
    m_turns.Clear();
    if (hadTasks)
        emit ListChanged();
}

void SubmitQueue::HandleReplaced(const QString& keptAs)
{
    Clear();
    emit Notice(tr("The list of submissions could not be read. It is kept as %1, and a new list has begun.")
                    .arg(QDir::toNativeSeparators(keptAs)));
}

void SubmitQueue::StopAll()
{
    QVector<SubmitTask> stopped;
    for (auto& [number, task] : m_tasks.All()) {
        if (!task.IsRunnable() && task.error != SubmitError::AwaitsUser)
            continue;
        SubmitRules::Halt(task, SubmitError::Stopped, SubmitText::Stopped);
        m_turns.Remove(number);
        stopped.append(task);
    }
    m_ledger.Save(stopped);
    Interrupt();
}

void SubmitQueue::ResumeAll()
{
    QVector<SubmitTask> resumed;
    for (auto& [number, task] : m_tasks.All()) {
        if (task.error != SubmitError::Stopped)
            continue;
        SubmitRules::Release(task);
        m_turns.Add(number);
        resumed.append(task);
    }
    m_ledger.Save(resumed);
    Advance();
}

void SubmitQueue::Continue(const QString& id)
{
    SubmitTask* task = m_tasks.Find(id);
    if (!task || task->isDone || task->error == SubmitError::None)
        return;
    SubmitRules::Continue(*task);
    SaveRelease(*task);
}

void SubmitQueue::AnswerUploadFailure(const QString& id, bool tryAgain)
{
    SubmitTask* task = m_tasks.Find(id);
    if (!task || SubmitRules::QuestionOf(*task) != SubmitRules::Question::RetryUpload)
        return;
    if (tryAgain)
        Continue(id);
    else
        Halt(*task, SubmitError::GivenUp, task->message);
}

void SubmitQueue::AnswerMissingTextures(const QString& id, bool goOn)
{
    SubmitTask* task = m_tasks.Find(id);
    if (!task || SubmitRules::QuestionOf(*task) != SubmitRules::Question::AcceptMissingFiles)
        return;
    if (!goOn) {
        Halt(*task, SubmitError::TexturesMissing, SubmitText::NotWithout);
        return;
    }
    task->goesOnWithout = true;
    SubmitRules::Release(*task);
    SaveRelease(*task);
}

void SubmitQueue::SetArguments(const QString& id, const QVariantList& arguments)
{
    SubmitTask* task = m_tasks.Find(id);
    const bool isBeingSent
        = task && m_run && task->number == m_run->task && task->stage == SubmitStage::Submit;
    if (!task || task->isDone || isBeingSent)
        qWarning("ignoring arguments for %s: its job is being submitted", qUtf8Printable(id));
    else if (!SubmitRules::SetArguments(*task, arguments))
        qWarning("ignoring invalid arguments for %s", qUtf8Printable(id));
    else
        m_ledger.Save({*task});
}

void SubmitQueue::Halt(SubmitTask& task, SubmitError error, const TaskMessage& message)
{
    SubmitRules::Halt(task, error, message);
    m_turns.Remove(task.number);
    m_ledger.Save({task});
}

/// Puts a released task back in turn and saves it.
void SubmitQueue::SaveRelease(SubmitTask& task)
{
    m_turns.Add(task.number);
    m_ledger.Save({task});
    Advance();
}

bool SubmitQueue::MustCheckArguments(const SubmitTask& task) const
{
    return task.next == SubmitStage::Submit && !task.areArgumentsChecked
        && SubmitRules::HasEditableArguments(task) && m_mustCheck && m_mustCheck();
}

/// Runs the next stage, unless one is running or every task has to wait.
void SubmitQueue::Advance()
{
    m_pause.stop();
    const auto needsFarm = [this](qint64 number) {
        const SubmitTask& task = *m_tasks.Find(number);
        return NeedsFarm(task.next) && !MustCheckArguments(task) && !SubmitRules::MustAskFirst(task);
    };
    while (!m_run) {
        ShowWaitForFarm();
        const SubmitTurns::Decision decision = m_turns.Next(m_clock.elapsed(), needsFarm);
        if (decision.wait)
            m_pause.start(*decision.wait);
        if (!decision.task)
            return;
        SubmitTask& task = *m_tasks.Find(*decision.task);
        if (MustCheckArguments(task)) {
            task.stage = SubmitStage::Submit;
            Halt(task, SubmitError::AwaitsUser, SubmitText::CheckArguments);
        } else if (SubmitRules::MustAskFirst(task)) {
            SubmitRules::EnterNextStage(task);
            Halt(task, SubmitError::AwaitsUser, TaskMessage::Lines(task.work.missing));
            PostTo(this, [this, number = task.number] {
                if (const SubmitTask* asking = m_tasks.Find(number))
                    Ask(*asking);
            });
        } else {
            Begin(task);
        }
    }
}

/// While the farm cannot be asked, shows the reason on every task whose next stage needs it.
void SubmitQueue::ShowWaitForFarm()
{
    if (m_turns.CanAskFarm())
        return;
    const char* const reason = m_access.IsOpen() ? SubmitText::SessionEnded : SubmitText::Unreachable;
    for (auto& [number, task] : m_tasks.All()) {
        if (!task.IsRunnable() || !NeedsFarm(task.next))
            continue;
        SubmitRules::EnterNextStage(task);
        task.message = task.uploadText = reason;
    }
}

void SubmitQueue::Begin(SubmitTask& task)
{
    SubmitRules::EnterNextStage(task);
    m_run = Run {task.number, task.next, std::make_shared<std::atomic<bool>>(false)};
    const StageRequest request {
        task, m_access, TaskPackages::Folder(m_packages, task.number), m_run->interrupted};
    m_worker.Post([this, request](SubmitWorker& worker) {
        const qint64 number = request.task.number;
        const StageOutcome outcome = worker.Run(request, [this, number](int percent, const QString& text) {
            PostTo(this, [this, number, percent, text] { ShowProgress(number, percent, text); });
        });
        PostTo(this, [this, number, outcome] { HandleOutcome(number, outcome); });
    });
}

void SubmitQueue::ShowProgress(qint64 number, int percent, const QString& text)
{
    SubmitTask* task = m_tasks.Find(number);
    if (!task || !task->IsRunnable() || !m_run || *m_run->interrupted)
        return;
    task->progress = percent;
    task->uploadText = text;
    task->message = SubmitRules::FileList(task->work);
}

void SubmitQueue::HandleOutcome(qint64 number, const StageOutcome& outcome)
{
    const Run run = *m_run;
    m_run.reset();
    if (run.discardAfterwards)
        Discard(number);
    SubmitTask* task = m_tasks.Find(number);
    if (task && !task->isDone)
        ApplyOutcome(*task, outcome, *run.interrupted);
    Advance();
}

void SubmitQueue::ApplyOutcome(SubmitTask& task, const StageOutcome& outcome, bool wasInterrupted)
{
    const bool wasRunnable = task.IsRunnable();
    switch (outcome.kind) {
    case StageOutcome::Kind::Done:
        if (NeedsFarm(outcome.stage))
            m_turns.RecordAnswer(task.number, outcome.advanced);
        SubmitRules::ApplyDone(task, outcome);
        break;
    case StageOutcome::Kind::Failed:
        if (wasRunnable)
            SubmitRules::ApplyFailed(task, outcome);
        break;
    case StageOutcome::Kind::TryAgain:
    case StageOutcome::Kind::Interrupted:
        if (outcome.kind == StageOutcome::Kind::TryAgain && wasRunnable && !wasInterrupted)
            Postpone(task, outcome);
        else if (NeedsFarm(outcome.stage))
            task.work = outcome.work; // the farm keeps the packages that it has received
        break;
    }
    if (outcome.kind == StageOutcome::Kind::Done && outcome.stage == SubmitStage::Checksum)
        m_ledger.Save({task}, true);
    if (task.isDone)
        Discard(task.number);
    if (task.isDone || (wasRunnable && !task.IsRunnable())) {
        m_turns.Remove(task.number);
        m_ledger.Save({task});
        Ask(task);
    }
}

void SubmitQueue::Postpone(SubmitTask& task, const StageOutcome& outcome)
{
    if (outcome.advanced)
        m_turns.RecordAnswer(task.number, true);
    SubmitRules::ApplyTryAgain(task, outcome);
    if (!m_turns.Postpone(task.number, outcome.obstacle, outcome.retryAfter, m_clock.elapsed()))
        SubmitRules::Halt(task, SubmitError::FarmRefused, SubmitText::Failing);
}

void SubmitQueue::Interrupt()
{
    if (m_run)
        *m_run->interrupted = true;
    m_worker.Post([](SubmitWorker& worker) { worker.Interrupt(); });
}

void SubmitQueue::Discard(qint64 number)
{
    m_worker.Post([number, folder = TaskPackages::Folder(m_packages, number)](
                      SubmitWorker& worker) { worker.Discard(number, folder); });
}
