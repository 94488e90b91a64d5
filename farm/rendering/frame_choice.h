#pragma once

#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"

#include <QStringList>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <tuple>

namespace farm {

/// Finds the frames of accounts that are rendered next, by seeking in indexes. It goes through the frames of a job only
/// once: a frame that was passed over stays so. The cost grows with the frames that are found or in work, but not with
/// the number of jobs or of their frames. Use it inside one Database::Read().
class FrameChoice
{
public:
    /// @param taken are the frames in work, which are passed over; it may only grow.
    /// @param avoided are jobs that are passed over as well.
    FrameChoice(SQLite::Database& connection, const std::set<FrameKey>& taken,
        const std::set<std::int64_t>& avoided, std::int64_t now);
    ~FrameChoice();
    FrameChoice(const FrameChoice&) = delete;
    FrameChoice& operator=(const FrameChoice&) = delete;

    /// Jobs with the highest priority go first: the early frames of them all, then the other frames of the oldest one. In
    /// a job, a failed frame whose pause is over goes first.
    std::optional<FrameKey> Of(std::int64_t account, const QStringList& types);

private:
    class Line;

    struct Candidate
    {
        int priority = 0;
        FrameKey frame;
    };

    std::optional<Candidate> Best(std::int64_t account, const QStringList& types, bool early);

    SQLite::Database& m_connection;
    const std::set<FrameKey>& m_taken;
    const std::set<std::int64_t>& m_avoided;
    std::int64_t m_now;
    /// The key is account, type, and whether only early frames are looked for.
    std::map<std::tuple<std::int64_t, QString, bool>, std::unique_ptr<Line>> m_lines;
};

} // namespace farm
