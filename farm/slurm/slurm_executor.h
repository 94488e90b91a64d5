#pragma once

#include "farm/rendering/executor.h"
#include "farm/slurm/batch_lists.h"
#include "farm/slurm/cluster_commands.h"
#include "farm/slurm/cluster_limits.h"
#include "farm/slurm/node_health.h"
#include "farm/slurm/node_watch.h"
#include "farm/slurm/renderer_probe.h"
#include "farm/slurm/run_book.h"
#include "farm/slurm/waiting_runs.h"

#include <QThread>
#include <QTimer>

#include <algorithm>
#include <map>

namespace farm {

/// Renders on a Slurm cluster with array jobs. One query covers all the farm's jobs and is made no more often than the
/// settings say; while the controller does not answer, everything waits. Tasks go on while no farm runs, and the next
/// farm finds them by the lists of the batches.
class SlurmExecutor : public Executor
{
    Q_OBJECT

public:
    /// Throws std::runtime_error when this machine has no commands of Slurm, or the folder cannot be created.
    /// @param nodes receives the states of the nodes.
    SlurmExecutor(const SlurmSettings& settings, const JobTypes& types, NodeBoard& nodes);
    ~SlurmExecutor() override;

    int Capacity() const override { return std::min(m_settings.frames, m_book.RunsToHold()); }
    void SetCapacity(int runs) override { m_settings.frames = runs; }
    Availability Has(const JobType& type) override;
    QString HindranceOf(const JobType& type) const override;
    void Start(const std::vector<Run>& runs) override;
    void Cancel(const RunId& run) override;
    void Attach(const std::vector<RecordedRun>& runs) override;
    void Stop() override;

private:
    void TakeTurn();
    void RunTurn();
    void LearnLimits();
    void AskQueue();
    void AskAccounting();
    void HandleQueue(const CommandResult& result);
    void LookAtRuns();
    void HandleFindings(const std::vector<RunFinding>& findings);
    void EndTurn();

    void SubmitWaiting();
    void Submit(const std::vector<WaitingRun>& runs);
    void HandleSubmission(const QString& batch, const CommandResult& result);
    /// Takes back a batch that was not accepted: its runs wait again, or end if the cluster has refused them for good.
    void TakeBack(const QString& batch, const QString& refusal = {});
    void CancelTasks();
    void CancelStrangers(const std::vector<ClusterTask>& tasks);
    void ReportEnds();
    void EndLater(const RunId& run, RunEnd end, const QString& message);
    /// Reports the fault of a thing once; again only after the thing had another fault or none.
    void Complain(const QString& thing, const QString& fault);

    SlurmSettings m_settings;
    JobTypes m_types;
    BatchLists m_lists;
    ClusterCommands m_commands;
    RendererProbe m_probe;
    RunBook m_book;
    WaitingRuns m_waiting;
    NodeHealth m_health;
    NodeWatch m_nodes;
    std::vector<std::pair<RunId, RunResult>> m_ends;
    /// Batches from before the restart whose runs are all unwanted.
    QStringList m_strangers;
    QThread m_folderThread;
    RunFolders m_folders;
    QTimer m_turn;
    QTimer m_cancel;
    QTimer m_report;
    bool m_isInTurn = false;
    bool m_hasOtherFaults = false; ///< m_faults has changed since AvailabilityChanged()
    RunBook::Clock::time_point m_lastTurn;
    RunBook::Clock::time_point m_submitAgain;
    std::map<QString, QString> m_faults;
    bool m_isStopped = false;
    int m_arraySize = 0; ///< 0 until it is known
    bool m_hasAccounting = false;

signals:
    /// Handled in the thread of m_folders.
    void LookWanted(const std::vector<farm::RunLook>& looks);
};

} // namespace farm
