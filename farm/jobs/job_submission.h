#pragma once

#include "farm/jobs/job_store.h"
#include "farm/rendering/job_types.h"

#include <QJsonObject>

#include <functional>

namespace farm {

class ContentStore;

/// What a client submits, read and checked by itself: contents, project and balance are not looked at yet.
struct Submission
{
    NewJob job;
    /// Of the project; empty for none.
    QString pool;
};

/// Throws BadInput when a member is missing, of another type or out of range. `types` are the farm's job types.
Submission ReadSubmission(const QJsonObject& body, const QStringList& types);

/// Makes jobs of what clients submit. May be used by several threads at a time.
class JobSubmission
{
public:
    /// `changed` is called after each new job, in the thread that submitted it.
    JobSubmission(Database& database, JobStore& jobs, ContentStore& contents, const QStringList& types,
        std::int64_t quota, std::function<void()> changed);

    /// The job of this submission, which may have come before. Throws BadInput, and ApiRefusal when the account lacks
    /// one of the contents or the files are larger than the quota together.
    AddedJob Submit(std::int64_t account, const QJsonObject& body, std::int64_t now);

private:
    AddedJob Add(SQLite::Database& connection, Submission& submission);

    Database& m_database;
    JobStore& m_jobs;
    ContentStore& m_contents;
    QStringList m_types;
    std::int64_t m_quota;
    std::function<void()> m_changed;
};

} // namespace farm
