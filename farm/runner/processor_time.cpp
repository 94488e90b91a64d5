#include "farm/runner/processor_time.h"

#include <QFile>
#include <QList>

#include <unistd.h>

namespace farm {

bool ProcessorTime::Read(pid_t process, Seen& seen)
{
    // The field's index after the program's name, which may contain anything.
    constexpr int User = 11;
    constexpr int System = 12;
    constexpr int Start = 19;
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = file.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() <= Start)
        return false;
    seen.start = fields[Start].toULongLong();
    seen.used = fields[User].toLongLong() + fields[System].toLongLong();
    return true;
}

void ProcessorTime::LookAt(const QVector<pid_t>& processes)
{
    // A list of processes may miss one that is alive, so each known process is checked by itself.
    for (auto known = m_living.begin(); known != m_living.end();) {
        Seen now;
        if (Read(known->first, now) && now.start == known->second.start) {
            (known++)->second = now;
            continue;
        }
        m_ended += known->second.used;
        known = m_living.erase(known);
    }
    for (const pid_t process : processes) {
        Seen now;
        if (m_living.count(process) == 0 && Read(process, now))
            m_living.emplace(process, now);
    }
}

std::int64_t ProcessorTime::Milliseconds() const
{
    constexpr std::int64_t PerSecond = 1000;
    std::int64_t ticks = m_ended;
    for (const auto& known : m_living)
        ticks += known.second.used;
    return ticks * PerSecond / ::sysconf(_SC_CLK_TCK);
}

} // namespace farm
