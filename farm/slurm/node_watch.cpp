#include "farm/slurm/node_watch.h"

#include "farm/base/local_time.h"
#include "farm/slurm/batch.h"
#include "farm/slurm/cluster_node.h"
#include "farm/slurm/command_fault.h"
#include "farm/slurm/node_health.h"

namespace farm {

NodeWatch::NodeWatch(const SlurmSettings& settings, const JobTypes& types, const Dependencies& dependencies)
    : m_deps(dependencies)
    , m_interval(settings.interval)
{
    for (const JobType& type : types) {
        // sbatch takes several partitions, joined by commas.
        const QStringList names = PlacementFor(settings, type).partition.split(QLatin1Char(','));
        for (const QString& name : names)
            m_partitions.insert(name.trimmed());
    }
    m_deps.board.Post(m_report);
    connect(&m_deps.board, &NodeBoard::Looked, this, &NodeWatch::AskWhenDue);
}

void NodeWatch::AskWhenDue()
{
    const auto now = Clock::now();
    if (m_isAsking || (m_lastAsked && now - *m_lastAsked < m_interval))
        return;
    m_isAsking = true;
    m_lastAsked = now;
    // The farm may use partitions that are hidden from its user.
    m_deps.commands.Run({QStringLiteral("sinfo"),
        {QStringLiteral("--Node"), QStringLiteral("--noheader"), QStringLiteral("--all"),
            QStringLiteral("--format=") + QLatin1String(NodeFormat)},
        {}, [this](const CommandResult& result) { HandleAnswer(result); }});
}

void NodeWatch::HandleAnswer(const CommandResult& result)
{
    m_isAsking = false;
    m_report.fault.clear();
    if (result.IsOk()) {
        m_report.nodes = ReadNodes(result.output, m_partitions);
        m_report.time = Now();
        const auto leftOut = m_deps.health.AllLeftOut(NodeHealth::Clock::now());
        for (RenderNode& node : m_report.nodes) {
            if (const auto types = leftOut.find(node.name); types != leftOut.end())
                node.leftOut = types->second;
        }
    } else {
        m_report.fault = QStringLiteral("The cluster does not tell the states of its nodes: %1.")
                             .arg(FaultText(QStringLiteral("sinfo"), result));
    }
    m_deps.board.Post(m_report);
}

} // namespace farm
