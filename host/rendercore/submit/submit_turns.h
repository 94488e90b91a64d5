#pragma once

#include "host/base/backoff.h"
#include "host/rendercore/submit/stage_outcome.h"

#include <functional>
#include <map>
#include <optional>

/// Decides which task may run, and when. One task has the turn until it halts or has to wait; then it is the turn of
/// the task with the next higher number, and after the highest that of the lowest. Pure logic: `now` is in milliseconds
/// since any fixed moment.
class SubmitTurns
{
public:
    struct Decision
    {
        std::optional<qint64> task; ///< the task that may run now
        std::optional<int> wait;    ///< without a task: milliseconds until one may run, if time alone helps
    };

    /// Adds a runnable task, without failures so far.
    void Add(qint64 task);
    void Remove(qint64 task);
    void Clear();

    /// Sets whether there is a farm and a session, and ends all pauses.
    void SetFarm(bool isOpen);

    /// @return whether there is a farm that knows the session.
    bool CanAskFarm() const { return m_isFarmOpen; }

    /// Gives the turn to a task that may run now.
    /// @param needsFarm whether a task's next stage needs the farm.
    Decision Next(qint64 now, const std::function<bool(qint64)>& needsFarm);

    /// Records that the farm has fulfilled the task's request.
    /// @param advanced whether it has received more of the task than before.
    void RecordAnswer(qint64 task, bool advanced);

    /// Makes the task wait and pass on its turn.
    /// @param retryAfter is the wait in seconds that the farm asks for.
    /// @return false when the task has failed too often in a row; it then does not wait.
    bool Postpone(qint64 task, StageOutcome::Obstacle obstacle, int retryAfter, qint64 now);

private:
    struct Waiting
    {
        Backoff backoff;
        qint64 notBefore = 0; // earliest time of the next request to the farm
        qint64 nextLook = 0;  // time of the next look at a running program
    };

    qint64 WaitOf(const Waiting& task, bool needsFarm, qint64 now) const;

    static constexpr int FirstPause = 500;     // ms; doubles with each further failure
    static constexpr int LongestPause = 32000; // ms
    static constexpr int LookPause = 300;      // ms
    static constexpr int MostPauses = 7;       // in a row without progress, about a minute in all

    std::map<qint64, Waiting> m_tasks;
    Backoff m_farmBackoff {FirstPause, LongestPause};
    qint64 m_farmNotBefore = 0;
    bool m_isFarmOpen = false;
    qint64 m_turn = 0; // the task that has the turn, or had it last
    bool m_keepsTurn = false;
};
