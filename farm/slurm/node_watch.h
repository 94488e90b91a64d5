#pragma once

#include "farm/rendering/job_types.h"
#include "farm/rendering/node_board.h"
#include "farm/slurm/cluster_commands.h"
#include "farm/slurm/slurm_settings.h"

#include <chrono>
#include <optional>
#include <set>

namespace farm {

class NodeHealth;

/// Puts the nodes of the partitions that the farm uses on the board. It asks the cluster when somebody looks at the
/// board, no more often than the settings say, and costs nothing otherwise.
class NodeWatch : public QObject
{
    Q_OBJECT

public:
    /// All these objects must outlive the watch.
    struct Dependencies
    {
        ClusterCommands& commands;
        const NodeHealth& health;
        NodeBoard& board;
    };

    NodeWatch(const SlurmSettings& settings, const JobTypes& types, const Dependencies& dependencies);

private:
    using Clock = std::chrono::steady_clock;

    void AskWhenDue();
    void HandleAnswer(const CommandResult& result);

    Dependencies m_deps;
    std::chrono::milliseconds m_interval;
    /// The empty name means the default partition.
    std::set<QString> m_partitions;
    NodeReport m_report;
    bool m_isAsking = false;
    std::optional<Clock::time_point> m_lastAsked;
};

} // namespace farm
