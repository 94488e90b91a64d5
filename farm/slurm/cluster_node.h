#pragma once

#include "farm/rendering/node_board.h"

#include <set>

namespace farm {

/// The option that makes sinfo print the format that ReadNodes() reads.
constexpr const char* NodeFormat = "%N|%P|%T|%E";

/// The nodes in the output of sinfo that belong to one of the partitions, each once. Lines that do not describe a node
/// are left out.
/// @param partitions may contain the empty name, which means the cluster's default partition.
std::vector<RenderNode> ReadNodes(const QByteArray& output, const std::set<QString>& partitions);

} // namespace farm
