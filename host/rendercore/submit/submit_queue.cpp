#include "host/rendercore/submit/submit_queue.h"

#include "host/rendercore/submit/local_stages.h"
#include "host/rendercore/submit/scene_analysis.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_text.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

/// Whether every package is as long as it was when it was made.
bool ArePackagesThere(const SubmitTask& task, const QString& folder)
{
    if (!task.work.IsPacked())
        return false;
    for (int index = 0; index < task.work.files.size(); ++index) {
        const QFileInfo package(PackagePath(folder, index));
        if (!package.isFile() || package.size() != task.work.files.at(index).packageSize)
            return false;
    }
    return true;
}

} // namespace

SubmitQueue::SubmitQueue(const QString& folder, QObject* parent)
    : QObject(parent)
    , m_folder(folder)
    , m_worker(new SubmitWorker)
{
    qRegisterMetaType<StageOutcome>();
    qRegisterMetaType<WorkerErrand>();
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &SubmitQueue::Advance);
    connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
    connect(this, &SubmitQueue::Ordered, m_worker, &SubmitWorker::Do, Qt::QueuedConnection);
    connect(m_worker, &SubmitWorker::Progress, this, &SubmitQueue::ShowProgress);
    connect(m_worker, &SubmitWorker::Ended, this, &SubmitQueue::TakeOutcome);
    m_worker->moveToThread(&m_thread);
    m_thread.setObjectName(QStringLiteral("submissions"));
    m_thread.start(QThread::LowPriority);

    QDir().mkpath(m_folder);
    try {
        m_store
            = std::make_unique<SubmitStore>(QDir(m_folder).filePath(QStringLiteral("submissions.sqlite")));
        emit Ordered(
            [packages = QDir(m_folder).filePath(QStringLiteral("submit")), numbers = m_store->Numbers()](
                SubmitWorker&) { SubmitWorker::Sweep(packages, numbers); });
    } catch (const std::exception& failure) {
        m_store.reset();
        qCritical() << "the list of submissions cannot be used:" << failure.what();
    }
}

SubmitQueue::~SubmitQueue()
{
    Interrupt();
    m_thread.quit();
    m_thread.wait();
}

const SubmitTask* SubmitQueue::Task(const QString& id) const
{
    const auto task = m_tasks.find(m_numbers.value(id));
    return task == m_tasks.end() ? nullptr : &task->second;
}

SubmitTask* SubmitQueue::Find(const QString& id)
{
    return Find(m_numbers.value(id));
}

SubmitTask* SubmitQueue::Find(qint64 number)
{
    const auto task = m_tasks.find(number);
    return task == m_tasks.end() ? nullptr : &task->second;
}

SubmitTask& SubmitQueue::Insert(const SubmitTask& task)
{
    m_ids.append(task.id);
    m_numbers.insert(task.id, task.number);
    if (task.IsRunnable())
        m_runnable.insert(task.number);
    return m_tasks[task.number] = task;
}

void SubmitQueue::Erase(qint64 number)
{
    const QString id = m_tasks.at(number).id;
    m_ids.removeOne(id);
    m_numbers.remove(id);
    m_runnable.erase(number);
    m_tasks.erase(number);
}

QString SubmitQueue::PackageFolder(qint64 number) const
{
    return QStringLiteral("%1/submit/%2").arg(m_folder).arg(number);
}

/// Changes what is on the disk. False, and nothing changed, where that fails.
bool SubmitQueue::Keep(const std::function<void(SubmitStore&)>& change)
{
    try {
        if (m_store) {
            change(*m_store);
            return true;
        }
    } catch (const std::exception& failure) {
        qCritical() << "a submission cannot be saved:" << failure.what();
    }
    return false;
}

