#include "bench/ratio_reporter.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

void RatioReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration || run.error_occurred)
            continue;
        std::istringstream name(run.run_name.function_name);
        std::string what;
        std::string entries;
        std::string place;
        std::getline(std::getline(std::getline(name, what, '/'), entries, '/'), place);
        const double cost = run.cpu_accumulated_time / double(run.iterations) * 1e6;
        what.append(", ").append(place);
        const auto [known, isFirst] = m_costs[what].emplace(std::stoi(entries), cost);
        if (!isFirst)
            known->second = std::min(known->second, cost);
    }
}

bool RatioReporter::Conclude(double limit, const std::string& notJudged) const
{
    bool isWithin = true;
    for (const auto& [what, costs] : m_costs) {
        std::printf("%-40s", what.c_str());
        for (const auto& [entries, cost] : costs)
            std::printf(" %8d: %8.1f us", entries, cost);
        const double ratio = costs.rbegin()->second / costs.begin()->second;
        std::printf("   x %.2f\n", ratio);
        if (what.find(notJudged) == std::string::npos)
            isWithin = isWithin && ratio <= limit;
    }
    std::printf("%s the limit of %.1f\n", isWithin ? "Within" : "Above", limit);
    return isWithin;
}
