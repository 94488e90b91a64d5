#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

/// Compares what each benchmark costs with few and with many entries.
///
/// Takes names of the form "what/entries/place", and of repetitions the quickest.
class RatioReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Prints microseconds by number of entries, and the last's ratio to the first.
    /// @param notJudged part of the names that the limit does not hold for.
    /// @return whether none is above the limit.
    bool Conclude(double limit, const std::string& notJudged) const;

private:
    /// Processor time in microseconds by number of entries, for each "what, place".
    std::map<std::string, std::map<int, double>> m_costs;
};
