#include "farm/rendering/render_queue.h"

#include "farm/accounts/ledger.h"
#include "farm/base/local_time.h"
#include "farm/jobs/frame_store.h"
#include "farm/jobs/job_status.h"
#include "farm/jobs/job_turn.h"

#include <spdlog/spdlog.h>

#include <map>

namespace farm {

namespace {

std::optional<double> LevelOf(SQLite::Database& connection, std::int64_t account)
{
    SQLite::Statement query(connection, "SELECT level FROM account_use WHERE account = ?");
    Bind(query, account);
    return query.executeStep() ? std::optional(query.getColumn(0).getDouble()) : std::nullopt;
}

/// Undoes the recorded failures that have turned out to be the renderer's fault.
void Forgive(SQLite::Database& connection, const std::vector<FrameKey>& frames, std::int64_t now)
{
    for (const FrameKey& frame : frames) {
        Execute(connection,
            "UPDATE frames SET failures = failures - 1, retry_at = NULL, changed_at = ?4 "
            "WHERE job = ?1 AND number = ?2 AND finished_at IS NULL AND failures > 0 "
            "AND EXISTS (SELECT 1 FROM open_jobs WHERE key = ?1 AND run = ?3)",
            frame.job, frame.number, frame.run, now);
        UpdateTurn(connection, frame.job, now);
    }
}

void StopType(SQLite::Database& connection, const QString& type, const QString& message, std::int64_t now)
{
    const QString text
        = QStringLiteral("The renderer of %1 jobs has failed at once in several jobs since %2. "
                         "The farm tries a frame a minute until one succeeds. Last failure: %3")
              .arg(type, TimeText(now), message);
    Execute(connection, "INSERT OR REPLACE INTO stopped_types(type, message) VALUES (?, ?)", type, text);
    spdlog::error("{}", text.toStdString());
}

/// Changes to announce to an account; with account 0 there are none.
struct Announcement
{
    std::int64_t account = 0;
    AccountChanges changes = {};
    /// Whether a job type was stopped or goes on.
    bool type = false;
};

/// Announces only after the commit, because subscribers then read what has changed.
void Announce(Database& database, ChangeFeed& feed, const Announcement& announcement)
{
    database.AfterCommit([&feed, announcement] {
        if (announcement.account != 0)
            feed.Announce(announcement.account, announcement.changes);
        if (announcement.type)
            feed.AnnounceToAll({{}, true});
    });
}

} // namespace

RenderQueue::RenderQueue(
    Database& database, ChangeFeed& feed, const AccountTerms& terms, const QueueSettings& settings)
    : m_database(database)
    , m_feed(feed)
    , m_terms(terms)
    , m_settings(settings)
    , m_use(settings.useHalfLife.count())
{
    m_database.Read([this](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT type FROM stopped_types");
        while (query.executeStep())
            m_health.Stop(Text(query.getColumn(0)), 0);
    });
}

std::optional<RenderQueue::JobFacts> RenderQueue::FactsOf(SQLite::Database& connection, std::int64_t job)
{
    SQLite::Statement query(connection, "SELECT account, id, type FROM jobs WHERE key = ?");
    Bind(query, job);
    if (!query.executeStep())
        return std::nullopt;
    return JobFacts {query.getColumn(0).getInt64(), Text(query.getColumn(1)), Text(query.getColumn(2))};
}

std::vector<FrameTask> RenderQueue::Choose(
    const FrameDemand& demand, std::set<FrameKey>& taken, std::int64_t now)
{
    Resume(now);
    return m_database.Read([&](SQLite::Database& connection) {
        m_load.Update(connection, taken);
        FrameSelection selection(connection, {m_settings, m_use, m_health, m_load}, demand, taken, now);
        std::vector<FrameTask> chosen;
        while (chosen.size() < demand.most) {
            const auto task = selection.Next();
            if (!task)
                break;
            chosen.push_back(*task);
        }
        return chosen;
    });
}

/// Makes jobs eligible again whose failed frames have paused long enough.
void RenderQueue::Resume(std::int64_t now)
{
    const char* const due = " WHERE status IN (0, 1, 6) AND resume_at > 0 AND resume_at <= ?";
    const bool areDue = m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            std::string("SELECT EXISTS (SELECT 1 FROM jobs INDEXED BY jobs_to_resume") + due + ")");
        Bind(query, now);
        return query.executeStep() && query.getColumn(0).getInt() != 0;
    });
    if (!areDue)
        return;
    m_database.Write([&](SQLite::Database& connection) {
        const std::string resume = std::string("UPDATE jobs SET resume_at = 0") + due;
        Execute(connection, resume.c_str(), now);
    });
}

