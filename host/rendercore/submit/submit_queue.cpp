#include "submit_queue.h"

#include "local_stages.h"
#include "scene_analysis.h"
#include "submit_arguments.h"
#include "submit_text.h"

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
    const auto task = m_tasks.constFind(id);
    return task == m_tasks.cend() ? nullptr : &*task;
}

SubmitTask* SubmitQueue::Find(const QString& id)
{
    const auto task = m_tasks.find(id);
    return task == m_tasks.end() ? nullptr : &*task;
}

QString SubmitQueue::IdOf(qint64 number) const
{
    const auto task = std::find_if(
        m_tasks.cbegin(), m_tasks.cend(), [number](const SubmitTask& one) { return one.number == number; });
    return task == m_tasks.cend() ? QString() : task.key();
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
    m_pauses = 0;
    m_pause.stop();
    if (isOtherOwner && !access.owner.isEmpty())
        Load();
    Advance();
}

void SubmitQueue::Load()
{
    QVector<SubmitTask> tasks;
    Keep([&](SubmitStore& store) { tasks = store.Load(m_access.owner); });
    for (SubmitTask& task : tasks) {
        task.next = ArePackagesThere(task, PackageFolder(task.number)) ? SubmitStage::CopySame
                                                                       : SubmitStage::Analyze;
        // The farm has refused what was packed.
        if (task.error == SubmitError::UploadRefused && task.stage == SubmitStage::Uncompress)
            task.next = SubmitStage::Analyze;
        task.progress = task.isDone ? 100 : 0;
        m_ids.append(task.id);
        m_tasks.insert(task.id, task);
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
    m_ids.append(task.id);
    m_tasks.insert(task.id, task);
    emit ListChanged();
    Advance();
    return true;
}

void SubmitQueue::Remove(const QStringList& ids)
{
    bool hasChanged = false;
    for (const QString& id : ids) {
        const SubmitTask* task = Find(id);
        if (!task)
            continue;
        const qint64 number = task->number;
        if (!Keep([number](SubmitStore& store) { store.Remove(number); }))
            continue;
        if (id == m_current && m_run) {
            m_discardAfterRun = true;
            Interrupt();
        } else {
            Discard(number);
        }
        if (id == m_current)
            m_pause.stop();
        m_ids.removeOne(id);
        m_tasks.remove(id);
        hasChanged = true;
    }
    if (!hasChanged)
        return;
    emit ListChanged();
    Advance();
}

void SubmitQueue::EndSession()
{
    Interrupt();
    m_pause.stop();
    for (const SubmitTask& task : qAsConst(m_tasks)) {
        if (task.isDone)
            Keep([&task](SubmitStore& store) { store.Remove(task.number); });
    }
    const bool hadTasks = !m_ids.isEmpty();
    m_ids.clear();
    m_tasks.clear();
    m_current.clear();
    m_endedToken = m_access.token;
    m_access.owner.clear();
    if (hadTasks)
        emit ListChanged();
}

void SubmitQueue::StopAll()
{
    for (SubmitTask& task : m_tasks) {
        if (task.IsRunnable() || task.error == SubmitError::AwaitsUser)
            Rest(task, SubmitError::Stopped, QString::fromLatin1(SubmitText::Stopped));
    }
    Interrupt();
    m_pause.stop();
}

void SubmitQueue::ResumeAll()
{
    for (SubmitTask& task : m_tasks) {
        if (task.error == SubmitError::Stopped)
            Resume(task);
    }
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
    const bool isBeingSent = task && m_run && id == m_current && task->stage == SubmitStage::Submit;
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
    if (Keep([&changed](SubmitStore& store) { store.Save(changed); }))
        *task = changed;
}

void SubmitQueue::Rest(SubmitTask& task, SubmitError error, const QString& message)
{
    task.error = error;
    task.message = message;
    task.uploadText.clear();
    Keep([&task](SubmitStore& store) { store.Save(task); });
}

/// Lets a task that stands still wait for its turn.
void SubmitQueue::Resume(SubmitTask& task)
{
    task.error = SubmitError::None;
    task.message.clear();
    task.refused.clear();
    task.stage = SubmitStage::Wait;
    task.progress = 0;
    Keep([&task](SubmitStore& store) { store.Save(task); });
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
