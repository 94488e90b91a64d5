#pragma once

#include <algorithm>
#include <cstdint>

/// A pause that doubles with each failure in a row, up to a longest one. All times in milliseconds.
class Backoff
{
public:
    constexpr Backoff(int firstPause, int longestPause)
        : m_firstPause(firstPause)
        , m_longestPause(longestPause)
    {
    }

    /// Counts a failure and returns the pause before the next attempt.
    int Fail() { return PauseAfter(++m_failures); }

    /// The failure count starts over.
    void Reset() { m_failures = 0; }

    int Failures() const { return m_failures; }

    /// The pause after this many failures in a row, from 1 on.
    constexpr int PauseAfter(int failures) const
    {
        std::int64_t pause = m_firstPause;
        for (int doubling = 1; doubling < failures && pause < m_longestPause; ++doubling)
            pause *= 2;
        return static_cast<int>(std::min<std::int64_t>(pause, m_longestPause));
    }

private:
    int m_firstPause;
    int m_longestPause;
    int m_failures = 0;
};
