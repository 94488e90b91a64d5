#include "farm/slurm/node_health.h"

#include <algorithm>

namespace farm {

bool NodeHealth::Note(const QString& type, const QString& node, RunEnd end, Clock::time_point now)
{
    if (node.isEmpty())
        return false;
    State& state = m_states[type][node];
    state.last = now;
    if (end == RunEnd::Done || CountsAsAttempt(end)) {
        state.faults = 0;
        state.hasRendered = true;
    }
    return end == RunEnd::FarmFault && ++state.faults >= FaultsToLeaveOut;
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

} // namespace farm
