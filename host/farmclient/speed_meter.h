#pragma once

#include <QString>
#include <QtGlobal>

#include <deque>
#include <utility>

/// The speed of a transfer during the last few seconds. Times are in milliseconds since any fixed moment.
class SpeedMeter
{
public:
    /// @param moved all bytes that have been transferred until now.
    void Sample(qint64 now, qint64 moved);

    /// @param moved all bytes that have been transferred until now.
    /// @return bytes per second.
    double Speed(qint64 now, qint64 moved) const;

private:
    std::deque<std::pair<qint64, qint64>> m_samples; // times and the bytes transferred by then
};

/// A unit for showing amounts of this size.
struct ByteUnit
{
    double bytes;
    const char* name;

    static ByteUnit Of(double bytes);

    /// @return the amount with one decimal, without the unit's name.
    QString Number(double amount) const { return QString::number(amount / bytes, 'f', 1); }
};

/// @return for example "3.1 MB/s".
QString SpeedText(double bytesPerSecond);
