#include "farm/rendering/work_load.h"

#include <algorithm>

namespace farm {

void WorkLoad::Update(SQLite::Database& connection, const std::set<FrameKey>& taken, std::int64_t now)
{
    for (auto frame = m_frames.begin(); frame != m_frames.end();)
        frame = taken.count(frame->first) == 0 ? m_frames.erase(frame) : std::next(frame);
    SQLite::Statement query(connection, "SELECT account, type FROM jobs WHERE key = ?");
    for (const FrameKey& frame : taken) {
        if (m_frames.count(frame) != 0)
            continue;
        query.reset();
        Bind(query, frame.job);
        if (query.executeStep())
            m_frames[frame] = {query.getColumn(0).getInt64(), Text(query.getColumn(1)), now};
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
    for (const auto& frame : m_frames)
        seconds += frame.second.account == account ? double(now - frame.second.since) : 0;
    return seconds;
}

std::int64_t WorkLoad::Seconds(const FrameKey& frame, std::int64_t now) const
{
    const auto found = m_frames.find(frame);
    return found == m_frames.end() ? 0 : now - found->second.since;
}

} // namespace farm
