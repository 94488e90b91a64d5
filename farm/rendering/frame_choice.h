#pragma once

#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"

#include <QStringList>

#include <optional>
#include <set>
#include <vector>

namespace farm {

/// Finds the frame of an account that is rendered next, by seeking in indexes: the cost grows with the number of frames in
/// work, but with neither the number of jobs nor that of their frames. Use it inside one Database::Read().
class FrameChoice
{
public:
    /// @param types are those that can be rendered now.
    /// @param taken are the frames in work, which are passed over.
    /// @param avoided are jobs that are passed over as well.
    FrameChoice(SQLite::Database& connection, const QStringList& types, const std::set<FrameKey>& taken,
        const std::set<std::int64_t>& avoided, std::int64_t now);

    /// Jobs with the highest priority go first: the early frames of them all, then the other frames of the oldest one. In
    /// a job, a failed frame whose pause is over goes first.
    std::optional<FrameKey> Of(std::int64_t account);

private:
    struct Candidate
    {
        int priority = 0;
        FrameKey frame;
    };

    std::optional<Candidate> Best(SQLite::Statement& jobs, std::int64_t account, bool early);
    std::optional<Candidate> First(
        SQLite::Statement& jobs, std::int64_t account, const QString& type, bool early);
    std::optional<int> FrameOf(std::int64_t job, int run, bool early);
    std::optional<int> NotTaken(SQLite::Statement& frames, std::int64_t job, int run);

    QStringList m_types;
    const std::set<FrameKey>& m_taken;
    const std::set<std::int64_t>& m_avoided;
    std::int64_t m_now;
    SQLite::Statement m_jobs;
    SQLite::Statement m_jobsWithEarlyFrames;
    SQLite::Statement m_retriedFrames;
    SQLite::Statement m_readyFrames;
    SQLite::Statement m_earlyFrames;
};

} // namespace farm
