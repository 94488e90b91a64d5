#include "farm/jobs/job_turn.h"

#include "farm/jobs/job_status.h"

namespace farm {

namespace {

struct OpenFrames
{
    bool hasReady = false;
    bool hasEarly = false;
    /// The time of the next attempt at a failed frame: 0 when no frame has failed, PassedBy when none is tried again.
    std::int64_t retryAt = 0;
};

OpenFrames FindOpenFrames(SQLite::Database& connection, std::int64_t job)
{
    SQLite::Statement query(connection,
        "SELECT EXISTS (SELECT 1 FROM frames INDEXED BY ready_frames WHERE job = ?1 "
        "AND finished_at IS NULL AND retry_at IS NULL), "
        "EXISTS (SELECT 1 FROM frames INDEXED BY ready_frames WHERE job = ?1 AND early = 1 "
        "AND finished_at IS NULL AND retry_at IS NULL), "
        "coalesce((SELECT min(retry_at) FROM frames INDEXED BY failed_frames WHERE job = ?1 "
        "AND finished_at IS NULL AND retry_at IS NOT NULL), 0)");
    Bind(query, job);
    query.executeStep();
    return {
        query.getColumn(0).getInt() != 0, query.getColumn(1).getInt() != 0, query.getColumn(2).getInt64()};
}

void SetTurn(SQLite::Database& connection, std::int64_t job, bool early, std::int64_t resumeAt)
{
    Execute(connection,
        "UPDATE jobs SET early = ?2, resume_at = ?3 WHERE key = ?1 AND (early <> ?2 OR resume_at <> ?3)", job,
        int(early), resumeAt);
}

bool End(SQLite::Database& connection, std::int64_t job, JobStatus status, std::int64_t now)
{
    return Execute(connection,
               "UPDATE jobs SET status = ?2, ended_at = ?3, hindrance = '' WHERE key = ?1 AND status IN (0, "
               "1, 6)",
               job, static_cast<int>(status), now)
        != 0;
}

/// Puts the number of failed frames before the message, which names the first failed frame and the reason.
void CountFailures(SQLite::Database& connection, std::int64_t job)
{
    Execute(connection,
        "UPDATE jobs SET message = "
        "(SELECT count(*) FROM frames INDEXED BY failed_frames WHERE job = ?1 "
        "AND finished_at IS NULL AND retry_at IS NOT NULL) || ' of ' "
        "|| (SELECT frames FROM job_sums WHERE job = ?1) || ' frames failed. ' || message WHERE key = ?1",
        job);
}

} // namespace

bool UpdateTurn(SQLite::Database& connection, std::int64_t job, std::int64_t now)
{
    const OpenFrames open = FindOpenFrames(connection, job);
    const bool isRetried = open.retryAt > 0 && open.retryAt < PassedBy;
    if (open.hasReady || isRetried) {
        SetTurn(connection, job, open.hasEarly, open.hasReady ? 0 : open.retryAt);
        return false;
    }
    const bool hasFailed = open.retryAt == PassedBy;
    if (!End(connection, job, hasFailed ? JobStatus::Failed : JobStatus::Finished, now))
        return false;
    if (hasFailed)
        CountFailures(connection, job);
    return true;
}

} // namespace farm
