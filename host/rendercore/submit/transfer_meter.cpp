#include "host/rendercore/submit/transfer_meter.h"

#include <algorithm>

namespace {

constexpr qint64 SpeedWindow = 4000;   // ms
constexpr qint64 SampleInterval = 100; // ms

struct Unit
{
    double bytes;
    const char* name;
};

Unit UnitFor(double bytes)
{
    if (bytes >= 1e9)
        return {1e9, "GB"};
    if (bytes >= 1e6)
        return {1e6, "MB"};
    return {1e3, "kB"};
}

QString InUnit(double bytes, const Unit& unit)
{
    return QString::number(bytes / unit.bytes, 'f', 1);
}

} // namespace

TransferMeter::TransferMeter(qint64 total)
    : m_total(total)
{
    m_clock.start();
    m_samples.emplace_back(0, 0);
}

void TransferMeter::Add(qint64 bytes)
{
    m_arrived += bytes;
    m_inFlight = 0;
    Sample();
}

void TransferMeter::SetInFlight(qint64 bytes)
{
    m_inFlight = bytes;
    Sample();
}

void TransferMeter::Sample()
{
    const qint64 now = m_clock.elapsed();
    if (now - m_samples.back().first < SampleInterval)
        return;
    m_samples.emplace_back(now, Moved());
    while (m_samples.size() > 2 && now - m_samples.front().first > SpeedWindow)
        m_samples.pop_front();
}

int TransferMeter::Percent() const
{
    return m_total > 0 ? static_cast<int>(std::clamp<qint64>(Done() * 100 / m_total, 0, 100)) : 0;
}

QString TransferMeter::Text() const
{
    const Unit unit = UnitFor(static_cast<double>(m_total));
    const QString amount = QStringLiteral("%1 of %2 %3")
                               .arg(InUnit(static_cast<double>(std::min(Done(), m_total)), unit),
                                   InUnit(static_cast<double>(m_total), unit), QLatin1String(unit.name));
    const qint64 time = m_clock.elapsed() - m_samples.front().first;
    const double speed = static_cast<double>(Moved() - m_samples.front().second) * 1000
        / static_cast<double>(std::max<qint64>(time, SampleInterval));
    if (speed <= 0)
        return amount;
    const Unit speedUnit = UnitFor(speed);
    return QStringLiteral("%1, %2 %3/s").arg(amount, InUnit(speed, speedUnit), QLatin1String(speedUnit.name));
}
