#pragma once

#include "host/farmclient/connection_state.h"
#include "host/farmclient/speed_meter.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QObject>
#include <QStringList>

#include <array>

/// The transfers in one direction.
struct Flow
{
    int count = 0;     ///< of transfers since the last look
    QString name = {}; ///< of the one that began last
    double speed = 0;  ///< bytes per second
};

/// The connection at one moment.
struct ConnectionPicture
{
    ConnectionState state;
    Flow up = {};
    Flow down = {};
};

/// Collects what the transports of all threads learn about the connection. Every function may be called in any thread.
class ConnectionFeed : public QObject
{
    Q_OBJECT

public:
    enum Direction { Up, Down };

    /// A transfer that is under way as long as this object lives. Without a feed it does nothing.
    class Transfer
    {
    public:
        /// @param name shown to the user; plain text.
        Transfer(ConnectionFeed* feed, Direction direction, const QString& name);
        ~Transfer();
        Q_DISABLE_COPY(Transfer)

        void Count(qint64 bytes) const;

        /// @param moved all bytes of this transfer so far; fewer than before count nothing.
        void CountTo(qint64 moved);

    private:
        ConnectionFeed* m_feed;
        Direction m_direction;
        qint64 m_moved = 0;
    };

    ConnectionFeed();

    /// Takes reports of this session from now on. @param token identifies it and is never shown.
    void BeginSession(const QByteArray& token);

    /// Forgets everything, and takes no reports of any session.
    void EndSession();

    /// @param token of the request's session; empty for a request of none.
    void Report(const QByteArray& verb, const QByteArray& target, const FarmFault& fault,
        const QByteArray& token = {});

    /// The farm has announced every change until now, and none that the list of jobs lacks. Nobody is told, because the
    /// list's age is shown only once the farm cannot be reached.
    void ConfirmList();

    /// The user has read the failures.
    void MarkRead();

    ConnectionPicture Look();

signals:
    /// There is something new. Emitted once until the next Look().
    void Fed();

private:
    struct Traffic
    {
        int active = 0;
        int peak = 0; // of active since the last look
        QString name;
        qint64 moved = 0;
        SpeedMeter speed;
    };

    void Begin(Direction direction, const QString& name);
    void End(Direction direction);
    void Move(Direction direction, qint64 bytes);
    Flow FlowOf(Traffic& traffic) const;
    void Announce();

    QMutex m_mutex;
    ConnectionState m_state;
    QByteArray m_token;               // of the session
    std::array<Traffic, 2> m_traffic; // by direction
    QElapsedTimer m_clock;
    bool m_isAnnounced = false;
};
