#pragma once

#include "farm/slurm/cluster_commands.h"

namespace farm {

enum class CommandFault {
    /// The command had no effect; another attempt may have one.
    Unreachable,
    /// The command may have taken effect.
    InDoubt,
    /// The cluster will refuse the command until its configuration or the farm's settings are changed.
    Refused,
};

/// The kind of fault of a command that has failed.
CommandFault FaultOf(const CommandResult& result);

/// Says in a sentence why the command has failed and what can be done.
QString FaultText(const QString& program, const CommandResult& result);

} // namespace farm
