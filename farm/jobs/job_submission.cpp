#include "farm/jobs/job_submission.h"

#include "farm/accounts/account_names.h"
#include "farm/accounts/audit.h"
#include "farm/accounts/project_store.h"
#include "farm/base/errors.h"
#include "farm/uploads/content_store.h"

#include <QSet>

#include <utility>

namespace farm {

namespace {

std::int64_t ProjectOf(SQLite::Database& connection, std::int64_t account, const QString& pool)
{
    const auto project = FindProject(connection, account, pool);
    if (!project)
        throw InvalidInput("pool does not belong to one of the account's projects");
    return *project;
}

} // namespace

JobSubmission::JobSubmission(Database& database, JobStore& jobs, ContentStore& contents,
    const QStringList& types, const AccountTerms& terms, ChangeFeed& feed, std::function<void()> changed,
    DiskReserve reserve)
    : m_database(database)
    , m_jobs(jobs)
    , m_contents(contents)
    , m_types(types)
    , m_terms(terms)
    , m_feed(feed)
    , m_changed(std::move(changed))
    , m_reserve(std::move(reserve))
{
}

AddedJob JobSubmission::Submit(
    std::int64_t account, Submission submission, std::int64_t now, const QString& address)
{
    if (!m_types.contains(submission.job.type))
        throw InvalidInput("type is not one of the farm's job types");
    submission.job.account = account;
    submission.job.submittedAt = now;
    const AddedJob job = m_database.Write([&](SQLite::Database& connection) {
        const auto known = m_jobs.FindSubmission(account, submission.job.submission);
        return known ? *known : Add(connection, submission, address);
    });
    m_feed.Announce(account, {{job.id}, true});
    m_changed();
    return job;
}

AddedJob JobSubmission::Add(SQLite::Database& connection, Submission& submission, const QString& address)
{
    NewJob& job = submission.job;
    m_reserve.Require();
    job.sceneBytes = CheckFiles(job, m_terms.QuotaFor(connection, job.account));
    if (!submission.pool.isEmpty())
        job.project = ProjectOf(connection, job.account, submission.pool);
    job.status = m_terms.IsInArrears(connection, job.account) ? JobStatus::Arrears : JobStatus::Waiting;
    const AddedJob added = m_jobs.Add(job);
    RecordChange(connection, job.submittedAt, {AccountName(connection, job.account), address},
        QStringLiteral("job submit"), added.id);
    return added;
}

std::int64_t JobSubmission::CheckFiles(const NewJob& job, std::int64_t quota)
{
    QSet<QString> checksums;
    for (const JobFile& file : job.files)
        checksums.insert(file.checksum);
    const auto sizes = m_contents.SizesOf(job.account, checksums.values());
    if (sizes.size() != checksums.size())
        throw Conflict("the farm does not have the content of one of the files");
    // The job may get a copy of each file, so a content counts as often as it is named.
    std::int64_t bytes = 0;
    for (const JobFile& file : job.files) {
        bytes += sizes.value(file.checksum);
        if (bytes > quota)
            throw QuotaExceeded("the files of the job exceed the account's quota");
    }
    return bytes;
}

} // namespace farm
