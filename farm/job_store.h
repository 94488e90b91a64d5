#pragma once

#include "job_conditions.h"
#include "job_status.h"
#include "money.h"
#include "schema.h"

#include <optional>
#include <vector>

namespace farm {

struct NewJob
{
    std::int64_t account = 0;
    std::optional<std::int64_t> project;
    QString type;
    QString name;
    bool rendering = true;
    JobStatus status = JobStatus::Waiting;
    /// A file name, without a folder.
    QString scene;
    int width = 320;
    int height = 180;
    int frames = 1;
    /// Only the first, the middle and the last frame are rendered for now.
    bool prerender = false;
    std::int64_t submittedAt = 0;
};

struct AddedJob
{
    std::int64_t key = 0;
    QString id;
};

struct JobRecord
{
    std::int64_t number = 0;
    QString id;
    QString type;
    QString name;
    std::int64_t submittedAt = 0;
    int progress = 0;
    int status = 0;
    Micros cost = 0;
    /// Why the job has failed.
    QString message;
};

struct JobPage
{
    std::vector<JobRecord> jobs;
    /// Of all pages.
    std::int64_t total = 0;
};

/// The jobs as their accounts see them.
class JobStore
{
public:
    explicit JobStore(Database& database);

    /// Takes the job in with its frames open and the account's next running number.
    AddedJob Add(const NewJob& job);

    /// `page` counts from 1; a page past the end is empty. Both are at least 1 and their product fits.
    JobPage List(
        std::int64_t account, const JobConditions& conditions, std::int64_t page, std::int64_t pageSize);

    /// The account's job with this id, also a deleted one.
    std::optional<JobRecord> Find(std::int64_t account, const QString& id);

    /// Whether the account has a job that is rendered or will be by itself.
    bool HasOpenJobs(std::int64_t account);

private:
    Database& m_database;
};

} // namespace farm
