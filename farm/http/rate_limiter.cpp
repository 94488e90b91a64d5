#include "farm/http/rate_limiter.h"

#include <algorithm>
#include <cmath>

namespace farm {

RateLimiter::RateLimiter(Rate rate)
    : m_rate(rate)
{
}

std::optional<int> RateLimiter::Take(const std::string& key, Clock::time_point now)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_buckets.size() >= m_dropAt)
        DropFullBuckets(now);
    Bucket& bucket = m_buckets.try_emplace(key, Bucket {m_rate.burst, now}).first->second;
    bucket = {Left(bucket, now), now};
    if (bucket.left < 1)
        return std::max(1, static_cast<int>(std::ceil((1 - bucket.left) / m_rate.perSecond)));
    bucket.left -= 1;
    return std::nullopt;
}

void RateLimiter::GiveBack(const std::string& key)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_buckets.find(key);
    if (found != m_buckets.end())
        found->second.left = std::min(m_rate.burst, found->second.left + 1);
}

double RateLimiter::Left(const Bucket& bucket, Clock::time_point now) const
{
    const std::chrono::duration<double> passed = now - bucket.filled;
    return std::min(m_rate.burst, bucket.left + passed.count() * m_rate.perSecond);
}

// A full bucket means the same as no bucket. The next clean-up comes when the remaining buckets have doubled; otherwise
// every request of a flood would search through all keys.
void RateLimiter::DropFullBuckets(Clock::time_point now)
{
    for (auto bucket = m_buckets.begin(); bucket != m_buckets.end();) {
        const bool full = Left(bucket->second, now) >= m_rate.burst;
        bucket = full ? m_buckets.erase(bucket) : std::next(bucket);
    }
    m_dropAt = std::max<std::size_t>(1024, m_buckets.size() * 2);
}

} // namespace farm
