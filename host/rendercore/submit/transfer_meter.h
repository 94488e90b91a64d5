#pragma once

#include "host/farmclient/speed_meter.h"

#include <QElapsedTimer>
#include <QString>

/// Measures the progress of a transfer and its speed during the last seconds.
class TransferMeter
{
public:
    /// @param total is in bytes.
    explicit TransferMeter(qint64 total);

    /// Counts bytes that need no transfer; they do not count as speed.
    void Skip(qint64 bytes) { m_skipped += bytes; }

    /// Counts bytes that have arrived; nothing is in flight now.
    void Add(qint64 bytes);

    /// Sets how many bytes of the next chunk have been sent so far.
    void SetInFlight(qint64 bytes);

    /// @return bytes that have been transferred, with those in flight.
    qint64 Moved() const { return m_arrived + m_inFlight; }

    int Percent() const;

    /// For example "12.4 of 80.0 MB, 3.1 MB/s".
    QString Text() const;

private:
    qint64 Done() const { return m_skipped + Moved(); }

    qint64 m_total;
    qint64 m_skipped = 0;
    qint64 m_arrived = 0;
    qint64 m_inFlight = 0;
    QElapsedTimer m_clock;
    SpeedMeter m_speed;
};
