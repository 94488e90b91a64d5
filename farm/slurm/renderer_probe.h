#pragma once

#include "farm/rendering/executor.h"
#include "farm/slurm/batch.h"
#include "farm/slurm/cluster_commands.h"
#include "farm/slurm/cluster_task.h"

#include <map>

namespace farm {

/// Finds out with small jobs whether the nodes have the renderers and quillstar-run-frame, see the shared folder and
/// agree with this machine's clock. After a failure it asks again later.
class RendererProbe : public QObject
{
    Q_OBJECT

public:
    RendererProbe(const SlurmSettings& settings, ClusterCommands& commands);

    /// The first call for a renderer and a placement starts the probe.
    Availability Has(const QString& program, const Placement& placement);
    /// A clause about what is missing or why the probe cannot run; empty when no hindrance is known.
    QString HindranceOf(const QString& program, const Placement& placement) const;
    /// Records that the cluster no longer accepts jobs for the placement, because of this fault.
    void Withdraw(const Placement& placement, const QString& fault);
    /// Whether a job is under way, so that Update() has to be called.
    bool IsWaiting() const;
    /// Whether a job has to be submitted now.
    bool IsDue() const;
    /// Submits the jobs that are due.
    void Submit();
    /// Takes over Slurm's current list of the farm's jobs.
    void Update(const std::vector<ClusterTask>& tasks);

signals:
    /// The results of Has() or HindranceOf() have changed.
    void Changed();
    /// A node has a fault, but can render nevertheless.
    void Warned(const QString& warning);

private:
    using Clock = std::chrono::steady_clock;
    using Question = std::pair<QString, Placement>;

    struct State
    {
        Availability availability = Availability::Unknown;
        QString fault;
        /// The job under way; empty when there is none.
        QString job;
        bool isSubmitted = false;
        qint64 submittedAt = 0; ///< in seconds since the epoch
        std::optional<Clock::time_point> overSince;
        Clock::time_point nextTry;
    };

    static bool IsDue(const State& state);
    void HandleSubmission(const Question& question, const CommandResult& result);
    void Conclude(State& state, Availability availability, const QString& fault);
    void Note(State& state, Availability availability, const QString& fault);
    /// Reads the answer of the job; returns false while there is none.
    bool ReadAnswer(const Question& question, State& state);
    QString AnswerFile(const QString& job) const;
    QByteArray Script(const QString& program, const QString& job) const;

    SlurmSettings m_settings;
    ClusterCommands& m_commands;
    std::map<Question, State> m_states;
};

} // namespace farm
