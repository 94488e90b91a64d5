#include "render_queue.h"

#include "database.h"
#include "job_status.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace farm {

namespace {

constexpr int attemptsPerFrame = 3;

std::optional<int> OpenFrame(SQLite::Database& connection, std::int64_t job, const std::set<FrameKey>& taken)
{
    SQLite::Statement frames(connection,
        "SELECT number FROM frames INDEXED BY open_frames WHERE job = ? AND finished_at IS NULL ORDER BY "
        "number");
    Bind(frames, job);
    while (frames.executeStep()) {
        const int number = frames.getColumn(0).getInt();
        if (taken.count({job, number}) == 0)
            return number;
    }
    return std::nullopt;
}

FrameTask ReadTask(SQLite::Statement& job, int frame)
{
    FrameTask task;
    task.key = {job.getColumn(0).getInt64(), frame};
    task.jobId = Text(job.getColumn(1));
    task.type = Text(job.getColumn(2));
    task.scene = Text(job.getColumn(3));
    task.width = job.getColumn(4).getInt();
    task.height = job.getColumn(5).getInt();
    task.frames = job.getColumn(6).getInt();
    return task;
}

} // namespace

RenderQueue::RenderQueue(Database& database, Micros pricePerCoreSecond)
    : m_database(database)
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
            "SELECT key, id, type, scene, width, height, (SELECT max(number) FROM frames WHERE job = "
            "jobs.key) "
            "FROM jobs WHERE status IN (0, 1) AND type IN (SELECT value FROM json_each(?)) "
            "ORDER BY status DESC, status = 1 AND key <= ?, key");
        Bind(jobs, QString::fromUtf8(typeList), lastJob);
        while (jobs.executeStep()) {
            const auto frame = OpenFrame(connection, jobs.getColumn(0).getInt64(), taken);
            if (frame)
                return ReadTask(jobs, *frame);
        }
        return std::nullopt;
    });
}

bool RenderQueue::IsOpen(std::int64_t job)
{
    return m_database.Read([job](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT 1 FROM jobs WHERE key = ? AND status IN (0, 1)");
        Bind(query, job);
        return query.executeStep();
    });
}

void RenderQueue::Start(std::int64_t job)
{
    m_database.Write([job](SQLite::Database& connection) {
        Execute(connection, "UPDATE jobs SET status = ? WHERE key = ? AND status = ?",
            static_cast<int>(JobStatus::Running), job, static_cast<int>(JobStatus::Waiting));
    });
}

void RenderQueue::Finish(const FrameKey& frame, std::int64_t coreMilliseconds, std::int64_t now)
{
    const auto [job, number] = frame;
    const Micros amount = Charge(coreMilliseconds, m_price);
    m_database.Write([&, job = job, number = number](SQLite::Database& connection) {
        if (Execute(connection,
                "UPDATE frames SET finished_at = ? WHERE job = ? AND number = ? AND finished_at IS NULL", now,
                job, number)
            == 0)
            return;
        Execute(connection,
            "INSERT INTO charges(account, job, frame, core_milliseconds, amount, charged_at) "
            "SELECT account, key, ?2, ?3, ?4, ?5 FROM jobs WHERE key = ?1",
            job, number, coreMilliseconds, amount, now);
        Execute(connection,
            "UPDATE accounts SET balance = balance - ?2 WHERE key = (SELECT account FROM jobs WHERE key = "
            "?1)",
            job, amount);
        Execute(connection,
            "UPDATE jobs SET status = ?2, ended_at = ?3 WHERE key = ?1 AND status IN (0, 1) "
            "AND NOT EXISTS (SELECT 1 FROM frames INDEXED BY open_frames WHERE job = ?1 AND finished_at IS "
            "NULL)",
            job, static_cast<int>(JobStatus::Finished), now);
    });
}

bool RenderQueue::Fail(const FrameKey& frame, const QString& message, std::int64_t now)
{
    const auto [job, number] = frame;
    return m_database.Write([&, job = job, number = number](SQLite::Database& connection) {
        Execute(connection, "UPDATE frames SET failures = failures + 1 WHERE job = ? AND number = ?", job,
            number);
        return Execute(connection,
                   "UPDATE jobs SET status = ?3, ended_at = ?4, message = ?5 WHERE key = ?1 AND status IN "
                   "(0, 1) "
                   "AND (SELECT failures FROM frames WHERE job = ?1 AND number = ?2) >= ?6",
                   job, number, static_cast<int>(JobStatus::Failed), now, message, attemptsPerFrame)
            != 0;
    });
}

} // namespace farm
