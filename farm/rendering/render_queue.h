#pragma once

#include "farm/base/money.h"
#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"

#include <QStringList>

#include <optional>
#include <set>

namespace farm {

/// The work that the jobs hold, and what is written down when a piece of it is done.
/// A frame being rendered is not marked: after a crash it is simply still open.
class RenderQueue
{
public:
    RenderQueue(Database& database, Micros pricePerCoreSecond);

    /// The next open frame that is not among `taken`, of an open job of one of these types.
    /// Running jobs go first and take turns: the one after `lastJob` is the next.
    std::optional<FrameTask> Next(
        const QStringList& types, std::int64_t lastJob, const std::set<FrameKey>& taken);

    /// Whether the job is open and still in the frame's run.
    bool IsWanted(const FrameKey& frame);

    /// An open job is running from now on.
    void Start(std::int64_t job);

    /// Pauses the open jobs of the accounts whose balance is spent.
    void PauseJobsInArrears();

    /// Marks the frame finished with this picture, charges it and lowers the account's balance, all or nothing; the job is
    /// finished with its last frame. Nothing happens when the frame is marked already or
    /// belongs to an earlier run.
    void Finish(
        const FrameKey& frame, const Picture& picture, std::int64_t coreMilliseconds, std::int64_t now);

    /// Counts a failed attempt; at the third of a frame the job has failed and keeps the message.
    /// Returns whether the job has failed.
    bool Fail(const FrameKey& frame, const QString& message, std::int64_t now);

private:
    Database& m_database;
    Micros m_price;
};

} // namespace farm
