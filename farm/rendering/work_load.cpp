#include "farm/rendering/work_load.h"

#include <algorithm>

namespace farm {

namespace {

template <typename Value>
void KeepOnly(const std::set<FrameKey>& keys, std::map<FrameKey, Value>& map)
{
    for (auto entry = map.begin(); entry != map.end();)
        entry = keys.count(entry->first) == 0 ? map.erase(entry) : std::next(entry);
}

} // namespace

void WorkLoad::Update(SQLite::Database& connection, const std::set<FrameKey>& taken)
{
    KeepOnly(taken, m_frames);
    KeepOnly(taken, m_starts);
    SQLite::Statement query(connection, "SELECT account, type FROM jobs WHERE key = ?");
    for (const FrameKey& frame : taken) {
        if (m_frames.count(frame) != 0)
            continue;
        query.reset();
        Bind(query, frame.job);
        if (query.executeStep())
            m_frames[frame] = {query.getColumn(0).getInt64(), Text(query.getColumn(1))};
    }
}

int WorkLoad::FramesOfType(const QString& type) const
{
    return int(std::count_if(
        m_frames.begin(), m_frames.end(), [&type](const auto& frame) { return frame.second.type == type; }));
}

int WorkLoad::FramesOf(std::int64_t account) const
{
    return int(std::count_if(m_frames.begin(), m_frames.end(),
        [account](const auto& frame) { return frame.second.account == account; }));
}

double WorkLoad::SecondsOf(std::int64_t account, std::int64_t now) const
{
    double seconds = 0;
    for (const auto& [frame, start] : m_starts) {
        const auto found = m_frames.find(frame);
        const bool isOfAccount = found != m_frames.end() && found->second.account == account;
        seconds += isOfAccount && start < now ? double(now - start) : 0;
    }
    return seconds;
}

} // namespace farm
