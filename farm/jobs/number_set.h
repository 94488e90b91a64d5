#pragma once

#include <cstdint>
#include <vector>

namespace farm {

/// A set of running numbers of jobs, stored as bits because it may contain most of them.
class NumberSet
{
public:
    void Insert(std::int64_t number);
    void Remove(std::int64_t number);
    std::int64_t Size() const { return m_size; }
    /// The numbers at index `offset` and following, beginning with the highest number.
    std::vector<std::int64_t> Numbers(std::int64_t offset, std::int64_t count) const;

private:
    std::vector<std::uint64_t> m_words; // a bit for each number
    std::int64_t m_size = 0;
};

} // namespace farm
