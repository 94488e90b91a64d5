#pragma once

#include "host/farmclient/farm_access.h"
#include "host/rendercore/submit/stage_outcome.h"
#include "host/rendercore/submit/submit_ledger.h"
#include "host/rendercore/submit/submit_tasks.h"
#include "host/rendercore/submit/submit_turns.h"
#include "host/rendercore/submit/submit_worker.h"
#include "host/rendercore/worker_thread.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariantList>

#include <functional>
#include <optional>
#include <utility>

/// The submissions of the account that is signed in, as the window sees them. Lives on the GUI thread.
///
/// One task at a time goes through its stages, which a worker thread runs one by one. A task that the farm cannot serve
/// at the moment lets the others go first. Another thread writes every change to the disk, in the order in which the
/// changes were made; no function waits for a disk.
class SubmitQueue : public QObject
{
    Q_OBJECT

public:
    /// @param folder holds the database and the packages; created if missing.
    explicit SubmitQueue(const QString& folder, QObject* parent = nullptr);

    /// Aborts the running stage; the next queue on this folder resumes it.
    ~SubmitQueue() override;

    /// Each owner has tasks of their own. Without a farm the tasks wait at their next stage that needs it.
    void SetAccess(const FarmAccess& access);

    /// @param mustCheck whether tasks of Maya scenes wait for the user to check their arguments; asked when one is
    /// about to be submitted.
    void SetArgumentsCheck(std::function<bool()> mustCheck) { m_mustCheck = std::move(mustCheck); }

    const QStringList& Ids() const { return m_tasks.Ids(); }

    /// Null for an unknown id. Valid until control returns to the event loop.
    const SubmitTask* Task(const QString& id) const { return m_tasks.Find(id); }

    enum class Answer {
        Accepted,
        Refused, ///< nobody is signed in, or the file is not a scene
        Known    ///< a task of this scene has not become a job yet
    };

    /// Creates a task for a scene, once its file has been looked at: ListChanged() or SceneRefused() follows.
    Answer Submit(const QString& scene, int priority = 0);

    /// Deletes tasks permanently; the farm discards unfinished uploads by itself.
    void Remove(const QStringList& ids);

    /// Removes the tasks that are done; the others wait until their owner signs in again.
    void EndSession();

    void StopAll();
    void ResumeAll();

    /// Lets a halted task continue, whatever the reason for the halt.
    void Continue(const QString& id);

    void AnswerUploadFailure(const QString& id, bool tryAgain);
    void AnswerMissingTextures(const QString& id, bool goOn);

    /// An invalid width or height falls back to the scene's. Invalid frame ranges are ignored, and so are all arguments
    /// once the job is being submitted.
    void SetArguments(const QString& id, const QVariantList& arguments);

signals:
    /// A task has been added or removed.
    void ListChanged();
    /// @param text is a sentence for the user that concerns all tasks.
    void Notice(const QString& text);
    /// The owner's tasks have been read from the disk.
    void Loaded();
    /// A scene that had been accepted cannot be submitted.
    void SceneRefused(const QString& scene, const QString& reason);
    void UploadFailed(const QString& id, const QStringList& files);
    void TexturesLacking(const QString& id, const QStringList& files);

private:
    /// The stage that the worker is running.
    struct Run
    {
        qint64 task = 0;
        SubmitStage stage = SubmitStage::Wait;
        InterruptFlag interrupted;
        bool discardAfterwards = false; // the task has been removed meanwhile
    };

    void HandleLoaded(const QVector<SubmitTask>& tasks);
    void HandleAdded(const SubmitTask& task);
    void HandleReplaced(const QString& keptAs);
    void Clear();
    void Insert(const SubmitTask& task);
    void Ask(const SubmitTask& task);
    void Halt(SubmitTask& task, SubmitError error, const TaskMessage& message);
    void SaveRelease(SubmitTask& task);

    bool MustCheckArguments(const SubmitTask& task) const;
    void Advance();
    void ShowWaitForFarm();
    void Begin(SubmitTask& task);
    void ShowProgress(qint64 number, int percent, const QString& text);
    void HandleOutcome(qint64 number, const StageOutcome& outcome);
    void ApplyOutcome(SubmitTask& task, const StageOutcome& outcome, bool wasInterrupted);
    void Postpone(SubmitTask& task, const StageOutcome& outcome);
    void Interrupt();
    void Discard(qint64 number);

    QString m_packages; // the folder for the packages of all tasks
    FarmAccess m_access;
    QString m_endedToken; // the token of the latest session that has ended
    std::function<bool()> m_mustCheck;
    SubmitTasks m_tasks;
    SubmitTurns m_turns; // knows the runnable tasks
    QElapsedTimer m_clock;
    QTimer m_pause; // runs until a task may run
    std::optional<Run> m_run;
    // Declared last: they must end before the members that their results touch.
    SubmitLedger m_ledger;
    WorkerThread<SubmitWorker> m_worker;
};
