#pragma once

#include <QVector>

#include <cstdint>
#include <functional>
#include <sys/types.h>

/// The processes below the calling one, which must be a subreaper, so that none can leave the tree.
namespace farm::ProcessTree {

/// The resources that the tree uses at this moment.
struct Use
{
    int tasks = 0;           ///< processes and threads
    std::int64_t memory = 0; ///< bytes, without files that are mapped
    QVector<pid_t> processes;
};
Use Measure();

/// Reaps all processes below that have ended, without waiting for others.
/// @param onEnd gets each of them and its status.
/// @return whether any are left.
bool Reap(const std::function<void(pid_t, int)>& onEnd);

/// Kills all processes below. Returns when there are none, or false after some seconds when the system does not let them go.
bool End();

/// The number of processes and threads that a user has on this machine now.
int TasksOf(uid_t user);

} // namespace farm::ProcessTree
