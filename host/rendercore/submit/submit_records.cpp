#include "host/rendercore/submit/submit_records.h"

#include "host/rendercore/attempt.h"
#include "host/rendercore/submit/scene_analysis.h"
#include "host/rendercore/submit/submit_text.h"

#include <QDir>

#include <utility>

namespace {

constexpr int RetryPause = 5000; // ms

} // namespace

SubmitRecords::SubmitRecords(const QString& folder, storage::RecoveringDatabase::Replaced onReplaced)
    : m_store(QDir(folder).filePath(QStringLiteral("submissions.sqlite")), std::move(onReplaced))
    , m_retry(this)
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(RetryPause);
    connect(&m_retry, &QTimer::timeout, this, &SubmitRecords::Write);
}

SubmitRecords::~SubmitRecords()
{
    Write();
}

void SubmitRecords::Write()
{
    if (m_changes.empty() && m_removed.isEmpty())
        return;
    const bool isWritten = Attempt("save submissions", [this] {
        QVector<const SubmitTask*> tasks;
        for (const auto& [number, change] : m_changes) {
            if (change.hasWork)
                m_store.SaveWork(change.task);
            else
                tasks.append(&change.task);
        }
        m_store.SaveAll(tasks);
        m_store.Remove(QVector<qint64>(m_removed.cbegin(), m_removed.cend()));
    });
    if (isWritten) {
        m_changes.clear();
        m_removed.clear();
    } else {
        m_retry.start();
    }
}

std::optional<QSet<qint64>> SubmitRecords::Numbers()
{
    std::optional<QSet<qint64>> numbers;
    Attempt("read the list of submissions", [&] { numbers = m_store.Numbers(); });
    return numbers;
}

std::optional<SubmitTask> SubmitRecords::Add(
    const QString& owner, const QString& scene, int priority, TaskMessage* error)
{
    std::optional<SubmitTask> task;
    *error = WhyNotAnalysed(scene);
    if (error->IsEmpty()
        && !Attempt("save a submission", [&] { task = m_store.Add(owner, scene, priority); }))
        *error = SubmitText::NotRecorded;
    return task;
}

std::optional<QVector<SubmitTask>> SubmitRecords::Load(const QString& owner)
{
    Write();
    std::optional<QVector<SubmitTask>> tasks;
    Attempt("read the submissions", [&] { tasks = m_store.Load(owner); });
    if (!tasks)
        return tasks;
    QVector<SubmitTask> current;
    for (const SubmitTask& task : qAsConst(*tasks)) {
        const auto change = m_changes.find(task.number);
        if (!m_removed.contains(task.number))
            current.append(change == m_changes.end() ? task : change->second.task);
    }
    return current;
}

void SubmitRecords::Save(const QVector<SubmitTask>& tasks, bool withWork)
{
    for (const SubmitTask& task : tasks) {
        Change& change = m_changes[task.number];
        change.task = task;
        change.hasWork = change.hasWork || withWork;
    }
    Write();
}

void SubmitRecords::Remove(const QVector<qint64>& numbers)
{
    for (const qint64 number : numbers) {
        m_changes.erase(number);
        m_removed.insert(number);
    }
    Write();
}
