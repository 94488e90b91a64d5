#pragma once

#include "farm/rendering/node_board.h"

#include <QJsonArray>
#include <QJsonValue>

namespace farm {

/// The nodes of the cluster, and all others on which frames are being rendered. Nodes that the cluster does not use, or
/// that the farm does not use for some job types, come first.
/// @param frames is the number of frames that are being rendered, by the name of the node.
QJsonArray NodesJson(std::vector<RenderNode> nodes, std::map<QString, int> frames);

/// When the cluster last described its nodes, and why it did not answer since; null for a farm without a cluster.
QJsonValue ClusterJson(const std::optional<NodeReport>& report);

} // namespace farm
