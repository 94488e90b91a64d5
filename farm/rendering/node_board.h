#pragma once

#include <QObject>
#include <QString>

#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace farm {

/// A node of a cluster.
struct RenderNode
{
    QString name;
    /// In words, such as "partly allocated".
    QString state;
    /// Further words about its state, such as "not responding"; mostly empty.
    QString detail;
    /// Why the cluster does not use it; mostly empty.
    QString reason;
    /// The job types whose frames the farm does not send to it, each with the message of the last one that could not
    /// begin.
    std::map<QString, QString> leftOut;
};

struct NodeReport
{
    std::vector<RenderNode> nodes;
    std::int64_t time = 0; ///< of the states, in seconds since the epoch; 0 while they are not known
    /// A sentence about why the cluster did not answer the last question; else empty.
    QString fault;
};

/// The last report of a cluster about its nodes. Thread-safe.
class NodeBoard : public QObject
{
    Q_OBJECT

public:
    /// Older states are not shown any more.
    static constexpr std::int64_t LongestAge = 300; // s

    void Post(const NodeReport& report);
    /// The latest report; none when the farm renders without a cluster. The cluster is asked only after somebody has
    /// looked, so newer states show at the next look.
    std::optional<NodeReport> Look(std::int64_t now);

signals:
    /// Emitted in the thread that looks.
    void Looked();

private:
    std::mutex m_mutex;
    std::optional<NodeReport> m_report;
};

} // namespace farm
