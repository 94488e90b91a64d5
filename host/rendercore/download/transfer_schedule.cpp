#include "host/rendercore/download/transfer_schedule.h"

#include <algorithm>

namespace {

constexpr int longestAsked = 3600 * 1000;
constexpr int mostDoublings = 20;

} // namespace

TransferSchedule::TransferSchedule(int firstPause, int longestPause, int patience)
    : m_firstPause(firstPause)
    , m_longestPause(longestPause)
    , m_patience(patience)
{
    m_clock.start();
}

void TransferSchedule::Clear()
{
    m_due.clear();
    m_dueAt.clear();
    m_queue.clear();
    m_failures.clear();
    m_failuresInARow = 0;
    m_restEnd = 0;
}

void TransferSchedule::Hurry(qint64 id)
{
    Forget(id);
    m_due.insert(id);
    EndRest();
}

int TransferSchedule::Postpone(qint64 id, int atLeast)
{
    const int failures = m_failures[id] + 1;
    const int pause = std::max(Pause(failures), std::min(atLeast, longestAsked));
    const qint64 now = m_clock.elapsed();
    Forget(id);
    m_failures[id] = failures;
    m_dueAt[id] = now + pause;
    m_queue.insert({now + pause, id});
    if (++m_failuresInARow >= m_patience || atLeast > 0)
        m_restEnd = std::max(m_restEnd,
            now + std::max(Pause(1 + m_failuresInARow / m_patience), std::min(atLeast, longestAsked)));
    return pause;
}

void TransferSchedule::Advanced(qint64 id)
{
    m_failures.erase(id);
    m_failuresInARow = 0;
    m_restEnd = 0;
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

std::optional<qint64> TransferSchedule::TakeDue()
{
    const qint64 now = m_clock.elapsed();
    while (!m_queue.empty() && m_queue.begin()->first <= now) {
        const qint64 id = m_queue.begin()->second;
        m_queue.erase(m_queue.begin());
        m_dueAt.erase(id);
        m_due.insert(id);
    }
    if (m_due.empty())
        return std::nullopt;
    const qint64 id = *m_due.begin();
    m_due.erase(m_due.begin());
    return id;
}

std::optional<int> TransferSchedule::Wait() const
{
    const qint64 now = m_clock.elapsed();
    if (m_restEnd > now)
        return static_cast<int>(m_restEnd - now);
    if (!m_due.empty())
        return 0;
    if (m_queue.empty())
        return std::nullopt;
    return static_cast<int>(std::max<qint64>(0, m_queue.begin()->first - now));
}

int TransferSchedule::Pause(int failures) const
{
    const qint64 pause = static_cast<qint64>(m_firstPause) << std::min(failures - 1, mostDoublings);
    return static_cast<int>(std::min<qint64>(pause, m_longestPause));
}
