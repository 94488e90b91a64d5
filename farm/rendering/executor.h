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

/// A run that an earlier process of this farm has begun without recording its end.
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
    /// The most runs that the executor holds at a time, running and queued.
    virtual int Capacity() const = 0;
    /// Runs that the executor already holds go on, even beyond the new number.
    virtual void SetCapacity(int runs) = 0;
    /// Whether the type's renderer is installed where frames run. AvailabilityChanged() follows an answer of Unknown.
    virtual Availability Has(const JobType& type) = 0;
    /// Why frames of the type wait, as a clause for users and administrators; empty when nothing hinders them.
    virtual QString HindranceOf(const JobType& type) const = 0;
    /// Starts runs, which have been recorded and whose orders have been written. One that cannot be started ends like
    /// any other.
    virtual void Start(const std::vector<Run>& runs) = 0;
    /// Cancels a run. Its end is reported later: Cancelled, or another one that came first. Unknown runs are ignored.
    virtual void Cancel(const RunId& run) = 0;
    /// Takes these runs over. Called once, before all other operations. Runs that no longer exist end as MachineLost.
    virtual void Attach(const std::vector<RecordedRun>& runs) = 0;
    /// Called when the farm shuts down; nothing is reported afterwards.
    virtual void Stop() = 0;

signals:
    /// Emitted by executors that need a handle, which is recorded and comes back in RecordedRun.
    void Accepted(const QString& run, const QString& handle);
    /// @param at is in seconds since the epoch.
    void Started(const QString& run, const QString& host, qint64 at);
    void Ended(const QString& run, const farm::RunResult& result);
    /// The results of Has() or HindranceOf() have changed.
    void AvailabilityChanged();
};

} // namespace farm
