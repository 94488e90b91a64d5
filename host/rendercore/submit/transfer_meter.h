#pragma once

#include <QElapsedTimer>
#include <QString>

#include <deque>
#include <utility>

/// Measures how much of a transfer is done, and its speed during the last seconds.
class TransferMeter
{
public:
    /// @param total in bytes.
    explicit TransferMeter(qint64 total);

    /// Counts bytes that need no transfer; they do not count as speed.
    void Skip(qint64 bytes) { m_skipped += bytes; }

    /// @param bytes transferred altogether, without the skipped ones.
    void SetMoved(qint64 bytes);

    int Percent() const;

    /// For example "12.4 of 80.0 MB, 3.1 MB/s".
    QString Text() const;

private:
    qint64 Done() const { return m_skipped + m_moved; }

    qint64 m_total;
    qint64 m_skipped = 0;
    qint64 m_moved = 0;
    QElapsedTimer m_clock;
    std::deque<std::pair<qint64, qint64>> m_samples; // milliseconds and the bytes transferred by then
};
