#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

/// Compares the cost of each benchmark with few entries to that with many.
///
/// Benchmarks are named "what/entries/place". The quickest repetition counts.
class RatioReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Prints the cost in microseconds by number of entries, and the ratio of the highest number's cost to the lowest's.
    /// @param notJudged marks, as a part of its name, a benchmark that may exceed the limit.
    /// @return whether all others are within the limit.
    bool Conclude(double limit, const std::string& notJudged) const;

private:
    /// Processor time in microseconds by number of entries, for each "what, place".
    std::map<std::string, std::map<int, double>> m_costs;
};
