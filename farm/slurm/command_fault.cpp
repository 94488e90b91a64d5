#include "farm/slurm/command_fault.h"

#include <algorithm>
#include <iterator>

namespace farm {

namespace {

struct Cause
{
    /// Part of the command's output.
    const char* sign;
    const char* text;
    CommandFault fault = CommandFault::Unreachable;
};

// The first cause whose sign is in the output counts. A controller with another munge key closes the connection.
constexpr Cause Causes[] = {
    {"Munge encode failed", "the munge service does not run on this machine"},
    {"Zero Bytes were transmitted",
        "the controller refuses this machine; its munge key (/etc/munge/munge.key) or Slurm version may be "
        "another one"},
    {"Invalid authentication credential", "the munge key (/etc/munge/munge.key) is not that of the cluster"},
    {"Expired authentication credential", "the clocks of this machine and of the controller are apart"},
    {"Rewound", "the clocks of this machine and of the controller are apart"},
    {"rotocol authentication error",
        "the munge keys or the clocks of this machine and of the controller differ"},
    {"Could not establish a configuration source",
        "there is no configuration of Slurm (/etc/slurm/slurm.conf) on this machine"},
    {"Unable to contact slurm controller", "the controller (slurmctld) does not answer"},
    {"timed out", "the controller (slurmctld) does not answer in time", CommandFault::InDoubt},
    {"Invalid partition", "the cluster has no such partition", CommandFault::Refused},
    {"Invalid account", "the cluster does not know the account, or it may not use the partition",
        CommandFault::Refused},
    {"Invalid qos", "the cluster does not know the QOS, or the account may not use it",
        CommandFault::Refused},
    {"Invalid feature", "no node has the features of the constraint", CommandFault::Refused},
    {"Invalid license", "the cluster has no such licence", CommandFault::Refused},
    {"Invalid generic resource", "no node has such GPUs", CommandFault::Refused},
    {"node configuration is not available",
        "no node of the partition has the cores and the memory that a frame asks for", CommandFault::Refused},
    {"Requested time limit is invalid", "the partition allows no task as long as a frame may take",
        CommandFault::Refused},
    {"not permitted to use this partition", "the user who runs the farm may not use the partition",
        CommandFault::Refused},
    {"Required partition not available", "the partition of the cluster is inactive or drained",
        CommandFault::Refused},
    {"Job violates accounting/QOS policy", "a limit of the account or of the QOS on the cluster is reached"},
    {"Invalid job array", "the cluster allows no arrays of this size (MaxArraySize)", CommandFault::Refused},
    {"Access/permission denied", "the user who runs the farm may not do this on the cluster",
        CommandFault::Refused},
};

const Cause* CauseOf(const CommandResult& result)
{
    const auto cause = std::find_if(std::begin(Causes), std::end(Causes),
        [&result](const Cause& one) { return result.errors.contains(one.sign); });
    return cause == std::end(Causes) ? nullptr : cause;
}

QString LastLine(const QByteArray& text)
{
    return QString::fromUtf8(text).trimmed().section(QLatin1Char('\n'), -1);
}

} // namespace

CommandFault FaultOf(const CommandResult& result)
{
    if (result.end == CommandResult::End::TimedOut)
        return CommandFault::InDoubt;
    const Cause* const cause = CauseOf(result);
    return cause ? cause->fault : CommandFault::Unreachable;
}

QString FaultText(const QString& program, const CommandResult& result)
{
    if (result.end == CommandResult::End::NotFound)
        return QStringLiteral("the program %1 is missing (Debian: slurm-client)").arg(program);
    if (result.end == CommandResult::End::TimedOut)
        return QStringLiteral("%1 takes too long; the controller (slurmctld) may be overloaded").arg(program);
    const QString written = LastLine(result.errors);
    if (const Cause* const cause = CauseOf(result))
        return QStringLiteral("%1 (%2)").arg(QLatin1String(cause->text), written);
    return QStringLiteral("%1 ended with code %2 (%3)").arg(program).arg(result.exitCode).arg(written);
}

} // namespace farm
