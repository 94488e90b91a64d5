#include "farm/http/nodes_json.h"

#include "farm/base/local_time.h"

#include <QJsonObject>

#include <algorithm>

namespace farm {

namespace {

QJsonArray LeftOutJson(const RenderNode& node)
{
    QJsonArray list;
    for (const auto& [type, message] : node.leftOut)
        list.append(QJsonObject {{QStringLiteral("type"), type}, {QStringLiteral("message"), message}});
    return list;
}

} // namespace

QJsonArray NodesJson(std::vector<RenderNode> nodes, std::map<QString, int> frames)
{
    std::stable_partition(nodes.begin(), nodes.end(),
        [](const RenderNode& node) { return !node.reason.isEmpty() || !node.leftOut.empty(); });
    QJsonArray list;
    const auto append = [&list](const RenderNode& node, int count) {
        list.append(QJsonObject {{QStringLiteral("host"), node.name}, {QStringLiteral("frames"), count},
            {QStringLiteral("state"), node.state}, {QStringLiteral("detail"), node.detail},
            {QStringLiteral("reason"), node.reason}, {QStringLiteral("left_out"), LeftOutJson(node)}});
    };
    for (const RenderNode& node : nodes) {
        const auto rendering = frames.extract(node.name);
        append(node, rendering.empty() ? 0 : rendering.mapped());
    }
    for (const auto& [host, count] : frames)
        append({host, {}, {}, {}, {}}, count);
    return list;
}

QJsonValue ClusterJson(const std::optional<NodeReport>& report)
{
    if (!report)
        return {};
    return QJsonObject {{QStringLiteral("time"), report->time == 0 ? QString() : TimeText(report->time)},
        {QStringLiteral("message"), report->fault}};
}

} // namespace farm
