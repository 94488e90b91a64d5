#pragma once

#include "farm/rendering/frame_task.h"
#include "farm/rendering/job_types.h"
#include "farm/runner/run.h"
#include "farm/runner/run_order.h"

#include <QObject>

#include <vector>

namespace farm {

/// A run to start.
struct Run
{
    RunId id;
    FrameTask task;
    RunOrder order;
};

/// A run that an earlier farm on the same data has begun and whose end it has not recorded.
struct RecordedRun
{
    RunId id;
    FrameTask task;
    RunFiles files;
    /// The executor's own name for the run, from Accepted(); empty when the run had not been accepted.
    QString handle;
};

enum class Availability {
    Unknown,
    Missing,
    Present,
};

/// Runs renderers, here or elsewhere. All operations and signals belong to the scheduler's thread; the operations return
/// quickly. A run that has been started or attached ends with exactly one Ended(), never from inside an operation.
class Executor : public QObject
{
    Q_OBJECT

public:
    /// The number of runs to hold at a time, running and queued.
    virtual int Capacity() const = 0;
    /// Runs that it already holds go on, even beyond the new number.
    virtual void SetCapacity(int runs) = 0;
    /// Whether the type's renderer is installed where frames run. After Unknown, AvailabilityChanged() follows.
    virtual Availability Has(const JobType& type) = 0;
    /// Why frames of the type wait, as a clause for users and administrators; empty when nothing hinders them.
    virtual QString HindranceOf(const JobType& type) const = 0;
    /// The runs are recorded and their orders written. What cannot be started ends like any other run.
    virtual void Start(const std::vector<Run>& runs) = 0;
    /// The run's end is reported later: Cancelled, or another one that came first. Unknown runs are ignored.
    virtual void Cancel(const RunId& run) = 0;
    /// Called once, before all other operations: takes over what is left of these runs. Those that it does not hold end
    /// as MachineLost.
    virtual void Attach(const std::vector<RecordedRun>& runs) = 0;
    /// The farm ends; nothing is reported any more.
    virtual void Stop() = 0;

signals:
    /// The handle is recorded and comes back in RecordedRun. Only for executors that need one.
    void Accepted(const QString& run, const QString& handle);
    /// @param at is in seconds since the epoch.
    void Started(const QString& run, const QString& host, qint64 at);
    void Ended(const QString& run, const farm::RunResult& result);
    /// Has() or HindranceOf() answer otherwise than before.
    void AvailabilityChanged();
};

} // namespace farm