void SubmitQueue::SetAccess(const FarmAccess& access)
{
    const bool isEnded = !m_endedToken.isEmpty() && access.token == m_endedToken;
    const bool isOtherOwner = m_access.owner != (isEnded ? QString() : access.owner);
    const bool isSame = access.apiRoot == m_access.apiRoot && access.token == m_access.token;
    if (isOtherOwner)
        EndSession();
    else if (!isSame && NeedsFarm(m_runningStage))
        Interrupt();
    m_access = access;
    if (isEnded) {
        m_access.owner.clear();
        return;
    }
    m_endedToken.clear();
    m_isSignedOut = false;
    m_farmPauses = 0;
    m_farmPause = {};
    for (const qint64 number : m_runnable)
        m_tasks.at(number).notBefore = {};
    if (isOtherOwner && !access.owner.isEmpty())
        Load();
    Advance();
}

void SubmitQueue::Load()
{
    QVector<SubmitTask> tasks;
    Keep([&](SubmitStore& store) { tasks = store.Load(m_access.owner); });
    for (SubmitTask& task : tasks) {
        task.progress = task.isDone ? 100 : 0;
        // Where the farm could not unpack them, what was packed is of no use.
        const bool isSpoilt
            = task.error == SubmitError::UploadRefused && task.stage == SubmitStage::Uncompress;
        if (!task.isDone && !isSpoilt && AreArguments(task.arguments)
            && ArePackagesThere(task, PackageFolder(task.number)))
            task.next = SubmitStage::CopySame;
        Insert(task);
    }
    if (tasks.isEmpty())
        return;
    emit ListChanged();
    for (const SubmitTask& task : qAsConst(tasks))
        Ask(task);
}

/// Asks the user what the task waits to know.
void SubmitQueue::Ask(const SubmitTask& task)
{
    const QString id = task.id;
    if (task.error == SubmitError::UploadRefused)
        emit UploadFailed(id, QStringList(task.refused));
    else if (task.error == SubmitError::AwaitsUser && task.stage == SubmitStage::CopySame)
        emit TexturesLacking(id, QStringList(task.work.missing));
}

bool SubmitQueue::Submit(const QString& scene)
{
    const QFileInfo file(scene);
    if (m_access.owner.isEmpty() || !file.isFile() || !file.isReadable() || !IsSceneName(scene))
        return false;
    SubmitTask task;
    const QString path = QDir::cleanPath(file.absoluteFilePath());
    if (!Keep([&](SubmitStore& store) { task = store.Add(m_access.owner, path); }))
        return false;
    Insert(task);
    emit ListChanged();
    Advance();
    return true;
}

void SubmitQueue::Remove(const QStringList& ids)
{
    QVector<qint64> numbers;
    for (const QString& id : ids) {
        if (m_numbers.contains(id))
            numbers.append(m_numbers.value(id));
    }
    if (numbers.isEmpty() || !Keep([&numbers](SubmitStore& store) { store.Remove(numbers); }))
        return;
    for (const qint64 number : qAsConst(numbers)) {
        if (!Find(number))
            continue; // named twice
        if (number == m_turn && m_run) {
            m_discardAfterRun = true;
            Interrupt();
        } else {
            Discard(number);
        }
        Erase(number);
    }
    emit ListChanged();
    Advance();
}

void SubmitQueue::EndSession()
{
    Interrupt();
    m_pause.stop();
    QVector<qint64> done;
    for (const auto& [number, task] : m_tasks) {
        if (task.isDone)
            done.append(number);
    }
    if (!done.isEmpty())
        Keep([&done](SubmitStore& store) { store.Remove(done); });
    const bool hadTasks = !m_ids.isEmpty();
    m_ids.clear();
    m_numbers.clear();
    m_tasks.clear();
    m_runnable.clear();
    m_endedToken = m_access.token;
    m_access.owner.clear();
    if (hadTasks)
        emit ListChanged();
}

void SubmitQueue::StopAll()
{
    QVector<const SubmitTask*> stopped;
    for (auto& [number, task] : m_tasks) {
        if (!task.IsRunnable() && task.error != SubmitError::AwaitsUser)
            continue;
        SetError(task, SubmitError::Stopped, QString::fromLatin1(SubmitText::Stopped));
        stopped.append(&task);
    }
    Keep([&stopped](SubmitStore& store) { store.SaveAll(stopped); });
    Interrupt();
}

