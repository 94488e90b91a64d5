#include "host/rendercore/submit/submit_turns.h"

#include <algorithm>

namespace {

int AtLeast(int pause, int seconds)
{
    return std::max(pause, seconds * 1000);
}

} // namespace

void SubmitTurns::Add(qint64 task)
{
    m_tasks.insert_or_assign(task, Waiting {{FirstPause, LongestPause}});
}

void SubmitTurns::Remove(qint64 task)
{
    m_tasks.erase(task);
}

void SubmitTurns::Clear()
{
    m_tasks.clear();
}

void SubmitTurns::SetFarm(bool isOpen)
{
    m_isFarmOpen = isOpen;
    m_farmBackoff.Reset();
    m_farmNotBefore = 0;
    for (auto& [number, task] : m_tasks)
        task.notBefore = 0;
}

/// @return -1 when the task needs a farm or a session that is not there.
qint64 SubmitTurns::WaitOf(const Waiting& task, bool needsFarm, qint64 now) const
{
    if (!needsFarm)
        return std::max<qint64>(0, task.nextLook - now);
    return m_isFarmOpen ? std::max<qint64>(0, std::max(m_farmNotBefore, task.notBefore) - now) : -1;
}

SubmitTurns::Decision SubmitTurns::Next(qint64 now, const std::function<bool(qint64)>& needsFarm)
{
    std::optional<int> shortest;
    auto task = m_keepsTurn ? m_tasks.lower_bound(m_turn) : m_tasks.upper_bound(m_turn);
    for (std::size_t left = m_tasks.size(); left > 0; --left, ++task) {
        if (task == m_tasks.end())
            task = m_tasks.begin();
        const qint64 wait = WaitOf(task->second, needsFarm(task->first), now);
        if (wait == 0) {
            m_turn = task->first;
            m_keepsTurn = true;
            return {m_turn, std::nullopt};
        }
        if (wait > 0)
            shortest = std::min(static_cast<int>(wait), shortest.value_or(static_cast<int>(wait)));
    }
    return {std::nullopt, shortest};
}

void SubmitTurns::RecordAnswer(qint64 task, bool advanced)
{
    m_farmBackoff.Reset();
    const auto found = m_tasks.find(task);
    if (advanced && found != m_tasks.end())
        found->second.backoff.Reset();
}

bool SubmitTurns::Postpone(qint64 task, StageOutcome::Obstacle obstacle, int retryAfter, qint64 now)
{
    m_keepsTurn = false;
    switch (obstacle) {
    case StageOutcome::Obstacle::Session:
        m_isFarmOpen = false;
        break;
    case StageOutcome::Obstacle::Farm:
        m_farmNotBefore = now + AtLeast(m_farmBackoff.Fail(), retryAfter);
        break;
    case StageOutcome::Obstacle::Program:
        m_tasks.at(task).nextLook = now + LookPause;
        break;
    case StageOutcome::Obstacle::Request:
        m_farmBackoff.Reset();
        Waiting& waiting = m_tasks.at(task);
        if (waiting.backoff.Failures() == MostPauses)
            return false;
        waiting.notBefore = now + AtLeast(waiting.backoff.Fail(), retryAfter);
        break;
    }
    return true;
}
