#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace farm {

/// Serves only a few requests of an account at a time, in the order in which they came, so that an account with many
/// connections does not hold up the others. Thread-safe.
class AccountTurns
{
public:
    /// A turn, which ends with its last copy.
    using Turn = std::shared_ptr<const void>;

    /// @param atOnce the most turns of an account at a time.
    /// @param waiting the most requests of an account that wait for a turn.
    AccountTurns(int atOnce, int waiting);

    /// Waits until the account has a turn left. Returns null at once when too many requests of it wait already.
    Turn Take(std::int64_t account);

private:
    struct Line
    {
        int served = 0;
        /// The numbers of the next request to come and of the next one to be served.
        std::uint64_t next = 0;
        std::uint64_t first = 0;
        std::condition_variable moves;

        int Waiting() const { return int(next - first); }
    };

    void End(std::int64_t account);

    const int m_atOnce;
    const int m_mostWaiting;
    std::mutex m_mutex;
    std::map<std::int64_t, Line> m_lines;
};

} // namespace farm
