#include "farm/rendering/node_board.h"

namespace farm {

void NodeBoard::Post(const NodeReport& report)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_report = report;
}

std::optional<NodeReport> NodeBoard::Look(std::int64_t now)
{
    emit Looked();
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_report && now - m_report->time > LongestAge) {
        m_report->nodes.clear();
        m_report->time = 0;
    }
    return m_report;
}

} // namespace farm
