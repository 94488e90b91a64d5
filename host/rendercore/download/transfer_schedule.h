#pragma once

#include <QElapsedTimer>

#include <map>
#include <optional>
#include <set>
#include <utility>

/// When the tasks that did not simply wait for their turn are tried (again). Times in milliseconds.
class TransferSchedule
{
public:
    /// @param firstPause after a failure; doubled after each further one up to `longestPause`.
    /// @param patience failures in a row, of whatever tasks, before everything rests.
    TransferSchedule(int firstPause, int longestPause, int patience);

    void Clear();

    /// The task may go on at once.
    void Hurry(qint64 id);

    /// The task has failed for now and is tried again later.
    /// @param atLeast the pause that the farm asked for, followed up to an hour; 0 for none.
    /// @return the pause.
    int Postpone(qint64 id, int atLeast);

    /// The task got bytes: its next failure, or that of others, is a first one.
    void Advanced(qint64 id);

    void Forget(qint64 id);

    /// There is something new to try.
    void EndRest() { m_restEnd = 0; }

    /// Whether nothing at all should be tried for now.
    bool IsResting() const { return m_clock.elapsed() < m_restEnd; }

    /// Hands out a task whose time has come, lower numbers first.
    std::optional<qint64> TakeDue();

    /// How long until a task's time has come or the rest is over; nothing when there is nothing to wait for.
    std::optional<int> Wait() const;

private:
    int Pause(int failures) const;

    int m_firstPause;
    int m_longestPause;
    int m_patience;
    QElapsedTimer m_clock;
    std::set<qint64> m_due;
    std::map<qint64, qint64> m_dueAt;            // by task
    std::set<std::pair<qint64, qint64>> m_queue; // the same by time
    std::map<qint64, int> m_failures;            // by task
    int m_failuresInARow = 0;
    qint64 m_restEnd = 0;
};