void RenderQueue::AddUse(
    SQLite::Database& connection, std::int64_t account, std::int64_t coreMilliseconds, std::int64_t now) const
{
    constexpr double Milliseconds = 1000; // per second
    Execute(connection, "INSERT OR REPLACE INTO account_use(account, level) VALUES (?, ?)", account,
        m_use.Add(LevelOf(connection, account), double(coreMilliseconds) / Milliseconds, now));
}

bool RenderQueue::IsWanted(const FrameKey& frame)
{
    return m_database.Read([&frame](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT 1 FROM open_jobs WHERE key = ? AND run = ?");
        Bind(query, frame.job, frame.run);
        return query.executeStep();
    });
}

bool RenderQueue::IsOvertaken(const FrameKey& frame)
{
    return m_database.Read([&frame](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT 1 FROM jobs WHERE key = ? AND run <> ?");
        Bind(query, frame.job, frame.run);
        return query.executeStep();
    });
}

void RenderQueue::Start(const std::set<std::int64_t>& jobs)
{
    m_database.Write([&](SQLite::Database& connection) {
        SQLite::Statement start(connection,
            "UPDATE jobs SET status = ?2 WHERE key = ?1 AND status IN (0, 1, 6) AND status <> ?2 "
            "RETURNING account, id");
        for (const std::int64_t job : jobs) {
            start.reset();
            Bind(start, job, static_cast<int>(JobStatus::Running));
            if (start.executeStep())
                Announce(
                    m_database, m_feed, {start.getColumn(0).getInt64(), {{Text(start.getColumn(1))}, true}});
        }
    });
}

void RenderQueue::TakeOverLimits(const QueueSettings& settings)
{
    m_settings.framesPerAccount = settings.framesPerAccount;
    m_settings.framesPerType = settings.framesPerType;
}

void RenderQueue::PauseJobsInArrears()
{
    const auto paused = m_database.Write([this](SQLite::Database& connection) {
        SQLite::Statement pause(connection,
            std::string("UPDATE jobs INDEXED BY jobs_by_status SET status = iif(status = ?1, ?2, ?3) "
                        "WHERE status IN (0, 1, 6) AND account IN (")
                + m_terms.AccountsInArrears() + ") RETURNING account, id");
        Bind(pause, static_cast<int>(JobStatus::Running), static_cast<int>(JobStatus::PausedInArrears),
            static_cast<int>(JobStatus::Arrears));
        std::map<std::int64_t, AccountChanges> changes;
        while (pause.executeStep())
            changes[pause.getColumn(0).getInt64()].Add({{Text(pause.getColumn(1))}, true});
        return changes;
    });
    for (const auto& [account, changes] : paused)
        Announce(m_database, m_feed, {account, changes});
}

void RenderQueue::Finish(const FrameKey& frame, const Picture& picture, std::int64_t coreMilliseconds,
    std::int64_t now, const QString& log)
{
    const auto recorded = m_database.Write([&](SQLite::Database& connection) {
        if (Execute(connection,
                "UPDATE frames SET finished_at = ?4, changed_at = ?4, file = ?5, size = ?6, checksum = ?7 "
                "WHERE job = ?1 AND number = ?2 AND finished_at IS NULL "
                "AND (SELECT run FROM jobs WHERE key = ?1) = ?3",
                frame.job, frame.number, frame.run, now, picture.name, picture.size, picture.checksum)
            == 0)
            return Announcement {};
        const auto job = FactsOf(connection, frame.job);
        if (!job)
            return Announcement {};
        KeepFrameLog(connection, frame.job, frame.number, log);
        AddCharge(connection, frame.job, frame.number, coreMilliseconds, m_terms, now);
        Execute(connection,
            "UPDATE jobs SET picture_bytes = picture_bytes + ?2, hindrance = '' WHERE key = ?1", frame.job,
            picture.size);
        AddUse(connection, job->account, coreMilliseconds, now);
        const bool isLast = UpdateTurn(connection, frame.job, now);
        const bool goesOn = m_health.IsStopped(job->type);
        m_database.AfterCommit([this, type = job->type, account = job->account, frame] {
            m_health.Succeeded(type, {frame, account});
        });
        if (goesOn)
            Execute(connection, "DELETE FROM stopped_types WHERE type = ?", job->type);
        return Announcement {job->account, {{job->id}, isLast, true}, goesOn};
    });
    Announce(m_database, m_feed, recorded);
}

