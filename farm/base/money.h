#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace farm {

/// An amount in millionths of the currency unit; an integer, so that sums stay exact.
using Micros = std::int64_t;

constexpr Micros OneUnit = 1'000'000;

/// The price of a core-second unless the farm is started with a different one.
constexpr Micros DefaultPrice = 10'000;

/// The code of the currency in which the farm charges.
QString Currency();

/// The amount rounded to two decimals, for example "12.50" or "-0.05".
QString MoneyText(Micros amount);

/// The exact amount, with as few decimals as it takes, for example "12.5" or "-0.000001".
QString AmountText(Micros amount);

/// Reads an amount of at most a billion with at most six decimals, such as "12", "12.50" or "-0.000001"; nothing when
/// the text is anything else.
std::optional<Micros> AmountFromText(const QString& text);

/// The price of `coreMilliseconds` of processor time, rounded to the nearest millionth.
Micros Charge(std::int64_t coreMilliseconds, Micros pricePerCoreSecond);

} // namespace farm
