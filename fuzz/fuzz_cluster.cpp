// The output of a Slurm cluster's commands.
#include "farm/slurm/cluster_limits.h"
#include "farm/slurm/cluster_node.h"
#include "farm/slurm/command_fault.h"
#include "farm/slurm/run_end_rules.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray output = Bytes(data, size);
    for (const auto& tasks : {farm::ReadQueue(output), farm::ReadAccounting(output)}) {
        for (const farm::ClusterTask& task : tasks) {
            farm::RunEvidence evidence;
            evidence.task = task;
            evidence.isLate = true;
            const auto end = farm::EndOf(evidence);
            Require(end.has_value() == (farm::PhaseOf(task.state) == farm::TaskPhase::Ended),
                "a run ends when its task has ended");
            Require(!end || end->end != farm::RunEnd::Done, "no run is done without a result");
        }
    }
    std::set<QString> names;
    for (const farm::RenderNode& node : farm::ReadNodes(output, {QString(), QStringLiteral("main")})) {
        Require(!node.name.isEmpty() && !node.state.isEmpty(), "a node has a name and a state");
        Require(names.insert(node.name).second, "a node is listed once");
    }
    const farm::ClusterLimits limits = farm::ReadLimits(output);
    Require(limits.arraySize > 0 && limits.jobs > 0 && limits.secondsKept > 0, "limits are positive");
    farm::Warnings(limits, {});
    const farm::CommandResult failed {farm::CommandResult::End::Exited, 1, {}, output};
    Require(!farm::FaultText(QStringLiteral("sbatch"), failed).isEmpty(), "every fault has a sentence");
    return 0;
}
