#include "host/rendercore/submit/transfer_meter.h"

#include <QCoreApplication>

#include <algorithm>

TransferMeter::TransferMeter(qint64 total)
    : m_total(total)
{
    m_clock.start();
    m_speed.Sample(0, 0);
}

void TransferMeter::Add(qint64 bytes)
{
    m_arrived += bytes;
    m_inFlight = 0;
    m_speed.Sample(m_clock.elapsed(), Moved());
}

void TransferMeter::SetInFlight(qint64 bytes)
{
    m_inFlight = bytes;
    m_speed.Sample(m_clock.elapsed(), Moved());
}

int TransferMeter::Percent() const
{
    return m_total > 0 ? static_cast<int>(std::clamp<qint64>(Done() * 100 / m_total, 0, 100)) : 0;
}

QString TransferMeter::Text() const
{
    const double total = static_cast<double>(m_total);
    const ByteUnit unit = ByteUnit::Of(total);
    const QString amount = QCoreApplication::translate("TransferMeter", "%1 of %2 %3")
                               .arg(unit.Number(static_cast<double>(std::min(Done(), m_total))),
                                   unit.Number(total), QLatin1String(unit.name));
    const double speed = m_speed.Speed(m_clock.elapsed(), Moved());
    return speed > 0 ? QStringLiteral("%1, %2").arg(amount, SpeedText(speed)) : amount;
}