bool RenderQueue::Fail(const FrameKey& frame, const QString& message, std::int64_t now, const QString& log,
    std::int64_t coreMilliseconds, std::optional<std::int64_t> seconds)
{
    bool hasFailed = false;
    const auto failed = m_database.Write([&](SQLite::Database& connection) {
        const auto job = FactsOf(connection, frame.job);
        if (!job)
            return Announcement {};
        AddUse(connection, job->account, coreMilliseconds, now);
        // A failure whose record is rolled back will be reported again and must not count twice.
        TypeHealth health = m_health;
        const auto verdict = seconds ? health.Failed(job->type, {frame, job->account}, *seconds, now)
                                     : TypeHealth::Verdict::Alive;
        m_database.AfterCommit([this, health] { m_health = health; });
        const bool counts = verdict == TypeHealth::Verdict::Alive || verdict == TypeHealth::Verdict::Stopped;
        if (Retry(connection, frame, counts, now, log))
            Execute(connection,
                "UPDATE jobs SET message = ?2 WHERE key IN (SELECT key FROM open_jobs WHERE key = ?1) "
                "AND message = ''",
                frame.job, QStringLiteral("Frame %1: %2").arg(frame.number).arg(message));
        if (verdict == TypeHealth::Verdict::Confirmed)
            Forgive(connection, health.FailedInARow(job->type), now);
        if (verdict == TypeHealth::Verdict::Stopped)
            StopType(connection, job->type, message, now);
        hasFailed = UpdateTurn(connection, frame.job, now);
        return Announcement {job->account, {{job->id}, hasFailed}, verdict == TypeHealth::Verdict::Stopped};
    });
    Announce(m_database, m_feed, failed);
    return hasFailed;
}

void RenderQueue::Postpone(const FrameKey& frame, const QString& message, std::int64_t now,
    const QString& log, std::int64_t coreMilliseconds)
{
    const auto postponed = m_database.Write([&](SQLite::Database& connection) {
        const auto job = FactsOf(connection, frame.job);
        if (!job)
            return Announcement {};
        AddUse(connection, job->account, coreMilliseconds, now);
        Retry(connection, frame, false, now, message + QLatin1Char('\n') + log);
        UpdateTurn(connection, frame.job, now);
        const bool isNew
            = Execute(connection,
                  "UPDATE jobs SET hindrance = ?2 WHERE key IN (SELECT key FROM open_jobs WHERE key "
                  "= ?1 AND run = ?3) AND hindrance <> ?2",
                  frame.job, QStringLiteral("Frame %1 waits: %2.").arg(frame.number).arg(message), frame.run)
            != 0;
        return isNew ? Announcement {job->account, {{job->id}, false}} : Announcement {};
    });
    Announce(m_database, m_feed, postponed);
}

/// Sets the time of the next attempt. Returns true when there is none, so that the job passes the frame by.
bool RenderQueue::Retry(SQLite::Database& connection, const FrameKey& frame, bool counts, std::int64_t now,
    const QString& log) const
{
    SQLite::Statement retry(connection,
        "UPDATE frames SET failures = failures + ?4, changed_at = ?5, "
        "retry_at = iif(failures + ?4 >= ?6, ?7, ?5 + (?8 << failures)) "
        "WHERE job = ?1 AND number = ?2 AND finished_at IS NULL "
        "AND (SELECT run FROM jobs WHERE key = ?1) = ?3 RETURNING retry_at");
    Bind(retry, frame.job, frame.number, frame.run, int(counts), now, AttemptsPerFrame, PassedBy,
        std::int64_t(m_settings.retryPause.count()));
    if (!retry.executeStep())
        return false;
    const bool isPassedBy = retry.getColumn(0).getInt64() == PassedBy;
    retry.reset();
    KeepFrameLog(connection, frame.job, frame.number, log);
    return isPassedBy;
}

} // namespace farm
