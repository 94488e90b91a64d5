#include "farm/rendering/frame_choice.h"

namespace farm {

namespace {

constexpr const char* JobsInTurn
    = "SELECT key, run, priority FROM jobs INDEXED BY jobs_in_turn WHERE account = ? AND type = ? "
      "AND status IN (0, 1, 6) AND resume_at = 0 ORDER BY priority DESC, key";
constexpr const char* JobsWithEarlyFrames
    = "SELECT key, run, priority FROM jobs INDEXED BY jobs_with_early_frames WHERE account = ? AND type = ? "
      "AND status IN (0, 1, 6) AND resume_at = 0 AND early = 1 ORDER BY priority DESC, key";
constexpr const char* RetriedFrames
    = "SELECT number FROM frames INDEXED BY failed_frames WHERE job = ? AND finished_at IS NULL "
      "AND retry_at IS NOT NULL AND retry_at <= ? ORDER BY retry_at";
constexpr const char* ReadyFrames
    = "SELECT number FROM frames INDEXED BY ready_frames WHERE job = ? AND finished_at IS NULL "
      "AND retry_at IS NULL ORDER BY early DESC, number";
constexpr const char* EarlyFrames
    = "SELECT number FROM frames INDEXED BY ready_frames WHERE job = ? AND early = 1 "
      "AND finished_at IS NULL AND retry_at IS NULL ORDER BY number";

} // namespace

FrameChoice::FrameChoice(SQLite::Database& connection, const QStringList& types,
    const std::set<FrameKey>& taken, const std::set<std::int64_t>& avoided, std::int64_t now)
    : m_types(types)
    , m_taken(taken)
    , m_avoided(avoided)
    , m_now(now)
    , m_jobs(connection, JobsInTurn)
    , m_jobsWithEarlyFrames(connection, JobsWithEarlyFrames)
    , m_retriedFrames(connection, RetriedFrames)
    , m_readyFrames(connection, ReadyFrames)
    , m_earlyFrames(connection, EarlyFrames)
{
}

std::optional<FrameKey> FrameChoice::Of(std::int64_t account)
{
    const auto early = Best(m_jobsWithEarlyFrames, account, true);
    const auto any = Best(m_jobs, account, false);
    if (early && early->priority >= any->priority) // any job with early frames is among all jobs
        return early->frame;
    return any ? std::optional(any->frame) : std::nullopt;
}

std::optional<FrameChoice::Candidate> FrameChoice::Best(
    SQLite::Statement& jobs, std::int64_t account, bool early)
{
    std::optional<Candidate> best;
    for (const QString& type : qAsConst(m_types)) {
        const auto first = First(jobs, account, type, early);
        if (!first)
            continue;
        const bool isBetter = !best || first->priority > best->priority
            || (first->priority == best->priority && first->frame.job < best->frame.job);
        if (isBetter)
            best = first;
    }
    return best;
}

std::optional<FrameChoice::Candidate> FrameChoice::First(
    SQLite::Statement& jobs, std::int64_t account, const QString& type, bool early)
{
    jobs.reset();
    Bind(jobs, account, type);
    while (jobs.executeStep()) {
        const std::int64_t job = jobs.getColumn(0).getInt64();
        const int run = jobs.getColumn(1).getInt();
        if (m_avoided.count(job) != 0)
            continue;
        if (const auto number = FrameOf(job, run, early))
            return Candidate {jobs.getColumn(2).getInt(), {job, *number, run}};
    }
    return std::nullopt;
}

std::optional<int> FrameChoice::FrameOf(std::int64_t job, int run, bool early)
{
    if (early) {
        m_earlyFrames.reset();
        Bind(m_earlyFrames, job);
        return NotTaken(m_earlyFrames, job, run);
    }
    m_retriedFrames.reset();
    Bind(m_retriedFrames, job, m_now);
    if (const auto number = NotTaken(m_retriedFrames, job, run))
        return number;
    m_readyFrames.reset();
    Bind(m_readyFrames, job);
    return NotTaken(m_readyFrames, job, run);
}

std::optional<int> FrameChoice::NotTaken(SQLite::Statement& frames, std::int64_t job, int run)
{
    while (frames.executeStep()) {
        const int number = frames.getColumn(0).getInt();
        if (m_taken.count({job, number, run}) == 0)
            return number;
    }
    return std::nullopt;
}

} // namespace farm
