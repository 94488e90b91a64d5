#pragma once

#include "farm/base/money.h"
#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"
#include "farm/rendering/picture.h"

#include <QStringList>

#include <optional>
#include <set>

namespace farm {

/// The open frames of all jobs, and the records of those that are finished: pictures, charges and balances.
/// A frame that is being rendered is not marked, so after a crash it is still open.
class RenderQueue
{
public:
    RenderQueue(Database& database, Micros pricePerCoreSecond);

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

    /// Records a finished frame in one transaction: its picture, the charge, the account's lower balance and, with the
    /// last frame, the end of the job. Does nothing when the frame is recorded already or belongs to an earlier run.
    void Finish(
        const FrameKey& frame, const Picture& picture, std::int64_t coreMilliseconds, std::int64_t now);

    /// Counts a failed attempt at the frame. With the third one the job fails and keeps the message.
    /// Returns whether this made the job fail.
    bool Fail(const FrameKey& frame, const QString& message, std::int64_t now);

private:
    Database& m_database;
    Micros m_price;
};

} // namespace farm
