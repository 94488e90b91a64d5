#pragma once

#include "host/base/backoff.h"
#include "host/farmclient/event_stream.h"
#include "host/farmclient/farm_numbers.h"
#include "host/farmclient/http_transport.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

/// Keeps the stream of a session's events open from construction to destruction. A stream that breaks or falls silent is
/// opened again after a pause; a farm that has no events or no longer knows the session is not asked again.
class FarmEvents : public QObject
{
    Q_OBJECT

public:
    static constexpr int LongestSilence = FarmNumbers::Heartbeat + 3000; ///< ms

    /// @param transport must outlive this object, which lives in its thread.
    /// @param longestSilence ms without a sign of life from the farm, after which the stream counts as broken.
    FarmEvents(HttpTransport* transport, const QByteArray& token, QObject* owner,
        int longestSilence = LongestSilence);
    ~FarmEvents() override;

    /// @return whether the farm has been heard lately, so that no change can have gone unnoticed.
    bool IsAnnouncing() const { return m_openTime.isValid(); }

    /// Closes the stream. It is opened again at once, at the transport's server of that time.
    void Reopen();

signals:
    /// Whenever the stream has been opened, the changes are FarmChanges::Anything().
    void Changed(const FarmChanges& changes);

    /// All changes until now have been announced.
    void Heard();

private:
    void Open();
    void HandleHead();
    void Read();
    void HandleEnd();
    void HandleSilence();
    void TryAgain(int leastPause = 0);

    HttpTransport* m_transport;
    QByteArray m_token;
    QPointer<QNetworkReply> m_reply;
    EventStream m_stream;
    Backoff m_backoff;
    QElapsedTimer m_openTime; // valid while the stream is open
    bool m_wasOpen = false;   // if never, a proxy on the way may be holding streams back
    QTimer m_silence;
    QTimer m_pause;
};
