#pragma once

#include "farm/accounts/account_terms.h"
#include "farm/base/change_feed.h"
#include "farm/base/disk_reserve.h"
#include "farm/jobs/job_store.h"

#include <QStringList>

#include <functional>

namespace farm {

class ContentStore;

/// A job that a client submits; its values are within their ranges.
struct Submission
{
    /// Account, project, status and time of submission are not set.
    NewJob job;
    /// The project's pool; empty for no project.
    QString pool;
};

/// Turns submissions into jobs. Thread-safe.
class JobSubmission
{
public:
    /// @param types are the names of the farm's job types.
    /// @param terms limit the bytes of a job's files.
    /// @param reserve is the disk space below which no new jobs are accepted.
    /// @param changed is called after each new job, in the thread that submitted it.
    JobSubmission(Database& database, JobStore& jobs, ContentStore& contents, const QStringList& types,
        const AccountTerms& terms, ChangeFeed& feed, std::function<void()> changed, DiskReserve reserve = {});

    /// The job of this submission: a new one, or the one that an earlier call with the same `submission` created.
    /// `now` is in seconds since the epoch, and `address` is where the request comes from. Throws InvalidInput when the
    /// type or the pool is unknown, Conflict when the account has not sent one of the contents, and QuotaExceeded.
    AddedJob Submit(
        std::int64_t account, Submission submission, std::int64_t now, const QString& address = {});

private:
    AddedJob Add(SQLite::Database& connection, Submission& submission, const QString& address);
    /// Returns the size of the files in bytes.
    std::int64_t CheckFiles(const NewJob& job, std::int64_t quota);

    Database& m_database;
    JobStore& m_jobs;
    ContentStore& m_contents;
    QStringList m_types;
    const AccountTerms& m_terms;
    ChangeFeed& m_feed;
    std::function<void()> m_changed;
    DiskReserve m_reserve;
};

} // namespace farm
