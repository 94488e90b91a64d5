#include "host/rendercore/submit/submit_ledger.h"

#include "host/rendercore/submit/task_packages.h"

namespace {

constexpr int LoadPause = 5000; // ms

} // namespace

SubmitLedger::SubmitLedger(const QString& folder)
    : m_pause(this)
    , m_records(QStringLiteral("submission records"), [this, folder] {
        return std::make_unique<SubmitRecords>(folder,
            [this](const QString& keptAs) { PostTo(this, [this, keptAs] { emit Replaced(keptAs); }); });
    })
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(LoadPause);
    connect(&m_pause, &QTimer::timeout, this, &SubmitLedger::Load);
}

void SubmitLedger::Begin(const QString& owner)
{
    End();
    m_owner = owner;
    Load();
}

void SubmitLedger::End()
{
    ++m_session;
    m_pause.stop();
    m_owner.clear();
    m_adding.clear();
}

void SubmitLedger::Load()
{
    m_records.Post([this, session = m_session, owner = m_owner](SubmitRecords& records) {
        PostTo(this, [this, session, tasks = records.Load(owner)] {
            if (session != m_session)
                return;
            if (tasks)
                emit Loaded(*tasks);
            else
                m_pause.start();
        });
    });
}

void SubmitLedger::Add(const QString& scene, int priority)
{
    m_adding.append(scene);
    m_records.Post([this, session = m_session, owner = m_owner, scene, priority](SubmitRecords& records) {
        TaskMessage error;
        const auto task = records.Add(owner, scene, priority, &error);
        PostTo(this, [this, session, scene, task, error] {
            if (session == m_session)
                HandleAdded(scene, task, error);
        });
    });
}

void SubmitLedger::HandleAdded(
    const QString& scene, const std::optional<SubmitTask>& task, const TaskMessage& error)
{
    m_adding.removeOne(scene);
    if (task)
        emit Added(*task);
    else
        emit Refused(scene, error.Text());
}

void SubmitLedger::Save(const QVector<SubmitTask>& tasks, bool withWork)
{
    m_records.Post([tasks, withWork](SubmitRecords& records) { records.Save(tasks, withWork); });
}

void SubmitLedger::Remove(const QVector<qint64>& tasks)
{
    m_records.Post([tasks](SubmitRecords& records) { records.Remove(tasks); });
}

void SubmitLedger::Sweep(const QString& packages)
{
    m_records.Post([packages](SubmitRecords& records) {
        if (const auto tasks = records.Numbers())
            TaskPackages::Sweep(packages, *tasks);
    });
}
