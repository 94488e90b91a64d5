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

    /// @param fileDelay is the time that the nodes' files may take to be seen here.
    explicit RunBook(std::chrono::milliseconds fileDelay);

    /// Adds a batch that is being submitted or that an earlier farm has submitted.
    /// @param files are those of the batch's runs in their order. Runs that are not `held` have ended already.
    void Add(const Batch& batch, const std::vector<RunFiles>& files, const std::set<RunId>& held);
    /// Slurm has accepted the batch under this id.
    void SetJob(const QString& batch, const QString& id);
    /// It is unknown whether Slurm has accepted the batch.
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

    /// Takes over what Slurm knows about the farm's jobs.
    void Update(const std::vector<ClusterTask>& tasks, Clock::time_point now);
    /// Adds what its accounting knows about tasks that have left the queue.
    void AddAccounts(const std::vector<ClusterTask>& tasks);
    /// The batches with runs that have left the queue.
    QStringList GoneBatches() const;
    /// The batches that Slurm does not know after two looks, and so has not accepted.
    QStringList LostSubmissions() const;

    /// Why tasks of the placement will wait until somebody changes something, or why all of them wait at the moment, as a
    /// clause; empty when none do.
    QString HindranceOf(const Placement& placement) const;

    /// The number of runs with which the cluster stays busy until the next update.
    int RunsToHold() const { return m_runsToHold; }

    void Cancel(const RunId& run);
    /// Slurm's ids of tasks of which no run is wanted any more. Each is returned once.
    QStringList TakeTasksToCancel();
    /// The tasks could not be cancelled, so they are returned again.
    void CancelAgain(const QStringList& tasks);

    /// All runs, for whoever knows nothing about their tasks yet.
    std::vector<RunLook> FirstLooks() const;
    /// The runs whose files may have changed.
    std::vector<RunLook> Looks(Clock::time_point now) const;
    /// The type of the run and the node of its task; empty when they are not known.
    std::pair<QString, QString> TypeAndNodeOf(const RunFinding& finding) const;
    /// Whether the node's report about the beginning of the run is new.
    bool MarkStarted(const RunFinding& finding);
    /// Returns the end of the run and forgets it; nothing as long as it has not ended.
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
        /// When the run's task had ended or was gone for the first time.
        std::optional<Clock::time_point> overSince;
    };
    struct HeldBatch
    {
        Batch batch;
        QString job;
        int runs = 0;
        /// The number of looks that have not found a batch in doubt.
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
