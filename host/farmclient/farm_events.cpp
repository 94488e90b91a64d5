#include "host/farmclient/farm_events.h"

#include "host/farmclient/http_result.h"

#include <QNetworkReply>

#include <algorithm>

namespace {

constexpr int FirstPause = 1000;         // ms
constexpr int LongestPause = 15000;      // ms
constexpr int LongestRetryAfter = 60000; // ms

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

FarmEvents::FarmEvents(HttpTransport* transport, const QByteArray& token, QObject* owner, int longestSilence)
    : QObject(owner)
    , m_transport(transport)
    , m_token(token)
    , m_backoff(FirstPause, LongestPause)
{
    for (QTimer* timer : {&m_silence, &m_pause})
        timer->setSingleShot(true);
    m_silence.setInterval(longestSilence);
    connect(&m_silence, &QTimer::timeout, this, &FarmEvents::HandleSilence);
    connect(&m_pause, &QTimer::timeout, this, &FarmEvents::Open);
    m_pause.start(0);
}

FarmEvents::~FarmEvents()
{
    Discard(m_reply, this);
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
    m_wasOpen = true;
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
    // The end of a stream is not a failure: proxies end streams, and some farms refuse them.
    if (!wasOpen && result.IsTransient())
        m_transport->Report(Request(m_token), result.fault);
    // The server ends the stream only after all of its events.
    if (wasOpen && IsEndOfStream(m_reply->error()))
        emit Heard();
    if (wasOpen || result.IsTransient() || result.IsFromIntermediary()) {
        TryAgain(std::min(result.retryAfter * 1000, LongestRetryAfter));
        return;
    }
    Discard(m_reply, this);
    m_silence.stop();
}

void FarmEvents::HandleSilence()
{
    // When the farm hangs or the network is gone, nobody closes the stream. Opening another one shows whether the farm
    // answers.
    if (m_wasOpen && !m_openTime.isValid())
        m_transport->Report(Request(m_token), {FarmFault::TimedOut});
    TryAgain();
}

void FarmEvents::TryAgain(int leastPause)
{
    Discard(m_reply, this);
    m_silence.stop();
    // Only a stream that lasted counts as a success; otherwise one that always ends at once would be opened every second.
    if (m_openTime.isValid() && m_openTime.hasExpired(LongestPause))
        m_backoff.Reset();
    m_openTime.invalidate();
    m_pause.start(std::max(leastPause, m_backoff.Fail()));
}