void SubmitQueue::ResumeAll()
{
    QVector<const SubmitTask*> resumed;
    for (auto& [number, task] : m_tasks) {
        if (task.error != SubmitError::Stopped)
            continue;
        MakeRunnable(task);
        resumed.append(&task);
    }
    Keep([&resumed](SubmitStore& store) { store.SaveAll(resumed); });
    Advance();
}

void SubmitQueue::Continue(const QString& id)
{
    SubmitTask* task = Find(id);
    if (!task || task->isDone || task->error == SubmitError::None)
        return;
    const bool awaits = task->error == SubmitError::AwaitsUser;
    if (task->error == SubmitError::TexturesMissing || (awaits && task->stage == SubmitStage::CopySame)) {
        task->goesOnWithout = true;
        task->next = SubmitStage::Analyze; // what was missing may be in its place by now
    } else if (awaits) {
        task->areArgumentsChecked = true;
    }
    if (NeedsFarm(task->next) && !ArePackagesThere(*task, PackageFolder(task->number)))
        task->next = SubmitStage::Analyze;
    Resume(*task);
    Advance();
}

void SubmitQueue::AnswerUploadFailure(const QString& id, bool tryAgain)
{
    SubmitTask* task = Find(id);
    if (!task || task->error != SubmitError::UploadRefused)
        return;
    if (tryAgain)
        Continue(id);
    else
        Rest(*task, SubmitError::GivenUp, task->message);
}

void SubmitQueue::AnswerMissingTextures(const QString& id, bool goOn)
{
    SubmitTask* task = Find(id);
    if (!task || task->error != SubmitError::AwaitsUser || task->stage != SubmitStage::CopySame)
        return;
    if (!goOn) {
        Rest(*task, SubmitError::TexturesMissing, QString::fromLatin1(SubmitText::NotWithout));
        return;
    }
    task->goesOnWithout = true;
    Resume(*task);
    Advance();
}

void SubmitQueue::SetArguments(const QString& id, const QVariantList& arguments)
{
    SubmitTask* task = Find(id);
    const bool isBeingSent = task && m_run && task->number == m_turn && task->stage == SubmitStage::Submit;
    const QVariantList usable = WithUsableSizes(arguments);
    if (!task || task->isDone || isBeingSent) {
        qWarning() << "arguments come too late for" << id;
        return;
    }
    if (!AreArguments(usable)) {
        qWarning() << "no job can be made of the arguments for" << id;
        return;
    }
    SubmitTask changed = *task;
    changed.arguments = usable;
    changed.areArgumentsEdited = true;
    if (Keep([&changed](SubmitStore& store) { store.Save(changed); }))
        *task = changed;
}

void SubmitQueue::Rest(SubmitTask& task, SubmitError error, const QString& message)
{
    SetError(task, error, message);
    Keep([&task](SubmitStore& store) { store.Save(task); });
}

void SubmitQueue::SetError(SubmitTask& task, SubmitError error, const QString& message)
{
    task.error = error;
    task.message = message;
    task.uploadText.clear();
    m_runnable.erase(task.number);
}

/// Lets a task that stands still wait for its turn.
void SubmitQueue::Resume(SubmitTask& task)
{
    MakeRunnable(task);
    Keep([&task](SubmitStore& store) { store.Save(task); });
}

void SubmitQueue::MakeRunnable(SubmitTask& task)
{
    task.error = SubmitError::None;
    task.message.clear();
    task.refused.clear();
    task.stage = SubmitStage::Wait;
    task.progress = 0;
    task.failures = 0;
    task.notBefore = {};
    m_runnable.insert(task.number);
}

void SubmitQueue::Interrupt()
{
    if (!m_run)
        return;
    *m_run = true;
    emit Ordered([](SubmitWorker& worker) { worker.Interrupt(); });
}

void SubmitQueue::Discard(qint64 number)
{
    emit Ordered([folder = PackageFolder(number)](SubmitWorker&) { SubmitWorker::Discard(folder); });
}
