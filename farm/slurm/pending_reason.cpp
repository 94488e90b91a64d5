#include "farm/slurm/pending_reason.h"

#include <algorithm>
#include <iterator>

namespace farm {

namespace {

struct Cause
{
    /// The beginning of Slurm's word.
    const char* sign;
    const char* text;
};

constexpr Cause Causes[] = {
    {"PartitionDown", "the partition of the cluster is down"},
    {"PartitionInactive", "the partition of the cluster is inactive"},
    {"PartitionTimeLimit", "a task of the cluster asks for more time than the partition allows"},
    {"PartitionNodeLimit", "a task of the cluster asks for more nodes than the partition allows"},
    {"PartitionConfig", "the partition of the cluster allows no such tasks"},
    {"InvalidAccount", "the cluster does not know the account any more"},
    {"AccountNotAllowed", "the account may not use the partition of the cluster"},
    {"InvalidQOS", "the cluster does not know the QOS any more"},
    {"QOSNotAllowed", "the account may not use the QOS on the cluster"},
    {"BadConstraints", "no node has what a frame asks for"},
    {"ReqNodeNotAvail", "the nodes that a frame needs are down, drained or reserved"},
    {"Nodes required for job are DOWN", "the nodes that a frame needs are down, drained or reserved"},
    {"Nodes_required_for_job_are_DOWN", "the nodes that a frame needs are down, drained or reserved"},
    {"JobHeld", "tasks are held on the cluster (scontrol release)"},
};

// Tasks wait for these reasons every day and go on by themselves, so these are a hindrance only while no task runs.
constexpr Cause Shortages[] = {
    {"Licenses", "all licences of the cluster that a frame needs are taken"},
    {"Reservation", "the reservation of the cluster has not begun"},
    {"Assoc", "a limit of the account on the cluster is reached"},
    {"QOS", "a limit of the QOS on the cluster is reached"},
};

template <std::size_t Count>
QString TextFor(const QString& reason, const Cause (&causes)[Count])
{
    const auto cause = std::find_if(std::begin(causes), std::end(causes),
        [&reason](const Cause& one) { return reason.startsWith(QLatin1String(one.sign)); });
    return cause == std::end(causes) ? QString()
                                     : QStringLiteral("%1 (%2)").arg(QLatin1String(cause->text), reason);
}

} // namespace

QString HindranceIn(const QString& reason)
{
    return TextFor(reason, Causes);
}

QString ShortageIn(const QString& reason)
{
    return HindranceIn(reason).isEmpty() ? TextFor(reason, Shortages) : QString();
}

} // namespace farm
