#pragma once

#include "farm/base/money.h"
#include "farm/base/schema.h"
#include "farm/jobs/frame_ranges.h"
#include "farm/jobs/job_conditions.h"
#include "farm/jobs/job_files.h"
#include "farm/jobs/job_status.h"
#include "farm/jobs/name_searches.h"

#include <optional>
#include <vector>

namespace farm {

/// The bounds of a job's priority.
constexpr int LowestPriority = -100;
constexpr int HighestPriority = 100;

struct NewJob
{
    std::int64_t account = 0;
    std::optional<std::int64_t> project;
    QString type;
    QString name;
    /// True for rendering work, false for normal work.
    bool rendering = true;
    JobStatus status = JobStatus::Waiting;
    /// The path of one of `files` or, when there are none, the name of a scene that comes with the farm.
    QString scene;
    std::vector<JobFile> files;
    /// The bytes of `files`.
    std::int64_t sceneBytes = 0;
    int width = 320;  // pixels
    int height = 180; // pixels
    /// Ranges that do not overlap.
    std::vector<FrameRange> frames = std::vector<FrameRange>(1);
    /// Renders only the first, the middle and the last frame for now.
    bool prerender = false;
    std::int64_t submittedAt = 0; // seconds since the epoch
    /// An account's jobs with the highest priority are rendered first.
    int priority = 0;
    /// The client's own name for the submission, unique within the account; null for none.
    QString submission;
};

struct AddedJob
{
    std::int64_t key = 0;
    QString id;
    /// The running number within the account, from 1.
    std::int64_t number = 0;
};

/// A job as lists show it.
struct JobRecord
{
    std::int64_t number = 0;
    QString id;
    QString type;
    QString name;
    std::int64_t submittedAt = 0; // seconds since the epoch
    int progress = 0;             // percent of its frames
    int status = 0;               // a JobStatus
    Micros cost = 0;
    /// Why frames of the job failed, or why the job waits; empty otherwise.
    QString message;
};

/// The render settings of a job.
struct JobPlan
{
    std::vector<FrameRange> frames;
    int width = 0;
    int height = 0;
    /// Whether only the early frames exist; a full render adds the others.
    bool prerender = false;
    int priority = 0;
};

struct JobPage
{
    std::vector<JobRecord> jobs;
    /// The number of jobs on all pages.
    std::int64_t total = 0;
};

/// The jobs as their accounts see them. Thread-safe.
class JobStore
{
public:
    explicit JobStore(Database& database);

    /// Adds the job with its frames open and gives it the account's next running number.
    AddedJob Add(const NewJob& job);

    /// One page of the jobs that meet the conditions, newest first. `page` counts from 1; a page past the end is empty.
    /// `page` and the page size are at least 1, and their product fits into their type.
    JobPage List(
        std::int64_t account, const JobConditions& conditions, std::int64_t page, std::int64_t pageSize);

    /// The account's job with this id, even a deleted one. Throws NotFound.
    JobRecord Find(std::int64_t account, const QString& id);

    /// The job that this submission created; nothing when there is none yet.
    std::optional<AddedJob> FindSubmission(std::int64_t account, const QString& submission);

    /// The render settings of the account's job with this id. Throws NotFound.
    JobPlan Plan(std::int64_t account, const QString& id);

    /// Whether any job of the account is waiting, running or to full render.
    bool HasOpenJobs(std::int64_t account);

private:
    NameSearches::Found Search(SQLite::Database& connection, std::int64_t account,
        const JobConditions& conditions, std::int64_t offset, std::int64_t count);

    Database& m_database;
    NameSearches m_names;
};

} // namespace farm
