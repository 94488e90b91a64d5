#include "farm/jobs/frame_store.h"

#include "farm/base/errors.h"
#include "farm/jobs/job_status.h"

namespace farm {

namespace {

FrameRecord ReadFrame(SQLite::Statement& row)
{
    FrameRecord frame;
    frame.number = row.getColumn(0).getInt();
    const int failures = row.getColumn(1).getInt();
    const bool isFinished = row.getColumn(2).getInt() != 0;
    frame.attempts = failures + int(isFinished);
    if (isFinished)
        frame.state = FrameState::Finished;
    else if (failures >= AttemptsPerFrame)
        frame.state = FrameState::Failed;
    frame.file = Text(row.getColumn(3));
    frame.size = row.getColumn(4).getInt64();
    frame.cost = row.getColumn(5).getInt64();
    if (isFinished)
        frame.coreMilliseconds = row.getColumn(6).getInt64();
    return frame;
}

std::int64_t KeyOf(SQLite::Database& connection, std::int64_t account, const QString& job)
{
    SQLite::Statement query(connection, "SELECT key FROM jobs WHERE account = ? AND id = ?");
    Bind(query, account, job);
    if (!query.executeStep())
        throw NotFound("there is no such job");
    return query.getColumn(0).getInt64();
}

/// The pictures of a deleted job are gone, or will be soon.
bool IsDeleted(SQLite::Database& connection, std::int64_t job)
{
    SQLite::Statement query(connection, "SELECT status FROM jobs WHERE key = ?");
    Bind(query, job);
    return query.executeStep() && query.getColumn(0).getInt() == static_cast<int>(JobStatus::Deleted);
}

int CountOf(SQLite::Database& connection, std::int64_t job)
{
    SQLite::Statement query(connection, "SELECT frames FROM job_sums WHERE job = ?");
    Bind(query, job);
    return query.executeStep() ? query.getColumn(0).getInt() : 0;
}

int PriorityOf(SQLite::Database& connection, std::int64_t job)
{
    SQLite::Statement query(connection, "SELECT priority FROM jobs WHERE key = ?");
    Bind(query, job);
    return query.executeStep() ? query.getColumn(0).getInt() : 0;
}

} // namespace

FrameStore::FrameStore(Database& database)
    : m_database(database)
{
}

FrameList FrameStore::List(std::int64_t account, const QString& job, std::int64_t since)
{
    return m_database.Read([&](SQLite::Database& connection) {
        FrameList list;
        list.job = KeyOf(connection, account, job);
        list.total = CountOf(connection, list.job);
        list.priority = PriorityOf(connection, list.job);
        // Without the plus, SQLite would go through all frames in the order of their numbers to find the few changed
        // ones. A frame has a charge for each run of the job; the last one is that of the picture.
        SQLite::Statement query(connection,
            "SELECT number, failures, finished_at IS NOT NULL, iif(?3, '', coalesce(file, '')), "
            "iif(?3, 0, coalesce(size, 0)), "
            "(SELECT coalesce(sum(amount), 0) FROM charges WHERE job = frames.job AND frame = number), "
            "(SELECT core_milliseconds FROM charges WHERE job = frames.job AND frame = number "
            "ORDER BY key DESC LIMIT 1) "
            "FROM frames WHERE job = ?1 AND changed_at >= ?2 ORDER BY +number");
        Bind(query, list.job, since, int(IsDeleted(connection, list.job)));
        while (query.executeStep())
            list.frames.push_back(ReadFrame(query));
        return list;
    });
}

QString FrameStore::Log(std::int64_t account, const QString& job, int number)
{
    return m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT coalesce(text, '') FROM frames LEFT JOIN frame_logs "
            "ON frame_logs.job = frames.job AND frame = number WHERE frames.job = ? AND number = ?");
        Bind(query, KeyOf(connection, account, job), number);
        if (!query.executeStep())
            throw NotFound("the job has no such frame");
        return Text(query.getColumn(0));
    });
}

void KeepFrameLog(SQLite::Database& connection, std::int64_t job, int frame, const QString& text)
{
    Execute(
        connection, "INSERT OR REPLACE INTO frame_logs(job, frame, text) VALUES (?, ?, ?)", job, frame, text);
}

} // namespace farm
