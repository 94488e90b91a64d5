#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <vector>

/// One of two actions that are compared.
struct Side
{
    std::function<void()> prepare; ///< before each block of runs, and not timed; may be empty
    std::function<void()> act;
    std::function<void()> settle; ///< after each run, and not timed; may be empty
};

/// A table of costs, each beside its reference. Two actions run in turn, so a busy machine slows both alike, and the
/// medians of their processor times are compared.
class CostTable
{
public:
    /// Adds the ratio of the cost of `measured` to that of `reference`.
    /// @param goal the highest ratio that is good enough; none where the ratio is only for information.
    void Compare(
        const QString& name, std::optional<double> goal, const Side& reference, const Side& measured);

    /// Adds a figure that was measured elsewhere.
    /// @param unit the unit of the figure, e.g. "ms"; "x" for a ratio.
    void Note(const QString& name, std::optional<double> goal, double figure, const QString& unit);

    /// Writes the table as JSON to the file named on the command line after "--json", if any.
    /// @return the program's exit code: 0 when all goals are met, 1 when one is missed, 2 when the file cannot be written.
    int Conclude(const QStringList& arguments) const;

private:
    struct Row
    {
        QString name;
        std::optional<double> goal;
        double figure;
        QString unit;
        double reference = 0; // microseconds; 0 for a figure that was measured elsewhere
        double measured = 0;  // microseconds
    };

    void Add(const Row& row);

    std::vector<Row> m_rows;
};

/// Processor time of this process, in microseconds.
double ProcessorTime();
