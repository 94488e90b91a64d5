#include "farm/rendering/frame_choice.h"

#include <vector>

namespace farm {

namespace {

constexpr const char* JobsInTurn
    = "SELECT key, run, priority FROM jobs INDEXED BY jobs_in_turn WHERE account = ? AND type = ? "
      "AND status IN (0, 1, 6) AND resume_at = 0 ORDER BY priority DESC, key";
constexpr const char* JobsWithEarlyFrames
    = "SELECT key, run, priority FROM jobs INDEXED BY jobs_with_early_frames WHERE account = ? AND type = ? "
      "AND status IN (0, 1, 6) AND resume_at = 0 AND early = 1 ORDER BY priority DESC, key";
constexpr const char* RetriedFrames
    = "SELECT number FROM frames INDEXED BY failed_frames WHERE job = ?1 AND finished_at IS NULL "
      "AND retry_at IS NOT NULL AND retry_at <= ?2 ORDER BY retry_at";
constexpr const char* ReadyFrames
    = "SELECT number FROM frames INDEXED BY ready_frames WHERE job = ?1 AND finished_at IS NULL "
      "AND retry_at IS NULL ORDER BY early DESC, number";
constexpr const char* EarlyFrames
    = "SELECT number FROM frames INDEXED BY ready_frames WHERE job = ?1 AND early = 1 "
      "AND finished_at IS NULL AND retry_at IS NULL ORDER BY number";

} // namespace

/// The jobs of an account of one type, in the order of their turns, and their frames that can be rendered now.
class FrameChoice::Line
{
public:
    Line(const FrameChoice& choice, std::int64_t account, const QString& type, bool early)
        : m_choice(choice)
        , m_isEarly(early)
        , m_jobs(choice.m_connection, early ? JobsWithEarlyFrames : JobsInTurn)
    {
        Bind(m_jobs, account, type);
    }

    /// The first frame that is not taken.
    std::optional<Candidate> First()
    {
        while (!m_isOver && (!m_hasFrame || m_choice.m_taken.count(m_candidate.frame) != 0))
            Advance();
        return m_isOver ? std::nullopt : std::optional(m_candidate);
    }

private:
    void Advance()
    {
        m_hasFrame = m_hasJob && NextFrame();
        if (m_hasFrame)
            return;
        m_isOver = !m_jobs.executeStep();
        m_hasJob = !m_isOver && m_choice.m_avoided.count(m_jobs.getColumn(0).getInt64()) == 0;
        if (m_hasJob)
            Enter({m_jobs.getColumn(2).getInt(),
                {m_jobs.getColumn(0).getInt64(), 0, m_jobs.getColumn(1).getInt()}});
    }

    /// Goes on with the frames of this job.
    void Enter(const Candidate& job)
    {
        m_candidate = job;
        if (m_frames.empty())
            PrepareQueries();
        for (const auto& frames : m_frames) {
            frames->reset();
            frames->bind(1, job.frame.job);
        }
        m_query = 0;
    }

    void PrepareQueries()
    {
        SQLite::Database& connection = m_choice.m_connection;
        if (m_isEarly) {
            m_frames.push_back(std::make_unique<SQLite::Statement>(connection, EarlyFrames));
            return;
        }
        m_frames.push_back(std::make_unique<SQLite::Statement>(connection, RetriedFrames));
        m_frames.back()->bind(2, m_choice.m_now);
        m_frames.push_back(std::make_unique<SQLite::Statement>(connection, ReadyFrames));
    }

    bool NextFrame()
    {
        while (m_query < m_frames.size() && !m_frames[m_query]->executeStep())
            ++m_query;
        if (m_query == m_frames.size())
            return false;
        m_candidate.frame.number = m_frames[m_query]->getColumn(0).getInt();
        return true;
    }

    const FrameChoice& m_choice;
    const bool m_isEarly;
    SQLite::Statement m_jobs;
    /// Queries for the frames of the job, to be gone through one after another.
    std::vector<std::unique_ptr<SQLite::Statement>> m_frames;
    std::size_t m_query = 0;
    bool m_hasJob = false;
    bool m_hasFrame = false;
    bool m_isOver = false;
    Candidate m_candidate;
};

FrameChoice::FrameChoice(SQLite::Database& connection, const std::set<FrameKey>& taken,
    const std::set<std::int64_t>& avoided, std::int64_t now)
    : m_connection(connection)
    , m_taken(taken)
    , m_avoided(avoided)
    , m_now(now)
{
}

FrameChoice::~FrameChoice() = default;

std::optional<FrameKey> FrameChoice::Of(std::int64_t account, const QStringList& types)
{
    const auto early = Best(account, types, true);
    const auto any = Best(account, types, false);
    if (early && (!any || early->priority >= any->priority))
        return early->frame;
    return any ? std::optional(any->frame) : std::nullopt;
}

std::optional<FrameChoice::Candidate> FrameChoice::Best(
    std::int64_t account, const QStringList& types, bool early)
{
    std::optional<Candidate> best;
    for (const QString& type : types) {
        std::unique_ptr<Line>& line = m_lines[{account, type, early}];
        if (!line)
            line = std::make_unique<Line>(*this, account, type, early);
        const auto first = line->First();
        if (!first)
            continue;
        const bool isBetter = !best || first->priority > best->priority
            || (first->priority == best->priority && first->frame.job < best->frame.job);
        if (isBetter)
            best = first;
    }
    return best;
}

} // namespace farm
