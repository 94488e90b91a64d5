#pragma once

#include <cstdint>
#include <optional>
#include <vector>

/// Decides whose turn it is to have a frame rendered. Knows neither jobs nor the database.
namespace farm {

/// The recent core time of an account: after each half-life, earlier use counts half as much. It is
/// kept as a level, which does not change while time passes, so that accounts need not be updated to be compared.
class RecentUse
{
public:
    explicit RecentUse(std::int64_t halfLifeSeconds);

    /// The level after this many more core-seconds at `now`. @param level is the earlier one; none for an account that has
    /// not used anything yet.
    double Add(std::optional<double> level, double coreSeconds, std::int64_t now) const;
    /// The use that still counts at `now`, in core-seconds.
    double CoreSeconds(std::optional<double> level, std::int64_t now) const;

private:
    double m_halfLife;
};

/// An account that has frames to render.
struct Contender
{
    std::int64_t account = 0;
    /// Each step doubles the account's share of the farm.
    int priority = 0;
    double recentCoreSeconds = 0;
    /// The number of the account's frames that are being rendered, and the sum of their times so far in seconds.
    int framesInWork = 0;
    double secondsInWork = 0;
};

/// The account whose turn it is: the one that has used the least of its share. Frames in work count as used,
/// although its core time is recorded only at the end.
/// @return the end when there is none.
std::vector<Contender>::iterator FirstInTurn(std::vector<Contender>& contenders);

} // namespace farm
