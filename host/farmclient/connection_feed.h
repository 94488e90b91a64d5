#pragma once

#include "host/farmclient/connection_state.h"
#include "host/farmclient/speed_meter.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QObject>
#include <QString>

#include <array>

/// The transfers in one direction.
struct Flow
{
    int count = 0;     ///< number of transfers since the last look
    QString name = {}; ///< name of the transfer that began last
    double speed = 0;  ///< bytes per second
};

/// The connection at one moment.
struct ConnectionPicture
{
    ConnectionState state;
    Flow up = {};
    Flow down = {};
};

/// Collects the reports of all threads' transports about the connection. Every function may be called in any thread.
class ConnectionFeed : public QObject
{
    Q_OBJECT

public:
    enum Direction { Up, Down };

    /// A transfer that is under way as long as this object lives. Without a feed it does nothing.
    class Transfer
    {
    public:
        /// @param name is shown to the user as plain text.
        Transfer(ConnectionFeed* feed, Direction direction, const QString& name);
        ~Transfer();
        Q_DISABLE_COPY(Transfer)

        void Count(qint64 bytes) const;

        /// @param moved is the number of all bytes of this transfer so far; a smaller number than before is ignored.
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

    /// @param token identifies the request's session; empty for a request without one.
    void Report(const QByteArray& verb, const QByteArray& target, const FarmFault& fault,
        const QByteArray& token = {});

    /// The farm has announced every change until now, and the list of jobs contains them all. No signal follows,
    /// because the list's age is shown only once the farm cannot be reached.
    void ConfirmList();

    /// The user has read the failures.
    void MarkRead();

    ConnectionPicture Look();

signals:
    /// The connection has changed. Emitted once until the next Look().
    void Fed();

private:
    struct Traffic
    {
        int active = 0;
        int peak = 0; // the most active transfers since the last look
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
    QByteArray m_token;               // identifies the session
    std::array<Traffic, 2> m_traffic; // one per direction
    QElapsedTimer m_clock;
    bool m_isAnnounced = false;
};
