#pragma once

#include "farm/base/money.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Checks and reads values of the command line. A check returns the reason for which a text is
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

/// Accepts this word and every text that the other check accepts.
ValueCheck OrWord(const std::string& word, const ValueCheck& check);

/// Reads an amount; the text must have passed IsAmount().
Micros AmountOf(const std::string& text);

} // namespace farm
