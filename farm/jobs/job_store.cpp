#include "farm/jobs/job_store.h"

#include "farm/base/errors.h"
#include "farm/base/random.h"
#include "farm/jobs/job_counts.h"

namespace farm {

namespace {

std::int64_t InsertJob(SQLite::Database& connection, const NewJob& job, const QString& id)
{
    SQLite::Statement insert(connection,
        "INSERT INTO jobs(id, account, number, "
        "type, name, folded_name, business, status, scene, width, height, submitted_at, priority, early, "
        "scene_bytes, project, submission) "
        "VALUES (?1, ?2, (SELECT coalesce(max(number), 0) + 1 FROM jobs WHERE account = ?2), "
        "?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, 1, ?13, ?14, ?15)");
    Bind(insert, id, job.account, job.type, job.name, job.name.toCaseFolded(), int(job.rendering),
        static_cast<int>(job.status), job.scene, job.width, job.height, job.submittedAt, job.priority,
        job.sceneBytes);
    if (job.project)
        insert.bind(14, *job.project);
    if (!job.submission.isNull())
        insert.bind(15, job.submission.toStdString());
    insert.exec();
    return connection.getLastInsertRowid();
}

std::int64_t NumberOf(SQLite::Database& connection, std::int64_t job)
{
    SQLite::Statement query(connection, "SELECT number FROM jobs WHERE key = ?");
    Bind(query, job);
    return query.executeStep() ? query.getColumn(0).getInt64() : 0;
}

// The columns of a job record, read from a table `job`.
constexpr const char* RecordColumns
    = "number, id, type, name, submitted_at, status, "
      "(SELECT 100 * finished / frames FROM job_sums WHERE job_sums.job = job.key), "
      "(SELECT cost FROM job_sums WHERE job_sums.job = job.key), "
      "iif(status IN (0, 1, 6), coalesce("
      "(SELECT stopped_types.message FROM stopped_types WHERE stopped_types.type = job.type), "
      "(SELECT hindered_types.message FROM hindered_types WHERE hindered_types.type = job.type), "
      "nullif(hindrance, ''), message), message)";

JobRecord ReadRecord(SQLite::Statement& row)
{
    JobRecord record;
    record.number = row.getColumn(0).getInt64();
    record.id = Text(row.getColumn(1));
    record.type = Text(row.getColumn(2));
    record.name = Text(row.getColumn(3));
    record.submittedAt = row.getColumn(4).getInt64();
    record.status = row.getColumn(5).getInt();
    record.progress = row.getColumn(6).getInt();
    record.cost = row.getColumn(7).getInt64();
    record.message = Text(row.getColumn(8));
    return record;
}

using Found = NameSearches::Found;

/// For conditions that few jobs can meet.
Found FindFew(SQLite::Database& connection, const JobFilter& filter, std::int64_t offset, std::int64_t count)
{
    SQLite::Statement query(
        connection, "SELECT number FROM jobs WHERE " + filter.where + " ORDER BY number DESC");
    filter.BindTo(query);
    Found found;
    for (; query.executeStep(); ++found.total) {
        if (found.total >= offset && found.total - offset < count)
            found.numbers.push_back(query.getColumn(0).getInt64());
    }
    return found;
}

std::vector<JobRecord> ReadRecords(
    SQLite::Database& connection, std::int64_t account, const std::vector<std::int64_t>& numbers)
{
    SQLite::Statement query(connection,
        std::string("SELECT ") + RecordColumns + " FROM jobs AS job WHERE account = ? AND number = ?");
    std::vector<JobRecord> records;
    for (const std::int64_t number : numbers) {
        query.reset();
        Bind(query, account, number);
        if (query.executeStep())
            records.push_back(ReadRecord(query));
    }
    return records;
}

} // namespace

JobStore::JobStore(Database& database)
    : m_database(database)
{
}

AddedJob JobStore::Add(const NewJob& job)
{
    return m_database.Write([&job](SQLite::Database& connection) {
        AddedJob added {0, NewId(), 0};
        added.key = InsertJob(connection, job, added.id);
        added.number = NumberOf(connection, added.key);
        AddFrames(connection, added.key, job.frames, job.prerender);
        AddJobFiles(connection, added.key, job.files);
        return added;
    });
}

JobPage JobStore::List(
    std::int64_t account, const JobConditions& conditions, std::int64_t page, std::int64_t pageSize)
{
    const std::int64_t offset = (page - 1) * pageSize;
    return m_database.Read([&](SQLite::Database& connection) {
        const Found found = Search(connection, account, conditions, offset, pageSize);
        return JobPage {ReadRecords(connection, account, found.numbers), found.total};
    });
}

NameSearches::Found JobStore::Search(SQLite::Database& connection, std::int64_t account,
    const JobConditions& conditions, std::int64_t offset, std::int64_t count)
{
    if (conditions.number || conditions.ids)
        return FindFew(connection, FilterFor(account, conditions), offset, count);
    if (!conditions.nameContains.isEmpty())
        return m_names.Find(connection, account, conditions, offset, count);
    JobCounts counts(connection, account, conditions);
    return {counts.Total(), counts.Numbers(offset, count)};
}

JobRecord JobStore::Find(std::int64_t account, const QString& id)
{
    return m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            std::string("SELECT ") + RecordColumns + " FROM jobs AS job WHERE account = ? AND id = ?");
        Bind(query, account, id);
        if (!query.executeStep())
            throw NotFound("there is no such job");
        return ReadRecord(query);
    });
}

std::optional<AddedJob> JobStore::FindSubmission(std::int64_t account, const QString& submission)
{
    return m_database.Read([&](SQLite::Database& connection) -> std::optional<AddedJob> {
        SQLite::Statement query(
            connection, "SELECT key, id, number FROM jobs WHERE account = ? AND submission = ?");
        Bind(query, account, submission);
        if (!query.executeStep())
            return std::nullopt;
        return AddedJob {
            query.getColumn(0).getInt64(), Text(query.getColumn(1)), query.getColumn(2).getInt64()};
    });
}

JobPlan JobStore::Plan(std::int64_t account, const QString& id)
{
    return m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT key, width, height, (SELECT frames FROM job_sums WHERE job = jobs.key), priority "
            "FROM jobs WHERE account = ? AND id = ?");
        Bind(query, account, id);
        if (!query.executeStep())
            throw NotFound("there is no such job");
        JobPlan plan;
        plan.frames = RangesOf(connection, query.getColumn(0).getInt64());
        plan.width = query.getColumn(1).getInt();
        plan.height = query.getColumn(2).getInt();
        plan.prerender = query.getColumn(3).getInt() < FrameCount(plan.frames);
        plan.priority = query.getColumn(4).getInt();
        return plan;
    });
}

bool JobStore::HasOpenJobs(std::int64_t account)
{
    return m_database.Read([account](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT EXISTS (SELECT 1 FROM open_jobs WHERE account = ?)");
        Bind(query, account);
        return query.executeStep() && query.getColumn(0).getInt() != 0;
    });
}

} // namespace farm
