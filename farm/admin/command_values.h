#pragma once

#include "farm/base/money.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Values of the command line: what they may be, and how they are read. A check returns the reason for which a text is
/// refused, or an empty text.
namespace farm {

using ValueCheck = std::function<std::string(const std::string& text)>;

constexpr std::int64_t Gibibyte = std::int64_t {1} << 30;
constexpr int MostGibibytes = 1'000'000;
constexpr Micros DearestCoreSecond = 1000 * OneUnit;

ValueCheck IsWholeNumber(std::int64_t least, std::int64_t most);
/// An amount of money with at most six decimals.
ValueCheck IsAmount(Micros least, Micros most);
ValueCheck IsOneOf(std::vector<std::string> words);

/// This word, or what the other check lets pass.
ValueCheck OrWord(const std::string& word, const ValueCheck& check);

/// The amount that a text names which has passed the check.
Micros AmountOf(const std::string& text);

} // namespace farm
