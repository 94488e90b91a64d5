#pragma once

#include <QVector>

#include <cstdint>
#include <map>
#include <sys/types.h>

namespace farm {

/// Adds up the processor time of processes that are measured repeatedly. Each counts once, with its latest time.
class ProcessorTime
{
public:
    void LookAt(const QVector<pid_t>& processes);
    std::int64_t Milliseconds() const;

private:
    /// Times are in the kernel's ticks. An id may be used again, but not with the same start time.
    struct Seen
    {
        std::uint64_t start = 0;
        std::int64_t used = 0;
    };
    static bool Read(pid_t process, Seen& seen);

    std::map<pid_t, Seen> m_living;
    std::int64_t m_ended = 0;
};

} // namespace farm
