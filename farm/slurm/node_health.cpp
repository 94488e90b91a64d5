#include "farm/slurm/node_health.h"

#include <algorithm>

namespace farm {

bool NodeHealth::Note(
    const QString& type, const QString& node, const RunResult& result, Clock::time_point now)
{
    if (node.isEmpty())
        return false;
    State& state = m_states[type][node];
    state.last = now;
    if (result.end == RunEnd::Done || CountsAsAttempt(result.end)) {
        state.faults = 0;
        state.hasRendered = true;
    }
    if (result.end != RunEnd::FarmFault)
        return false;
    state.message = result.message;
    return ++state.faults >= FaultsToLeaveOut;
}

void NodeHealth::Forget(const QString& type)
{
    m_states.erase(type);
}

QStringList NodeHealth::LeftOut(const QString& type, Clock::time_point now) const
{
    const auto nodes = m_states.find(type);
    if (nodes == m_states.end())
        return {};
    const auto renders
        = [](const auto& entry) { return entry.second.hasRendered && entry.second.faults == 0; };
    if (std::none_of(nodes->second.begin(), nodes->second.end(), renders))
        return {};
    QStringList leftOut;
    for (const auto& [node, state] : nodes->second) {
        if (state.faults >= FaultsToLeaveOut && now - state.last < LeftOutFor)
            leftOut.append(node);
    }
    return leftOut;
}

std::map<QString, std::map<QString, QString>> NodeHealth::AllLeftOut(Clock::time_point now) const
{
    std::map<QString, std::map<QString, QString>> all;
    for (const auto& [type, nodes] : m_states) {
        const QStringList leftOut = LeftOut(type, now);
        for (const QString& node : leftOut)
            all[node][type] = nodes.at(node).message;
    }
    return all;
}

} // namespace farm
