#include "host/rendercore/submit/submit_ledger.h"

#include "host/rendercore/submit/task_packages.h"

namespace {

constexpr int LoadPause = 5000; // ms

} // namespace

SubmitLedger::SubmitLedger(const QString& folder)
    : m_records(QStringLiteral("submission records"), [this, folder] {
        return std::make_unique<SubmitRecords>(folder,
            [this](const QString& keptAs) { PostTo(this, [this, keptAs] { emit Replaced(keptAs); }); });
    })
{
}

void SubmitLedger::Begin(const QString& owner)
{
    End();
    m_owner = owner;
    Load(m_session);
}

void SubmitLedger::End()
{
    ++m_session;
    m_owner.clear();
    m_adding.clear();
}

void SubmitLedger::Load(int session)
{
    if (session != m_session)
        return;
    m_records.Post([this, session, owner = m_owner](SubmitRecords& records) {
        PostTo(this, [this, session, tasks = records.Load(owner)] {
            if (!tasks)
                QTimer::singleShot(LoadPause, this, [this, session] { Load(session); });
            else if (session == m_session)
                emit Loaded(*tasks);
        });
    });
}

void SubmitLedger::Add(const QString& scene)
{
    m_adding.append(scene);
    m_records.Post([this, session = m_session, owner = m_owner, scene](SubmitRecords& records) {
        QString error;
        const auto task = records.Add(owner, scene, &error);
        PostTo(this, [this, session, scene, task, error] {
            if (session == m_session)
                HandleAdded(scene, task, error);
        });
    });
}

void SubmitLedger::HandleAdded(
    const QString& scene, const std::optional<SubmitTask>& task, const QString& error)
{
    m_adding.removeOne(scene);
    if (task)
        emit Added(*task);
    else
        emit Refused(scene, error);
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
