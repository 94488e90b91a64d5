#include "host/frames/chart_layout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int LeastWidth = 1;      // pixels
constexpr int MostWidth = 28;      // pixels
constexpr int RoomForGap = 4;      // pixels; bars of at least this width leave a gap to the next one
constexpr double Tolerance = 1e-9; // for the rounding errors of powers of ten

} // namespace

double RoundTop(double value)
{
    if (!(value > 0))
        return 1;
    const double power = std::pow(10, std::floor(std::log10(value)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (value <= step * power * (1 + Tolerance))
            return step * power;
    }
    return 10 * power;
}

ChartLayout ChartLayout::Of(const std::vector<double>& values, const QSize& room)
{
    ChartLayout layout;
    if (values.empty() || room.width() < LeastWidth || room.height() < 1)
        return layout;
    layout.top = RoundTop(*std::max_element(values.begin(), values.end()));
    const int count = int(values.size());
    const int shared = (count + room.width() - 1) / room.width();
    const int bars = (count + shared - 1) / shared;
    const double step = std::min(double(room.width()) / bars, double(MostWidth));
    for (int bar = 0; bar < bars; ++bar) {
        ChartBar made;
        made.first = bar * shared;
        made.count = std::min(shared, count - made.first);
        made.value = *std::max_element(values.begin() + made.first, values.begin() + made.first + made.count);
        made.x = int(bar * step);
        made.width = int((bar + 1) * step) - made.x;
        made.width -= made.width >= RoomForGap ? 1 : 0;
        made.height = int(std::lround(made.value / layout.top * room.height()));
        // A small value still gets a visible bar.
        if (made.value > 0)
            made.height = std::max(made.height, 1);
        layout.bars.push_back(made);
    }
    return layout;
}

const ChartBar* ChartLayout::At(int x) const
{
    const auto after = std::upper_bound(
        bars.begin(), bars.end(), x, [](int at, const ChartBar& bar) { return at < bar.x; });
    if (after == bars.begin() || (after == bars.end() && x > bars.back().x + bars.back().width))
        return nullptr;
    return &*(after - 1);
}
