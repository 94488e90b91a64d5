#include "host/farmclient/speed_meter.h"

#include <algorithm>

namespace {

constexpr qint64 Window = 4000;        // ms
constexpr qint64 SampleInterval = 100; // ms

} // namespace

void SpeedMeter::Sample(qint64 now, qint64 moved)
{
    if (!m_samples.empty() && now - m_samples.back().first < SampleInterval)
        return;
    m_samples.emplace_back(now, moved);
    while (m_samples.size() > 2 && now - m_samples.front().first > Window)
        m_samples.pop_front();
}

double SpeedMeter::Speed(qint64 now, qint64 moved) const
{
    if (m_samples.empty())
        return 0;
    const qint64 time = std::max(now - m_samples.front().first, SampleInterval);
    return static_cast<double>(moved - m_samples.front().second) * 1000 / static_cast<double>(time);
}

ByteUnit ByteUnit::Of(double bytes)
{
    if (bytes >= 1e9)
        return {1e9, "GB"};
    if (bytes >= 1e6)
        return {1e6, "MB"};
    return {1e3, "kB"};
}

QString SpeedText(double bytesPerSecond)
{
    const ByteUnit unit = ByteUnit::Of(bytesPerSecond);
    return QStringLiteral("%1 %2/s").arg(unit.Number(bytesPerSecond), QLatin1String(unit.name));
}
