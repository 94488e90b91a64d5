#pragma once

#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"

#include <QHash>

#include <map>
#include <optional>
#include <set>

namespace farm {

/// Counts the frames in work by account and by job type. The sums are kept, as a cluster holds thousands of frames. Not
/// thread-safe.
class WorkLoad
{
public:
    /// @param taken are the frames in work now. The others are forgotten.
    void Update(SQLite::Database& connection, const std::set<FrameKey>& taken);
    void Add(const FrameKey& frame, std::int64_t account, const QString& type);
    /// Records that the frame has been rendered since `at`; before that, it waits for a machine.
    void NoteStart(const FrameKey& frame, std::int64_t at);

    int FramesOfType(const QString& type) const { return m_types.value(type); }
    int FramesOf(std::int64_t account) const { return SumOf(account).frames; }
    /// The sum of the times for which the account's frames have been rendered, in seconds.
    double SecondsOf(std::int64_t account, std::int64_t now) const;

private:
    struct Entry
    {
        std::int64_t account = 0;
        QString type;
        std::optional<std::int64_t> start = {};
    };
    struct Sum
    {
        int frames = 0;
        int started = 0;
        std::int64_t starts = 0; ///< the sum of the times of all starts
    };
    using Frames = std::map<FrameKey, Entry>;

    Sum SumOf(std::int64_t account) const;
    Frames::iterator Remove(Frames::iterator frame);
    void SetStart(Entry& entry, std::optional<std::int64_t> at);

    Frames m_frames;
    /// The starts of frames that the next Update() adds.
    std::map<FrameKey, std::int64_t> m_earlyStarts;
    std::map<std::int64_t, Sum> m_accounts;
    QHash<QString, int> m_types;
};

} // namespace farm
