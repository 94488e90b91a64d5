#pragma once

#include "farm/base/money.h"
#include "farm/base/schema.h"
#include "farm/jobs/frame_ranges.h"
#include "farm/jobs/job_conditions.h"
#include "farm/jobs/job_files.h"
#include "farm/jobs/job_status.h"

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
    /// The path of one of `files` or, when there are none, the name of a scene that comes with the farm.
    QString scene;
    std::vector<JobFile> files;
    int width = 320;
    int height = 180;
    /// They have no frame in common.
    std::vector<FrameRange> frames = std::vector<FrameRange>(1);
    /// Only the first, the middle and the last frame are rendered for now.
    bool prerender = false;
    std::int64_t submittedAt = 0;
    /// The client's own name of the submission, unique within the account; null for none.
    QString submission;
};

struct AddedJob
{
    std::int64_t key = 0;
    QString id;
    std::int64_t number = 0;
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

/// How a job is rendered.
struct JobPlan
{
    std::vector<FrameRange> frames;
    int width = 0;
    int height = 0;
    /// Frames are missing that only a full render adds.
    bool prerender = false;
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

    /// The job that came with this submission.
    std::optional<AddedJob> FindSubmission(std::int64_t account, const QString& submission);

    /// How the account's job with this id is rendered.
    std::optional<JobPlan> Plan(std::int64_t account, const QString& id);

    /// Whether the account has a job that is rendered or will be by itself.
    bool HasOpenJobs(std::int64_t account);

private:
    Database& m_database;
};

} // namespace farm
