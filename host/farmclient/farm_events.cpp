#include "host/farmclient/farm_events.h"

#include "host/farmclient/http_result.h"

#include <QNetworkReply>

#include <algorithm>

namespace {

constexpr int FirstPause = 1000;    // ms
constexpr int LongestPause = 15000; // ms
// The farm sends something at least every 25 seconds.
constexpr int UsualSilence = 30000;   // ms
constexpr int LongestSilence = 60000; // ms

HttpRequest Request(const QByteArray& token)
{
    HttpRequest request {"GET", "/events", token, {}};
    request.headers = {{"Accept", "text/event-stream"}};
    return request;
}

bool IsEventStream(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == HttpStatus::Ok
        && reply.rawHeader("Content-Type").startsWith("text/event-stream");
}

bool IsEndOfStream(QNetworkReply::NetworkError error)
{
    return error == QNetworkReply::NoError || error == QNetworkReply::RemoteHostClosedError;
}

} // namespace

FarmEvents::FarmEvents(HttpTransport* transport, const QByteArray& token, QObject* owner)
    : QObject(owner)
    , m_transport(transport)
    , m_token(token)
    , m_backoff(FirstPause, LongestPause)
{
    for (QTimer* timer : {&m_silence, &m_pause})
        timer->setSingleShot(true);
    m_silence.setInterval(LongestSilence);
    connect(&m_silence, &QTimer::timeout, this, [this] { TryAgain(); });
    connect(&m_pause, &QTimer::timeout, this, &FarmEvents::Open);
    m_pause.start(0);
}

FarmEvents::~FarmEvents()
{
    Discard(m_reply, this);
}

bool FarmEvents::IsAnnouncing() const
{
    return m_openTime.isValid() && m_silence.remainingTime() > LongestSilence - UsualSilence;
}

void FarmEvents::Reopen()
{
    Discard(m_reply, this);
    m_openTime.invalidate();
    m_silence.stop();
    m_backoff.Reset();
    m_pause.start(0);
}

void FarmEvents::Open()
{
    m_stream = {};
    m_openTime.invalidate();
    m_reply = m_transport->Begin(Request(m_token));
    if (!m_reply) {
        TryAgain();
        return;
    }
    m_reply->setReadBufferSize(EventStream::Longest);
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &FarmEvents::HandleHead);
    connect(m_reply, &QNetworkReply::readyRead, this, &FarmEvents::Read);
    connect(m_reply, &QNetworkReply::finished, this, &FarmEvents::HandleEnd);
    m_silence.start();
}

void FarmEvents::HandleHead()
{
    if (!IsEventStream(*m_reply)) {
        HandleEnd();
        return;
    }
    m_openTime.start();
    m_transport->Report(Request(m_token));
    emit Changed(FarmChanges::Anything());
}

void FarmEvents::Read()
{
    if (!m_openTime.isValid())
        return;
    m_silence.start();
    const QByteArrayList events = m_stream.Read(m_reply->read(m_reply->bytesAvailable()));
    if (m_stream.IsTooLong())
        TryAgain();
    const QPointer<FarmEvents> self = this;
    for (const QByteArray& event : events) {
        emit Changed(FarmChanges::Read(event));
        // A receiver may end the session, and this object with it.
        if (!self)
            return;
    }
    emit Heard();
}

void FarmEvents::HandleEnd()
{
    const HttpResult result = HttpResult::Of(*m_reply, {});
    const bool wasOpen = m_openTime.isValid();
    // That a stream ends says little: proxies end them, and farms that have none refuse them.
    if (!wasOpen && result.IsTransient())
        m_transport->Report(Request(m_token), result.fault);
    // An end from the other side comes after all that the stream has carried.
    if (wasOpen && IsEndOfStream(m_reply->error()))
        emit Heard();
    if (wasOpen || result.IsTransient()) {
        TryAgain(std::min(result.retryAfter * 1000, LongestSilence));
        return;
    }
    Discard(m_reply, this);
    m_silence.stop();
}

void FarmEvents::TryAgain(int leastPause)
{
    Discard(m_reply, this);
    m_silence.stop();
    // Only a stream that has lasted counts as a success, or one that always ends at once would be opened every second.
    if (m_openTime.isValid() && m_openTime.hasExpired(LongestPause))
        m_backoff.Reset();
    m_openTime.invalidate();
    m_pause.start(std::max(leastPause, m_backoff.Fail()));
}
