#pragma once

#include "host/rendercore/submit/submit_task.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <map>

/// The tasks of one account, found by number or by id. Pointers and references stay valid until their task is erased.
class SubmitTasks
{
public:
    SubmitTask& Insert(const SubmitTask& task)
    {
        m_ids.append(task.id);
        m_numbers.insert(task.id, task.number);
        return m_tasks[task.number] = task;
    }

    void Erase(qint64 number)
    {
        const QString id = m_tasks.at(number).id;
        m_ids.removeOne(id);
        m_numbers.remove(id);
        m_tasks.erase(number);
    }

    void Clear()
    {
        m_ids.clear();
        m_numbers.clear();
        m_tasks.clear();
    }

    /// Null when there is no such task.
    SubmitTask* Find(qint64 number)
    {
        const auto task = m_tasks.find(number);
        return task == m_tasks.end() ? nullptr : &task->second;
    }
    SubmitTask* Find(const QString& id) { return Find(m_numbers.value(id)); }
    const SubmitTask* Find(const QString& id) const
    {
        const auto task = m_tasks.find(m_numbers.value(id));
        return task == m_tasks.end() ? nullptr : &task->second;
    }

    /// The numbers of known ids, each once.
    QVector<qint64> NumbersOf(const QStringList& ids) const
    {
        QSet<qint64> numbers;
        for (const QString& id : ids)
            numbers.insert(m_numbers.value(id));
        numbers.remove(0); // the number of unknown ids
        return QVector<qint64>(numbers.cbegin(), numbers.cend());
    }

    /// The numbers of the tasks that have become jobs.
    QVector<qint64> Done() const
    {
        QVector<qint64> done;
        for (const auto& [number, task] : m_tasks) {
            if (task.isDone)
                done.append(number);
        }
        return done;
    }

    /// Whether a task of this scene has not become a job yet.
    bool HasUnfinished(const QString& scene) const
    {
        return std::any_of(m_tasks.begin(), m_tasks.end(),
            [&scene](const auto& entry) { return entry.second.scene == scene && !entry.second.isDone; });
    }

    /// Task ids in the order of arrival.
    const QStringList& Ids() const { return m_ids; }

    /// All tasks by number.
    std::map<qint64, SubmitTask>& All() { return m_tasks; }

private:
    QStringList m_ids;
    QHash<QString, qint64> m_numbers; // numbers by id
    std::map<qint64, SubmitTask> m_tasks;
};
