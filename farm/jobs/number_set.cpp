#include "farm/jobs/number_set.h"

#include <QtAlgorithms>

namespace farm {

namespace {

constexpr int WordBits = 64;

std::uint64_t BitOf(std::int64_t number)
{
    return std::uint64_t {1} << (number % WordBits);
}

} // namespace

void NumberSet::Insert(std::int64_t number)
{
    const auto word = std::size_t(number / WordBits);
    if (word >= m_words.size())
        m_words.resize(word + 1);
    m_size += (m_words[word] & BitOf(number)) == 0 ? 1 : 0;
    m_words[word] |= BitOf(number);
}

void NumberSet::Remove(std::int64_t number)
{
    const auto word = std::size_t(number / WordBits);
    if (word >= m_words.size() || (m_words[word] & BitOf(number)) == 0)
        return;
    m_words[word] &= ~BitOf(number);
    --m_size;
}

std::vector<std::int64_t> NumberSet::Numbers(std::int64_t offset, std::int64_t count) const
{
    std::vector<std::int64_t> numbers;
    for (std::size_t word = m_words.size(); word-- > 0 && std::int64_t(numbers.size()) < count;) {
        std::uint64_t left = m_words[word];
        const auto inWord = std::int64_t(qPopulationCount(quint64(left)));
        if (inWord <= offset) {
            offset -= inWord;
            continue;
        }
        for (; left != 0 && std::int64_t(numbers.size()) < count; --offset) {
            const int bit = WordBits - 1 - int(qCountLeadingZeroBits(quint64(left)));
            left &= ~(std::uint64_t {1} << bit);
            if (offset <= 0)
                numbers.push_back(std::int64_t(word) * WordBits + bit);
        }
        offset = 0;
    }
    return numbers;
}

} // namespace farm
