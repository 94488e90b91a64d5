#pragma once

#include "farm/rendering/frame_task.h"

#include <QMap>
#include <QString>

#include <map>
#include <set>
#include <vector>

namespace farm {

/// Notices when the renderer of a job type fails at once with every scene, so that the type is stopped before it has
/// failed every job, and lets single frames test whether it works again. The bad scenes of one account stop a type only
/// until a frame of another account has shown that its renderer works. Knows neither jobs nor the database. Times are
/// seconds since the epoch.
class TypeHealth
{
public:
    struct Attempt
    {
        FrameKey frame;
        std::int64_t account = 0;
    };

    /// A type is stopped by this many quick failures in a row, in at least this many jobs.
    static constexpr int FailuresToStop = 6;
    static constexpr int JobsToStop = 3;
    /// A failure within this time is quick.
    static constexpr std::int64_t QuickSeconds = 10;
    static constexpr std::int64_t TrialInterval = 60; // s

    enum class Trial {
        None,     ///< no frame may be rendered now
        OtherJob, ///< one frame may try, from a job that is not among the doubtful ones
        AnyJob,   ///< one frame of any job may try
    };

    enum class Verdict {
        Alive,     ///< the failure counts against the frame
        Stopped,   ///< it counts, and the type has just been stopped
        Confirmed, ///< a trial failed as well: neither it nor the failures that stopped the type count
        Sick,      ///< the type was stopped already; the failure does not count
    };

    /// Stops the type again after a restart of the farm.
    void Stop(const QString& type, std::int64_t now);
    bool IsStopped(const QString& type) const;
    /// The trial that a stopped type may begin now.
    Trial TrialOf(const QString& type, std::int64_t now) const;
    /// Begins a trial of the stopped type with this frame.
    void BeginTrial(const QString& type, const Attempt& attempt, std::int64_t now);

    /// @return whether the type had been stopped and goes on now.
    bool Succeeded(const QString& type, const Attempt& attempt);
    /// @param seconds is the renderer's running time.
    Verdict Failed(const QString& type, const Attempt& attempt, std::int64_t seconds, std::int64_t now);

    /// The last frames that failed in a row.
    std::vector<FrameKey> FailedInARow(const QString& type) const;
    /// The jobs of these frames and those that have been tried since, by which a trial should learn nothing new, with
    /// their accounts.
    std::map<std::int64_t, std::int64_t> DoubtfulJobs(const QString& type) const;

private:
    using Jobs = std::map<std::int64_t, std::int64_t>; // with their accounts

    struct Health
    {
        std::vector<Attempt> row;
        bool stopped = false;
        bool confirmed = false;
        FrameKey trial;
        Jobs tried; ///< by trials, until all jobs have been
        std::int64_t nextTrial = 0;
        std::int64_t nextTrialOfAnyJob = 0;
        /// Accounts whose failures have stopped the type although its renderer worked, until a frame of theirs succeeds.
        /// Their failures do not stop it again.
        std::set<std::int64_t> blamed;
    };

    static Jobs JobsOf(const Health& health);
    static bool IsTrial(const Health& health, const FrameKey& frame);

    QMap<QString, Health> m_types;
};

} // namespace farm
