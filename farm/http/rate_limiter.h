#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace farm {

/// A rate limit: `burst` uses at once, and `perSecond` uses per second in the long run.
struct Rate
{
    double burst;
    double perSecond;
};

/// Counts uses by key (an address, a name, an account). Thread-safe.
class RateLimiter
{
public:
    using Clock = std::chrono::steady_clock;

    explicit RateLimiter(Rate rate);

    /// Takes one use. Returns nothing, or, when no use is left, the seconds until the next one (at least 1).
    std::optional<int> Take(const std::string& key, Clock::time_point now = Clock::now());

    /// Returns a use that should not count after all.
    void GiveBack(const std::string& key);

private:
    struct Bucket
    {
        double left;
        Clock::time_point filled;
    };

    void DropFullBuckets(Clock::time_point now);
    double Left(const Bucket& bucket, Clock::time_point now) const;

    Rate m_rate;
    std::mutex m_mutex;
    std::unordered_map<std::string, Bucket> m_buckets;
    std::size_t m_dropAt = 1024;
};

} // namespace farm
