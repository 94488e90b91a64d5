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
    // Those that already wait go first.
    if (line.served == m_atOnce || line.waiting > 0) {
        if (line.waiting == m_mostWaiting)
            return nullptr;
        ++line.waiting;
        line.moves.wait(lock, [this, &line] { return line.served < m_atOnce; });
        --line.waiting;
    }
    ++line.served;
    if (line.waiting > 0 && line.served < m_atOnce)
        line.moves.notify_one();
    return {this, [account](AccountTurns* turns) { turns->End(account); }};
}

void AccountTurns::End(std::int64_t account)
{
    const std::lock_guard lock(m_mutex);
    const auto line = m_lines.find(account);
    --line->second.served;
    if (line->second.waiting > 0)
        line->second.moves.notify_one();
    else if (line->second.served == 0)
        m_lines.erase(line);
}

} // namespace farm
