#include "farm/admin/command_values.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace farm {

ValueCheck IsWholeNumber(std::int64_t least, std::int64_t most)
{
    return [least, most](const std::string& text) -> std::string {
        std::int64_t value = 0;
        const char* const end = text.data() + text.size();
        const auto read = std::from_chars(text.data(), end, value);
        if (read.ec == std::errc() && read.ptr == end && value >= least && value <= most)
            return {};
        return "\"" + text + "\" is not a whole number from " + std::to_string(least) + " to "
            + std::to_string(most);
    };
}

ValueCheck IsAmount(Micros least, Micros most)
{
    return [least, most](const std::string& text) -> std::string {
        const auto amount = AmountFromText(QString::fromStdString(text));
        if (amount && *amount >= least && *amount <= most)
            return {};
        return "\"" + text + "\" is not an amount from " + AmountText(least).toStdString() + " to "
            + AmountText(most).toStdString() + " with at most six decimals";
    };
}

ValueCheck IsOneOf(std::vector<std::string> words)
{
    return [words = std::move(words)](const std::string& text) -> std::string {
        if (std::find(words.begin(), words.end(), text) != words.end())
            return {};
        std::string all;
        for (const std::string& word : words)
            all += (all.empty() ? "" : ", ") + word;
        return "\"" + text + "\" is none of " + all;
    };
}

ValueCheck OrWord(const std::string& word, const ValueCheck& check)
{
    return [word, check](const std::string& text) {
        const std::string fault = text == word ? std::string() : check(text);
        return fault.empty() ? fault : fault + ", nor \"" + word + '"';
    };
}

Micros AmountOf(const std::string& text)
{
    return AmountFromText(QString::fromStdString(text)).value_or(0);
}

} // namespace farm
