#pragma once

#include "farm/runner/run.h"

#include <chrono>
#include <map>

namespace farm {

/// Notices nodes on which no frame of a job type can even begin, for example because the renderer is missing. They are
/// free again at once and would get most frames.
class NodeHealth
{
public:
    using Clock = std::chrono::steady_clock;

    /// A node is left out after this many faults in a row, and only while another one renders the type.
    static constexpr int FaultsToLeaveOut = 3;
    static constexpr std::chrono::minutes LeftOutFor {10};

    /// Records the end of a run of the type. Returns whether the node has just reached FaultsToLeaveOut.
    bool Note(const QString& type, const QString& node, const RunResult& result, Clock::time_point now);
    /// Forgets the faults, for instance when the cluster refuses to leave the nodes out.
    void Forget(const QString& type);

    /// The nodes that are to get no frames of the type.
    QStringList LeftOut(const QString& type, Clock::time_point now) const;
    /// All nodes that are left out, by name: the types whose frames they do not get, each with the message of the last
    /// fault.
    std::map<QString, std::map<QString, QString>> AllLeftOut(Clock::time_point now) const;

private:
    struct State
    {
        int faults = 0; ///< in a row
        bool hasRendered = false;
        QString message; ///< of the last fault
        Clock::time_point last;
    };

    std::map<QString, std::map<QString, State>> m_states;
};

} // namespace farm
