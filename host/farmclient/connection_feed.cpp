#include "host/farmclient/connection_feed.h"

#include <QMutexLocker>

#include <algorithm>
#include <utility>

ConnectionFeed::Transfer::Transfer(ConnectionFeed* feed, Direction direction, const QString& name)
    : m_feed(feed)
    , m_direction(direction)
{
    if (m_feed)
        m_feed->Begin(direction, name);
}

ConnectionFeed::Transfer::~Transfer()
{
    if (m_feed)
        m_feed->End(m_direction);
}

void ConnectionFeed::Transfer::Count(qint64 bytes) const
{
    if (m_feed)
        m_feed->Move(m_direction, bytes);
}

void ConnectionFeed::Transfer::CountTo(qint64 moved)
{
    if (moved > m_moved)
        Count(moved - std::exchange(m_moved, moved));
}

ConnectionFeed::ConnectionFeed()
{
    m_clock.start();
}

void ConnectionFeed::BeginSession(const QByteArray& token)
{
    const QMutexLocker lock(&m_mutex);
    m_token = token;
}

void ConnectionFeed::EndSession()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_state = {};
        m_token.clear();
    }
    Announce();
}

void ConnectionFeed::Report(
    const QByteArray& verb, const QByteArray& target, const FarmFault& fault, const QByteArray& token)
{
    {
        const QMutexLocker lock(&m_mutex);
        // A late failure may name jobs of the account that has signed out.
        if (!token.isEmpty() && token != m_token)
            return;
        m_state.Apply({QDateTime::currentDateTime(), verb, target, fault});
    }
    Announce();
}

void ConnectionFeed::ConfirmList()
{
    const QMutexLocker lock(&m_mutex);
    m_state.ConfirmList(QDateTime::currentDateTime());
}

void ConnectionFeed::MarkRead()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_state.MarkRead();
    }
    Announce();
}

ConnectionPicture ConnectionFeed::Look()
{
    const QMutexLocker lock(&m_mutex);
    m_isAnnounced = false;
    return {m_state, FlowOf(m_traffic[Up]), FlowOf(m_traffic[Down])};
}

void ConnectionFeed::Begin(Direction direction, const QString& name)
{
    {
        const QMutexLocker lock(&m_mutex);
        Traffic& traffic = m_traffic[direction];
        // A speed measured across the pause would be too low.
        if (traffic.active == 0 && traffic.peak == 0)
            traffic.speed = {};
        traffic.peak = std::max(traffic.peak, ++traffic.active);
        traffic.name = name;
        traffic.speed.Sample(m_clock.elapsed(), traffic.moved);
    }
    Announce();
}

void ConnectionFeed::End(Direction direction)
{
    {
        const QMutexLocker lock(&m_mutex);
        --m_traffic[direction].active;
    }
    Announce();
}

void ConnectionFeed::Move(Direction direction, qint64 bytes)
{
    const QMutexLocker lock(&m_mutex);
    Traffic& traffic = m_traffic[direction];
    traffic.moved += bytes;
    traffic.speed.Sample(m_clock.elapsed(), traffic.moved);
}

/// The mutex is locked.
Flow ConnectionFeed::FlowOf(Traffic& traffic) const
{
    const int count = std::exchange(traffic.peak, traffic.active);
    if (count == 0)
        return {};
    const qint64 now = m_clock.elapsed();
    traffic.speed.Sample(now, traffic.moved);
    return {count, traffic.name, traffic.speed.Speed(now, traffic.moved)};
}

/// Emitted without the lock, because a receiver in this thread calls Look() at once.
void ConnectionFeed::Announce()
{
    {
        const QMutexLocker lock(&m_mutex);
        if (std::exchange(m_isAnnounced, true))
            return;
    }
    emit Fed();
}
