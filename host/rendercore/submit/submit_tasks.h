#pragma once

#include "host/rendercore/submit/submit_task.h"

#include <QHash>
#include <QStringList>

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

    /// Task ids in the order of arrival.
    const QStringList& Ids() const { return m_ids; }

    /// All tasks by number.
    std::map<qint64, SubmitTask>& All() { return m_tasks; }

private:
    QStringList m_ids;
    QHash<QString, qint64> m_numbers; // by id
    std::map<qint64, SubmitTask> m_tasks;
};
