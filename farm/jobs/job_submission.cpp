#include "farm/jobs/job_submission.h"

#include "farm/accounts/arrears.h"
#include "farm/base/errors.h"
#include "farm/uploads/content_store.h"

#include <QSet>

#include <utility>

namespace farm {

namespace {

std::int64_t ProjectOf(SQLite::Database& connection, std::int64_t account, const QString& pool)
{
    SQLite::Statement query(connection, "SELECT key FROM projects WHERE account = ? AND pool = ?");
    Bind(query, account, pool);
    if (!query.executeStep())
        throw InvalidInput("pool does not belong to one of the account's projects");
    return query.getColumn(0).getInt64();
}

} // namespace

JobSubmission::JobSubmission(Database& database, JobStore& jobs, ContentStore& contents,
    const QStringList& types, std::int64_t quota, ChangeFeed& feed, std::function<void()> changed)
    : m_database(database)
    , m_jobs(jobs)
    , m_contents(contents)
    , m_types(types)
    , m_quota(quota)
    , m_feed(feed)
    , m_changed(std::move(changed))
{
}

AddedJob JobSubmission::Submit(std::int64_t account, Submission submission, std::int64_t now)
{
    if (!m_types.contains(submission.job.type))
        throw InvalidInput("type is not one of the farm's job types");
    submission.job.account = account;
    submission.job.submittedAt = now;
    const AddedJob job = m_database.Write([&](SQLite::Database& connection) {
        const auto known = m_jobs.FindSubmission(account, submission.job.submission);
        return known ? *known : Add(connection, submission);
    });
    m_feed.Announce(account, {{job.id}, true});
    m_changed();
    return job;
}

AddedJob JobSubmission::Add(SQLite::Database& connection, Submission& submission)
{
    NewJob& job = submission.job;
    CheckFiles(job);
    if (!submission.pool.isEmpty())
        job.project = ProjectOf(connection, job.account, submission.pool);
    job.status = IsInArrears(connection, job.account) ? JobStatus::Arrears : JobStatus::Waiting;
    return m_jobs.Add(job);
}

void JobSubmission::CheckFiles(const NewJob& job)
{
    QSet<QString> checksums;
    for (const JobFile& file : job.files)
        checksums.insert(file.checksum);
    const auto sizes = m_contents.SizesOf(job.account, checksums.values());
    if (sizes.size() != checksums.size())
        throw Conflict("the farm does not have the content of one of the files");
    // The job gets a copy of each file, so a content counts as often as it is named.
    std::int64_t bytes = 0;
    for (const JobFile& file : job.files) {
        bytes += sizes.value(file.checksum);
        if (bytes > m_quota)
            throw QuotaExceeded("the files of the job exceed the account's quota");
    }
}

} // namespace farm
