#pragma once

#include "farm/slurm/batch.h"
#include "farm/slurm/cluster_task.h"
#include "farm/slurm/run_folder.h"

#include <chrono>
#include <map>
#include <optional>
#include <set>

namespace farm {

/// The farm's runs on the cluster: which task renders each of them, and what Slurm and the nodes have reported about it.
/// It knows neither commands nor files.
class RunBook
{
public:
    using Clock = std::chrono::steady_clock;
    static constexpr int LeastToHold = 20;

    /// @param fileDelay is the time after which files written on a node are visible here.
    explicit RunBook(std::chrono::milliseconds fileDelay);

    /// Adds a batch that is being submitted, or was submitted before the farm was restarted.
    /// @param files are the files of the batch's runs, in the same order. Runs that are not `held` have ended already.
    void Add(const Batch& batch, const std::vector<RunFiles>& files, const std::set<RunId>& held);
    /// Records the id under which Slurm has accepted the batch.
    void SetJob(const QString& batch, const QString& id);
    /// Records that it is unknown whether Slurm has accepted the batch.
    void Doubt(const QString& batch);

    struct Returned
    {
        RunId id;
        RunFiles files;
        bool isCancelWanted = false;
    };
    /// Forgets a batch that Slurm has not accepted; returns its runs.
    std::vector<Returned> Remove(const QString& batch);
    const Batch& BatchOf(const QString& batch) const { return m_batches.at(batch).batch; }

    bool IsEmpty() const { return m_runs.empty(); }
    bool Has(const RunId& run) const { return m_runs.count(run) != 0; }

    /// Takes over Slurm's current list of the farm's jobs.
    void Update(const std::vector<ClusterTask>& tasks, Clock::time_point now);
    /// Adds the accounting records of tasks that have left the queue.
    void AddAccounts(const std::vector<ClusterTask>& tasks);
    /// The batches with runs that have left the queue.
    QStringList GoneBatches() const;
    /// The batches in doubt that two updates did not list, so that Slurm cannot have accepted them.
    QStringList LostSubmissions() const;

    /// The reason why tasks of the placement wait until somebody changes something, or why all of them wait now, as a
    /// clause; empty when there is none.
    QString HindranceOf(const Placement& placement) const;

    /// The number of runs that keep the cluster busy until the next update.
    int RunsToHold() const { return m_runsToHold; }

    void Cancel(const RunId& run);
    /// Slurm's ids of the tasks whose runs are all unwanted. Each is returned once.
    QStringList TakeTasksToCancel();
    /// Makes TakeTasksToCancel() return tasks again that could not be cancelled.
    void CancelAgain(const QStringList& tasks);

    /// Looks at all runs, for a restarted farm that knows nothing about their tasks yet.
    std::vector<RunLook> FirstLooks() const;
    /// Looks at the runs whose files may have changed.
    std::vector<RunLook> Looks(Clock::time_point now) const;
    /// The type of the run and the node of its task; empty when they are not known.
    std::pair<QString, QString> TypeAndNodeOf(const RunFinding& finding) const;
    /// Whether the node's report about the beginning of the run is new.
    bool MarkStarted(const RunFinding& finding);
    /// Returns the result of the run and forgets the run; none while it has not ended.
    std::optional<RunResult> TakeEnd(const RunFinding& finding, Clock::time_point now);
    /// The batches whose runs have all ended since the last call.
    QStringList TakeEmptyBatches();

private:
    struct HeldRun
    {
        RunFiles files;
        QString batch;
        int task = 0;
        std::optional<ClusterTask> seen;
        bool isGone = false;
        bool isStarted = false;
        bool isCancelWanted = false;
        /// The time at which the run's task was first seen ended or gone.
        std::optional<Clock::time_point> overSince;
    };
    struct HeldBatch
    {
        Batch batch;
        QString job;
        int runs = 0;
        /// For a batch in doubt, the number of updates that did not list it; none otherwise.
        std::optional<int> doubts;
    };

    bool IsLate(const HeldRun& run, Clock::time_point now) const;
    void FindHindrances();
    void CountRunsToHold();
    static bool HasEnded(const HeldRun& run);
    static bool IsOver(const HeldRun& run) { return run.isGone || HasEnded(run); }

    std::chrono::milliseconds m_fileDelay;
    std::map<QString, HeldBatch> m_batches;
    std::map<RunId, HeldRun> m_runs;
    std::set<QString> m_cancelledTasks;
    std::map<Placement, QString> m_hindrances;
    int m_runsToHold = LeastToHold;
};

} // namespace farm
