#include "farm/rendering/fair_turns.h"

#include <algorithm>
#include <cmath>

namespace farm {

namespace {

// A frame counts at least this much, so that accounts take turns even with frames that cost next to nothing.
constexpr double LeastCoreSeconds = 0.1;
// The logarithm of the most core-seconds. A use beyond it was recorded with a time in the future, by a wrong clock.
constexpr double MostUse = 32;

double UseForItsShare(const Contender& contender)
{
    const double inWork = contender.secondsInWork + contender.framesInWork * LeastCoreSeconds;
    return std::ldexp(contender.recentCoreSeconds + inWork, -contender.priority);
}

} // namespace

RecentUse::RecentUse(std::int64_t halfLifeSeconds)
    : m_halfLife(double(std::max<std::int64_t>(halfLifeSeconds, 1)))
{
}

// Use that has been halved k times counts as use / 2^k now, so the logarithm grows linearly with the time of the use.
double RecentUse::Add(std::optional<double> level, double coreSeconds, std::int64_t now) const
{
    const double use = CoreSeconds(level, now) + std::max(coreSeconds, LeastCoreSeconds);
    return std::log2(use) + double(now) / m_halfLife;
}

double RecentUse::CoreSeconds(std::optional<double> level, std::int64_t now) const
{
    if (!level || !std::isfinite(*level))
        return 0;
    return std::exp2(std::min(*level - double(now) / m_halfLife, MostUse));
}

std::vector<Contender>::iterator FirstInTurn(std::vector<Contender>& contenders)
{
    return std::min_element(
        contenders.begin(), contenders.end(), [](const Contender& one, const Contender& other) {
            return UseForItsShare(one) < UseForItsShare(other);
        });
}

} // namespace farm
