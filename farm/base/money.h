#pragma once

#include <QString>

#include <cstdint>

namespace farm {

/// An amount in millionths of the currency unit, so that sums stay exact.
using Micros = std::int64_t;

/// The price of a core-second where none is set.
constexpr Micros DefaultPrice = 10'000;

/// The one currency of the farm.
QString Currency();

/// Rounded to two decimals, for example "12.50" or "-0.05".
QString MoneyText(Micros amount);

/// What `coreMilliseconds` cost at `pricePerCoreSecond`, rounded to the nearest millionth.
Micros Charge(std::int64_t coreMilliseconds, Micros pricePerCoreSecond);

} // namespace farm
