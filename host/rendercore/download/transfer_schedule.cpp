#include "host/rendercore/download/transfer_schedule.h"

#include <algorithm>

namespace {

constexpr int LongestAsked = 3600 * 1000; // ms

} // namespace

TransferSchedule::TransferSchedule(const Backoff& backoff, int patience)
    : m_backoff(backoff)
    , m_patience(patience)
{
}

void TransferSchedule::Clear()
{
    *this = TransferSchedule(m_backoff, m_patience);
}

void TransferSchedule::RetryNow(qint64 id)
{
    Requeue(id);
    EndPause();
}

int TransferSchedule::Delay(qint64 id, int atLeast, qint64 now)
{
    const int failures = m_failures[id] + 1;
    const int pause = std::max(m_backoff.PauseAfter(failures), atLeast);
    Forget(id);
    m_failures[id] = failures;
    m_dueAt[id] = now + pause;
    m_queue.insert({now + pause, id});
    return pause;
}

void TransferSchedule::Requeue(qint64 id)
{
    Forget(id);
    m_due.insert(id);
}

int TransferSchedule::Postpone(qint64 id, int atLeast, qint64 now)
{
    const int asked = std::min(atLeast, LongestAsked);
    const int pause = Delay(id, asked, now);
    if (++m_failuresInARow >= m_patience || asked > 0) {
        const int rounds = 1 + m_failuresInARow / m_patience;
        PauseUntil(now + std::max(m_backoff.PauseAfter(rounds), asked));
    }
    return pause;
}

void TransferSchedule::PauseUntil(qint64 time)
{
    m_pausedUntil = std::max(m_pausedUntil, time);
}

void TransferSchedule::RecordProgress(qint64 id)
{
    m_failures.erase(id);
    m_failuresInARow = 0;
    EndPause();
}

void TransferSchedule::Forget(qint64 id)
{
    m_due.erase(id);
    m_failures.erase(id);
    const auto due = m_dueAt.find(id);
    if (due == m_dueAt.end())
        return;
    m_queue.erase({due->second, id});
    m_dueAt.erase(due);
}

std::optional<qint64> TransferSchedule::NextDue(qint64 now)
{
    while (!m_queue.empty() && m_queue.begin()->first <= now) {
        const qint64 id = m_queue.begin()->second;
        m_queue.erase(m_queue.begin());
        m_dueAt.erase(id);
        m_due.insert(id);
    }
    return m_due.empty() ? std::nullopt : std::optional<qint64>(*m_due.begin());
}

std::optional<int> TransferSchedule::Wait(qint64 now) const
{
    if (IsPaused(now))
        return static_cast<int>(m_pausedUntil - now);
    if (!m_due.empty())
        return 0;
    if (m_queue.empty())
        return std::nullopt;
    return static_cast<int>(std::max<qint64>(0, m_queue.begin()->first - now));
}
