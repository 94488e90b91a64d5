#include "farm/rendering/work_load.h"

#include <algorithm>
#include <vector>

namespace farm {

void WorkLoad::Update(SQLite::Database& connection, const std::set<FrameKey>& taken)
{
    std::vector<FrameKey> added;
    auto known = m_frames.begin();
    for (const FrameKey& frame : taken) {
        while (known != m_frames.end() && known->first < frame)
            known = Remove(known);
        if (known == m_frames.end() || frame < known->first)
            added.push_back(frame);
        else
            ++known;
    }
    while (known != m_frames.end())
        known = Remove(known);
    SQLite::Statement query(connection, "SELECT account, type FROM jobs WHERE key = ?");
    for (const FrameKey& frame : added) {
        query.reset();
        Bind(query, frame.job);
        if (query.executeStep())
            Add(frame, query.getColumn(0).getInt64(), Text(query.getColumn(1)));
    }
    m_earlyStarts.clear();
}

void WorkLoad::Add(const FrameKey& frame, std::int64_t account, const QString& type)
{
    const auto [added, isNew] = m_frames.try_emplace(frame, Entry {account, type});
    if (!isNew)
        return;
    ++m_accounts[account].frames;
    ++m_types[type];
    const auto start = m_earlyStarts.find(frame);
    if (start != m_earlyStarts.end())
        SetStart(added->second, start->second);
}

WorkLoad::Frames::iterator WorkLoad::Remove(Frames::iterator frame)
{
    SetStart(frame->second, std::nullopt);
    const auto account = m_accounts.find(frame->second.account);
    if (--account->second.frames == 0)
        m_accounts.erase(account);
    --m_types[frame->second.type];
    return m_frames.erase(frame);
}

void WorkLoad::NoteStart(const FrameKey& frame, std::int64_t at)
{
    const auto found = m_frames.find(frame);
    if (found != m_frames.end())
        SetStart(found->second, at);
    else
        m_earlyStarts[frame] = at;
}

void WorkLoad::SetStart(Entry& entry, std::optional<std::int64_t> at)
{
    Sum& sum = m_accounts[entry.account];
    sum.started += int(at.has_value()) - int(entry.start.has_value());
    sum.starts += at.value_or(0) - entry.start.value_or(0);
    entry.start = at;
}

WorkLoad::Sum WorkLoad::SumOf(std::int64_t account) const
{
    const auto found = m_accounts.find(account);
    return found != m_accounts.end() ? found->second : Sum {};
}

// The clock of a node may be ahead of the farm's.
double WorkLoad::SecondsOf(std::int64_t account, std::int64_t now) const
{
    const Sum sum = SumOf(account);
    return double(std::max<std::int64_t>(sum.started * now - sum.starts, 0));
}

} // namespace farm
