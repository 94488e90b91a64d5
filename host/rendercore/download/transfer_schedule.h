#pragma once

#include "host/base/backoff.h"

#include <QtGlobal>

#include <map>
#include <optional>
#include <set>
#include <utility>

/// Decides when failed tasks are retried and which tasks go first. Pure logic: all times are in milliseconds, `now`
/// since any fixed moment.
class TransferSchedule
{
public:
    /// @param backoff the pauses after failures.
    /// @param patience failures in a row, of any tasks, before all transfers pause.
    TransferSchedule(const Backoff& backoff, int patience);

    void Clear();

    /// Makes a task due at once and ends a pause of all transfers.
    void RetryNow(qint64 id);

    /// Lets a failed task wait for a while, without effect on the others.
    /// @param atLeast the shortest pause.
    /// @return the pause.
    int Delay(qint64 id, int atLeast, qint64 now);

    /// Makes a task due once the pause of all transfers is over.
    void Requeue(qint64 id);

    /// Postpones a task that has failed.
    /// @param atLeast the pause that the farm asks for, which all transfers keep for at most an hour.
    /// @return the pause.
    int Postpone(qint64 id, int atLeast, qint64 now);

    /// Records that a task receives data. The failure count starts over, and a pause of all transfers ends.
    void RecordProgress(qint64 id);

    void Forget(qint64 id);

    /// Begins or prolongs a pause of all transfers.
    void PauseUntil(qint64 time);
    /// Ends a pause of all transfers.
    void EndPause() { m_pausedUntil = 0; }
    bool IsPaused(qint64 now) const { return now < m_pausedUntil; }

    /// A task that is due, the lowest id first. It stays due until Take().
    std::optional<qint64> NextDue(qint64 now);
    /// Removes a task from those that are due. Its failures still count.
    void Take(qint64 id) { m_due.erase(id); }

    /// The time until a task is due or the pause ends; none when the schedule is empty.
    std::optional<int> Wait(qint64 now) const;

private:
    Backoff m_backoff; // computes the pauses; the failures are counted below
    int m_patience;
    std::set<qint64> m_due;
    std::map<qint64, qint64> m_dueAt;            // by task
    std::set<std::pair<qint64, qint64>> m_queue; // the same entries, by time and task
    std::map<qint64, int> m_failures;            // by task
    int m_failuresInARow = 0;
    qint64 m_pausedUntil = 0;
};
