#pragma once

#include "farm/base/change_feed.h"
#include "farm/base/money.h"
#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"
#include "farm/rendering/picture.h"

#include <QStringList>

#include <optional>
#include <set>

namespace farm {

/// Finds the open frames of all jobs and records finished ones: their pictures, charges and balances.
/// A frame that is being rendered is not marked, so it is still open after a crash. What it changes is announced.
class RenderQueue
{
public:
    RenderQueue(Database& database, ChangeFeed& feed, Micros pricePerCoreSecond);

    /// The next open frame outside `taken` of an open job that has one of these types; nothing when there is none.
    /// Running jobs go first and take turns, beginning with the one after `lastJob`.
    std::optional<FrameTask> Next(
        const QStringList& types, std::int64_t lastJob, const std::set<FrameKey>& taken);

    /// Whether the frame's job is open and has not been restarted since.
    bool IsWanted(const FrameKey& frame);

    /// Marks an open job as running.
    void Start(std::int64_t job);

    /// Pauses the open jobs of all accounts in arrears.
    void PauseJobsInArrears();

    /// Records a finished frame in one transaction: its picture and log, the charge, the account's new balance and, with
    /// the last frame, the end of the job. Does nothing when the frame is recorded already or belongs to an earlier run.
    void Finish(const FrameKey& frame, const Picture& picture, std::int64_t coreMilliseconds,
        std::int64_t now, const QString& log = {});

    /// Counts a failed attempt at the frame. The third one makes the job fail, which then keeps the message.
    /// Returns whether the job failed.
    bool Fail(const FrameKey& frame, const QString& message, std::int64_t now, const QString& log = {});

private:
    Database& m_database;
    ChangeFeed& m_feed;
    Micros m_price;
};

} // namespace farm
