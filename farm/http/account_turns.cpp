#include "farm/http/account_turns.h"

namespace farm {

AccountTurns::AccountTurns(int atOnce, int waiting)
    : m_atOnce(atOnce)
    , m_mostWaiting(waiting)
{
}

AccountTurns::Turn AccountTurns::Take(std::int64_t account)
{
    std::unique_lock lock(m_mutex);
    Line& line = m_lines[account];
    const bool isFree = line.served < m_atOnce && line.Waiting() == 0;
    if (!isFree && line.Waiting() == m_mostWaiting)
        return nullptr;
    const std::uint64_t number = line.next++;
    line.moves.wait(lock, [&] { return line.first == number && line.served < m_atOnce; });
    ++line.first;
    ++line.served;
    // The next one may have a turn as well.
    line.moves.notify_all();
    return {this, [account](AccountTurns* turns) { turns->End(account); }};
}

void AccountTurns::End(std::int64_t account)
{
    const std::lock_guard lock(m_mutex);
    const auto line = m_lines.find(account);
    --line->second.served;
    if (line->second.Waiting() > 0)
        line->second.moves.notify_all();
    else if (line->second.served == 0)
        m_lines.erase(line);
}

} // namespace farm
