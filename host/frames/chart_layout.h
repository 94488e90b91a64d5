#pragma once

#include <QSize>

#include <vector>

/// A bar of a chart, for one value or for neighbouring ones that share it.
struct ChartBar
{
    int first = 0; ///< index of the first value
    int count = 1;
    double value = 0; ///< the largest of its values
    int x = 0;        ///< pixels from the left
    int width = 0;    ///< pixels
    int height = 0;   ///< pixels
};

struct ChartLayout
{
    double top = 1; ///< the value at the upper edge
    std::vector<ChartBar> bars;

    /// Gives each value a bar in the area, or each group of neighbours when there are fewer pixels than values.
    static ChartLayout Of(const std::vector<double>& values, const QSize& room);

    /// @return the bar at this position; null when there is none.
    const ChartBar* At(int x) const;
};

/// @return the value rounded up to 1, 2 or 5 times a power of ten; 1 for a value that is not positive.
double RoundTop(double value);
