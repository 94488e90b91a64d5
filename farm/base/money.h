#pragma once

#include <QString>

#include <cstdint>

namespace farm {

/// An amount in millionths of the currency unit; an integer, so that sums stay exact.
using Micros = std::int64_t;

/// The price of a core-second unless the farm is started with a different one.
constexpr Micros DefaultPrice = 10'000;

/// The code of the currency in which the farm charges.
QString Currency();

/// The amount rounded to two decimals, for example "12.50" or "-0.05".
QString MoneyText(Micros amount);

/// The price of `coreMilliseconds` of processor time, rounded to the nearest millionth.
Micros Charge(std::int64_t coreMilliseconds, Micros pricePerCoreSecond);

} // namespace farm
