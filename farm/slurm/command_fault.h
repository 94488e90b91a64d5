#pragma once

#include "farm/slurm/cluster_commands.h"

namespace farm {

enum class CommandFault {
    /// It had no effect, and may have one later.
    Unreachable,
    /// It may have had its effect.
    InDoubt,
    /// The cluster will refuse the same again, until its configuration or the farm's settings are changed.
    Refused,
};

/// The kind of fault of a command that has failed.
CommandFault FaultOf(const CommandResult& result);

/// Says in a sentence why the command has failed and what can be done.
QString FaultText(const QString& program, const CommandResult& result);

} // namespace farm
