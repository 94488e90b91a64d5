#pragma once

#include "host/rendercore/farm_access.h"
#include "host/rendercore/submit/stage_outcome.h"
#include "host/rendercore/submit/submit_store.h"
#include "host/rendercore/submit/submit_worker.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QObject>
#include <QStringList>
#include <QThread>
#include <QTimer>
#include <QVariantList>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <utility>

/// The scenes that are on their way to the farm, as the window sees them: on the GUI thread, for the account that is
/// signed in.
///
/// One task at a time goes through its stages, each of which a worker does in a thread of its own; the others wait. A
/// task that the farm can do nothing for just now lets the others go first. What the user decides is on the disk when
/// the function returns.
class SubmitQueue : public QObject
{
    Q_OBJECT

public:
    /// @param folder for the database and the packages; made when it is missing.
    explicit SubmitQueue(const QString& folder, QObject* parent = nullptr);

    /// Work pauses; it goes on with the next queue on this folder.
    ~SubmitQueue() override;

    /// Another owner has other tasks. Without a farm that can be reached the tasks wait where they are.
    void SetAccess(const FarmAccess& access);

    /// Whether tasks of Maya scenes wait for the user to check their arguments; asked when one is about to be sent.
    void SetArgumentsCheck(std::function<bool()> mustCheck) { m_mustCheck = std::move(mustCheck); }

    const QStringList& Ids() const { return m_ids; }

    /// The task with this id; null when there is none. Valid until control returns to the event loop.
    const SubmitTask* Task(const QString& id) const;

    /// Takes a scene. False when nobody is signed in, or when it is no scene that can be read.
    bool Submit(const QString& scene);

    /// Deletes tasks for good; what they have sent is of no use to anybody.
    void Remove(const QStringList& ids);

    /// The session is over: tasks that are done go, the others rest until their owner is back.
    void EndSession();

    void StopAll();
    void ResumeAll();

    /// Goes on with a task that stands still, whatever for.
    void Continue(const QString& id);

    void AnswerUploadFailure(const QString& id, bool tryAgain);
    void AnswerMissingTextures(const QString& id, bool goOn);

    /// A side that pictures cannot have stands for the scene's own. Frames that cannot be made a job of are ignored, and
    /// so is what comes when the job is already made.
    void SetArguments(const QString& id, const QVariantList& arguments);

signals:
    /// A task has come or gone.
    void ListChanged();
    void UploadFailed(const QString& id, const QStringList& files);
    void TexturesLacking(const QString& id, const QStringList& files);
    /// For the worker.
    void Ordered(const WorkerErrand& errand);

private:
    SubmitTask* Find(const QString& id);
    SubmitTask* Find(qint64 number);
    SubmitTask& Insert(const SubmitTask& task);
    void Erase(qint64 number);
    QString PackageFolder(qint64 number) const;
    bool Keep(const std::function<void(SubmitStore&)>& change);

    void Load();
    void Ask(const SubmitTask& task);
    void Advance();
    SubmitTask* NextTask();
    qint64 WaitOf(SubmitTask& task) const;
    static void Enter(SubmitTask& task);
    bool WaitsForCheck(const SubmitTask& task) const;
    void Begin(SubmitTask& task);
    void ShowProgress(qint64 number, int percent, const QString& text);
    void TakeOutcome(qint64 number, const StageOutcome& outcome);
    void StageDone(SubmitTask& task, const StageOutcome& outcome);
    void TryLater(SubmitTask& task, const StageOutcome& outcome);
    void MakeWait(SubmitTask& task, const StageOutcome& outcome);
    void StageFailed(SubmitTask& task, const StageOutcome& outcome);
    void Finish(SubmitTask& task, const QString& jobNumber);
    void Rest(SubmitTask& task, SubmitError error, const QString& message);
    void SetError(SubmitTask& task, SubmitError error, const QString& message);
    void Resume(SubmitTask& task);
    void MakeRunnable(SubmitTask& task);
    void Interrupt();
    void Discard(qint64 number);

    QString m_folder;
    std::unique_ptr<SubmitStore> m_store; // null when the database cannot be used
    FarmAccess m_access;
    QString m_endedToken; // of a session that is over
    std::function<bool()> m_mustCheck;
    QStringList m_ids;
    QHash<QString, qint64> m_numbers; // by id
    std::map<qint64, SubmitTask> m_tasks;
    std::set<qint64> m_runnable;
    qint64 m_turn = 0;                              // whose it is, or was last
    bool m_keepsTurn = false;                       // until it can do no more
    InterruptFlag m_run;                            // null while the worker has nothing to do
    SubmitStage m_runningStage = SubmitStage::Wait; // of the worker's latest run
    bool m_discardAfterRun = false;
    QTimer m_pause;             // until the next task may go on
    QDeadlineTimer m_farmPause; // no task asks the farm earlier
    int m_farmPauses = 0;       // in a row
    bool m_isSignedOut = false; // the farm does not know the token
    QThread m_thread;
    SubmitWorker* m_worker; // of that thread
};
