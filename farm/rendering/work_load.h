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
    /// @param taken are the frames in work now. The others are forgotten.
    void Update(SQLite::Database& connection, const std::set<FrameKey>& taken);
    /// The frame is being rendered since `at`; before, it waits for a machine.
    void NoteStart(const FrameKey& frame, std::int64_t at) { m_starts[frame] = at; }

    int FramesOfType(const QString& type) const;
    int FramesOf(std::int64_t account) const;
    /// For how long the account's frames have been rendered, added up.
    double SecondsOf(std::int64_t account, std::int64_t now) const;

private:
    struct Entry
    {
        std::int64_t account = 0;
        QString type;
    };

    std::map<FrameKey, Entry> m_frames;
    std::map<FrameKey, std::int64_t> m_starts;
};

} // namespace farm
