#pragma once

#include <QElapsedTimer>
#include <QString>

#include <deque>
#include <utility>

/// How much of a transfer is done and how fast it has been of late.
class TransferMeter
{
public:
    /// @param total in bytes.
    explicit TransferMeter(qint64 total);

    /// What is done already counts, but not as speed.
    void Skip(qint64 bytes) { m_skipped += bytes; }

    /// @param bytes moved altogether, what was skipped not among them.
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
    std::deque<std::pair<qint64, qint64>> m_samples; // milliseconds and bytes moved by then
};
