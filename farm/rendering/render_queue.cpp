#include "farm/rendering/render_queue.h"

#include "farm/accounts/arrears.h"
#include "farm/jobs/frame_store.h"
#include "farm/jobs/job_status.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <map>

namespace farm {

namespace {

std::optional<FrameKey> OpenFrame(
    SQLite::Database& connection, std::int64_t job, int run, const std::set<FrameKey>& taken)
{
    SQLite::Statement frames(connection,
        "SELECT number FROM frames INDEXED BY open_frames WHERE job = ? AND finished_at IS NULL ORDER BY "
        "number");
    Bind(frames, job);
    while (frames.executeStep()) {
        const FrameKey frame {job, frames.getColumn(0).getInt(), run};
        if (taken.count(frame) == 0)
            return frame;
    }
    return std::nullopt;
}

FrameTask ReadTask(SQLite::Statement& job, const FrameKey& frame)
{
    FrameTask task;
    task.key = frame;
    task.jobId = Text(job.getColumn(1));
    task.type = Text(job.getColumn(2));
    task.scene = Text(job.getColumn(3));
    task.width = job.getColumn(4).getInt();
    task.height = job.getColumn(5).getInt();
    task.firstFrame = job.getColumn(6).getInt();
    task.beginsRun = job.getColumn(8).getInt() != 0;
    task.lastFrame = job.getColumn(9).getInt();
    return task;
}

/// Changes to announce to an account; account 0 stands for no change.
struct Announcement
{
    std::int64_t account = 0;
    AccountChanges changes;
};

/// Names the job beside the other changes.
Announcement ChangedJob(SQLite::Database& connection, std::int64_t job, AccountChanges changes)
{
    SQLite::Statement query(connection, "SELECT account, id FROM jobs WHERE key = ?");
    Bind(query, job);
    if (!query.executeStep())
        return {};
    changes.jobs = {Text(query.getColumn(1))};
    return {query.getColumn(0).getInt64(), changes};
}

} // namespace

RenderQueue::RenderQueue(Database& database, ChangeFeed& feed, Micros pricePerCoreSecond)
    : m_database(database)
    , m_feed(feed)
    , m_price(pricePerCoreSecond)
{
}

std::optional<FrameTask> RenderQueue::Next(
    const QStringList& types, std::int64_t lastJob, const std::set<FrameKey>& taken)
{
    const QByteArray typeList
        = QJsonDocument(QJsonArray::fromStringList(types)).toJson(QJsonDocument::Compact);
    return m_database.Read([&](SQLite::Database& connection) -> std::optional<FrameTask> {
        SQLite::Statement jobs(connection,
            "SELECT key, id, type, scene, width, height, "
            "(SELECT min(first) FROM frame_ranges WHERE job = key), run, "
            "NOT EXISTS (SELECT 1 FROM frames WHERE job = key AND finished_at IS NOT NULL), "
            "(SELECT max(last) FROM frame_ranges WHERE job = key) "
            "FROM open_jobs WHERE type IN (SELECT value FROM json_each(?)) "
            "ORDER BY status = 1 DESC, status = 1 AND key <= ?, key");
        Bind(jobs, QString::fromUtf8(typeList), lastJob);
        while (jobs.executeStep()) {
            const auto frame
                = OpenFrame(connection, jobs.getColumn(0).getInt64(), jobs.getColumn(7).getInt(), taken);
            if (frame)
                return ReadTask(jobs, *frame);
        }
        return std::nullopt;
    });
}

bool RenderQueue::IsWanted(const FrameKey& frame)
{
    return m_database.Read([&frame](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT 1 FROM open_jobs WHERE key = ? AND run = ?");
        Bind(query, frame.job, frame.run);
        return query.executeStep();
    });
}

void RenderQueue::Start(std::int64_t job)
{
    const auto started = m_database.Write([job](SQLite::Database& connection) {
        const bool isStarted = Execute(connection,
                                   "UPDATE jobs SET status = ?2 "
                                   "WHERE key IN (SELECT key FROM open_jobs WHERE key = ?1 AND status <> ?2)",
                                   job, static_cast<int>(JobStatus::Running))
            != 0;
        return isStarted ? ChangedJob(connection, job, {{}, true}) : Announcement {};
    });
    m_feed.Announce(started.account, started.changes);
}

void RenderQueue::PauseJobsInArrears()
{
    const auto paused = m_database.Write([](SQLite::Database& connection) {
        SQLite::Statement pause(connection,
            std::string("UPDATE jobs SET status = iif(status = ?1, ?2, ?3) WHERE key IN "
                        "(SELECT key FROM open_jobs WHERE account IN (")
                + AccountsInArrears + ")) RETURNING account, id");
        Bind(pause, static_cast<int>(JobStatus::Running), static_cast<int>(JobStatus::PausedInArrears),
            static_cast<int>(JobStatus::Arrears));
        std::map<std::int64_t, AccountChanges> changes;
        while (pause.executeStep())
            changes[pause.getColumn(0).getInt64()].Add({{Text(pause.getColumn(1))}, true});
        return changes;
    });
    for (const auto& [account, changes] : paused)
        m_feed.Announce(account, changes);
}

void RenderQueue::Finish(const FrameKey& frame, const Picture& picture, std::int64_t coreMilliseconds,
    std::int64_t now, const QString& log)
{
    const Micros amount = Charge(coreMilliseconds, m_price);
    const auto recorded = m_database.Write([&](SQLite::Database& connection) {
        if (Execute(connection,
                "UPDATE frames SET finished_at = ?4, changed_at = ?4, file = ?5, size = ?6, checksum = ?7 "
                "WHERE job = ?1 AND number = ?2 AND finished_at IS NULL "
                "AND (SELECT run FROM jobs WHERE key = ?1) = ?3",
                frame.job, frame.number, frame.run, now, picture.name, picture.size, picture.checksum)
            == 0)
            return Announcement {};
        KeepFrameLog(connection, frame.job, frame.number, log);
        Execute(connection,
            "INSERT INTO charges(account, job, frame, core_milliseconds, amount, charged_at) "
            "SELECT account, key, ?2, ?3, ?4, ?5 FROM jobs WHERE key = ?1",
            frame.job, frame.number, coreMilliseconds, amount, now);
        Execute(connection,
            "UPDATE accounts SET balance = balance - ?2 "
            "WHERE key = (SELECT account FROM jobs WHERE key = ?1)",
            frame.job, amount);
        const bool isLast = Execute(connection,
                                "UPDATE jobs SET status = ?2, ended_at = ?3 "
                                "WHERE key IN (SELECT key FROM open_jobs WHERE key = ?1) AND NOT EXISTS "
                                "(SELECT 1 FROM frames INDEXED BY open_frames WHERE job = ?1 AND "
                                "finished_at IS NULL)",
                                frame.job, static_cast<int>(JobStatus::Finished), now)
            != 0;
        return ChangedJob(connection, frame.job, {{}, isLast, true});
    });
    m_feed.Announce(recorded.account, recorded.changes);
}

bool RenderQueue::Fail(const FrameKey& frame, const QString& message, std::int64_t now, const QString& log)
{
    const auto failed = m_database.Write([&](SQLite::Database& connection) {
        if (Execute(connection,
                "UPDATE frames SET failures = failures + 1, changed_at = ?4 WHERE job = ?1 AND number = ?2 "
                "AND (SELECT run FROM jobs WHERE key = ?1) = ?3",
                frame.job, frame.number, frame.run, now)
            != 0)
            KeepFrameLog(connection, frame.job, frame.number, log);
        const bool hasFailed = Execute(connection,
                                   "UPDATE jobs SET status = ?3, ended_at = ?4, message = ?5 "
                                   "WHERE key IN (SELECT key FROM open_jobs WHERE key = ?1) "
                                   "AND (SELECT failures FROM frames WHERE job = ?1 AND number = ?2) >= ?6",
                                   frame.job, frame.number, static_cast<int>(JobStatus::Failed), now, message,
                                   AttemptsPerFrame)
            != 0;
        return hasFailed ? ChangedJob(connection, frame.job, {{}, true}) : Announcement {};
    });
    m_feed.Announce(failed.account, failed.changes);
    return failed.account != 0;
}

} // namespace farm
