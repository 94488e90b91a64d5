#pragma once

#include "farm/base/money.h"
#include "farm/base/schema.h"

#include <vector>

namespace farm {

/// After this many failed attempts at a frame, its job passes the frame by and ends as failed.
constexpr int AttemptsPerFrame = 3;

/// The codes are part of the interface to clients. The database does not record that a frame is being rendered; see
/// FramesInWork.
enum class FrameState {
    Waiting = 0,
    Finished = 2,
    Failed = 3,
};

/// A frame as its account sees it.
struct FrameRecord
{
    int number = 1;
    FrameState state = FrameState::Waiting;
    /// The number of attempts that have ended in the current run of the job.
    int attempts = 0;
    /// The processor time that the finished frame took.
    std::int64_t coreMilliseconds = 0;
    /// The frame's charges in all runs of the job.
    Micros cost = 0;
    /// The picture's name; empty while there is none.
    QString file;
    std::int64_t size = 0; // bytes
};

struct FrameList
{
    /// The database's key of the job.
    std::int64_t job = 0;
    /// Sorted by number.
    std::vector<FrameRecord> frames;
    /// The number of frames of the job.
    int total = 0;
    /// The job's priority among those of its account.
    int priority = 0;
};

/// The frames of jobs as their accounts see them. Thread-safe.
class FrameStore
{
public:
    explicit FrameStore(Database& database);

    /// The frames of the account's job that have changed at `since` or later. Throws NotFound when there is no such job.
    FrameList List(std::int64_t account, const QString& job, std::int64_t since);

    /// The end of the renderer's output in the latest ended attempt; empty when there is none. Throws NotFound when
    /// the account has no such frame.
    QString Log(std::int64_t account, const QString& job, int number);

private:
    Database& m_database;
};

/// Replaces the frame's log. Call it inside a Database::Write().
void KeepFrameLog(SQLite::Database& connection, std::int64_t job, int frame, const QString& text);

} // namespace farm
