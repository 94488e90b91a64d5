#pragma once

#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"

#include <map>
#include <optional>
#include <set>

namespace farm {

/// Whose frames of which types are being rendered. Not thread-safe.
class WorkLoad
{
public:
    /// @param taken are the frames in work now.
    void Update(SQLite::Database& connection, const std::set<FrameKey>& taken, std::int64_t now);

    int FramesOfType(const QString& type) const;
    int FramesOf(std::int64_t account) const;
    /// For how long the account's frames have been rendered, added up.
    double SecondsOf(std::int64_t account, std::int64_t now) const;
    /// For how long the frame has been rendered; 0 for one that ended before it was seen here.
    std::int64_t Seconds(const FrameKey& frame, std::int64_t now) const;

private:
    struct Entry
    {
        std::int64_t account = 0;
        QString type;
        std::int64_t since = 0;
    };

    std::map<FrameKey, Entry> m_frames;
};

} // namespace farm
