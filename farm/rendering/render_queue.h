#pragma once

#include "farm/accounts/account_terms.h"
#include "farm/base/change_feed.h"
#include "farm/base/schema.h"
#include "farm/rendering/fair_turns.h"
#include "farm/rendering/frame_selection.h"
#include "farm/rendering/frame_task.h"
#include "farm/rendering/picture.h"
#include "farm/rendering/queue_settings.h"
#include "farm/rendering/type_health.h"
#include "farm/rendering/work_load.h"

#include <optional>
#include <set>
#include <vector>

namespace farm {

/// Finds the open frames of all jobs and records finished ones: their pictures, charges and balances.
/// A frame that is being rendered is not marked, so it is still open after a crash. Changes are announced. Not
/// thread-safe. Times are seconds since the epoch.
class RenderQueue
{
public:
    RenderQueue(
        Database& database, ChangeFeed& feed, const AccountTerms& terms, const QueueSettings& settings = {});

    /// The frames to render next, in the order of their turns: accounts take turns by their recent use.
    /// @param taken are the frames in work, to which these are added.
    std::vector<FrameTask> Choose(const FrameDemand& demand, std::set<FrameKey>& taken, std::int64_t now);

    /// Whether the frame's job is open and has not been restarted since.
    bool IsWanted(const FrameKey& frame);
    /// Whether the job has been restarted since, so that the frame may have been rendered anew.
    bool IsOvertaken(const FrameKey& frame);

    /// Marks the open ones among the jobs as running.
    void Start(const std::set<std::int64_t>& jobs);

    /// Records that the frame has been rendered since `at`; before that, it waits for a machine.
    void NoteStart(const FrameKey& frame, std::int64_t at) { m_load.NoteStart(frame, at); }

    /// Applies the limits of these settings from now on.
    void TakeOverLimits(const QueueSettings& settings);

    /// Pauses the open jobs of all accounts in arrears.
    void PauseJobsInArrears();

    /// Records a finished frame in one transaction: its picture and log, the charge, the account's new balance and, with
    /// the last frame, the end of the job. Does nothing when the frame is recorded already or belongs to an earlier run.
    void Finish(const FrameKey& frame, const Picture& picture, std::int64_t coreMilliseconds,
        std::int64_t now, const QString& log = {});

    /// Counts a failed attempt at the frame, which is tried again after a pause. After the last attempt the job passes
    /// the frame by, goes on with the others and fails at the end; it keeps the message of the first such frame. Renderers
    /// that fail with every scene stop their job type instead. Returns whether the job failed.
    /// @param seconds is the renderer's running time; none when it did not run at all.
    bool Fail(const FrameKey& frame, const QString& message, std::int64_t now, const QString& log = {},
        std::int64_t coreMilliseconds = 0, std::optional<std::int64_t> seconds = 0);
    /// Tries the frame again after a pause without counting the attempt, because the farm was at fault. Until a frame of
    /// the job is finished, the message is shown as the job's hindrance.
    void Postpone(const FrameKey& frame, const QString& message, std::int64_t now, const QString& log = {},
        std::int64_t coreMilliseconds = 0);

private:
    struct JobFacts
    {
        std::int64_t account = 0;
        QString id;
        QString type;
    };

    static std::optional<JobFacts> FactsOf(SQLite::Database& connection, std::int64_t job);
    void Resume(std::int64_t now);
    void AddUse(SQLite::Database& connection, std::int64_t account, std::int64_t coreMilliseconds,
        std::int64_t now) const;
    bool Retry(SQLite::Database& connection, const FrameKey& frame, bool counts, std::int64_t now,
        const QString& log) const;

    Database& m_database;
    ChangeFeed& m_feed;
    const AccountTerms& m_terms;
    QueueSettings m_settings;
    RecentUse m_use;
    TypeHealth m_health;
    WorkLoad m_load;
};

} // namespace farm
