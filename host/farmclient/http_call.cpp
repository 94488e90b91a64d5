#include "host/farmclient/http_call.h"

#include "host/base/backoff.h"
#include "host/farmclient/decompress.h"

#include <QNetworkReply>

#include <algorithm>

HttpCall::HttpCall(HttpTransport* transport, const HttpRequest& request, QObject* owner)
    : QObject(owner)
    , m_transport(transport)
    , m_request(request)
{
    // Without this header, Qt itself would request compression and decompress an answer of any size into memory.
    m_request.headers.push_back({"Accept-Encoding", "gzip, deflate"});
    m_deadline.setSingleShot(true);
    m_pause.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, &HttpCall::HandleTimeout);
    connect(&m_pause, &QTimer::timeout, this, &HttpCall::HandlePauseEnd);
    Attempt();
}

HttpCall::~HttpCall()
{
    DropReply();
}

void HttpCall::Attempt()
{
    ++m_attempt;
    m_received.clear();
    m_noted = 0;
    m_reply = m_transport->Begin(m_request);
    if (!m_reply) {
        EndAttempt(HttpResult::Failed({FarmFault::Unreachable, FarmFault::NoServer}));
        return;
    }
    connect(m_reply, &QNetworkReply::readyRead, this, &HttpCall::Collect);
    connect(m_reply, &QNetworkReply::finished, this, &HttpCall::HandleFinished);
    connect(m_reply, &QNetworkReply::uploadProgress, this, [this](qint64 bytes) {
        if (bytes <= 0) // Qt reports 0 bytes at the end of every upload
            return;
        m_deadline.start();
        emit Sent(bytes);
    });
    m_deadline.start(m_request.attemptTime > 0 ? m_request.attemptTime : m_transport->Limits().attemptTime);
}

/// An answer that keeps arriving moves the deadline. One that only trickles does not, or it would never end.
void HttpCall::NoteProgress(qint64 bytes)
{
    constexpr qint64 LeastProgress = 4096;
    if (bytes - m_noted < LeastProgress)
        return;
    m_noted = bytes;
    m_deadline.start();
}

void HttpCall::Collect()
{
    m_received += m_reply->readAll();
    NoteProgress(m_received.size());
    if (m_received.size() > m_transport->Limits().answerBytes)
        EndAttempt(HttpResult::Failed({FarmFault::TooLarge}));
}

void HttpCall::HandleTimeout()
{
    EndAttempt(HttpResult::Failed({FarmFault::TimedOut}));
}

void HttpCall::HandleFinished()
{
    Collect();
    if (!m_reply)
        return;
    if (!m_request.repeatable && m_transport->CanAnswerProxy(*m_reply)) {
        DropReply();
        Attempt();
        return;
    }
    if (!DecompressReceived()) {
        EndAttempt(HttpResult::Failed({FarmFault::TooLarge}));
        return;
    }
    EndAttempt(HttpResult::Of(*m_reply, m_received));
}

/// A damaged stream leaves an empty answer, which is then refused as unreadable.
/// @return false when the answer is larger than the limit.
bool HttpCall::DecompressReceived()
{
    const QByteArray encoding = m_reply->rawHeader("Content-Encoding").toLower();
    if (encoding != "gzip" && encoding != "deflate")
        return true;
    const qint64 most = m_transport->Limits().answerBytes;
    m_received = Decompress(m_received, most).value_or(QByteArray());
    return m_received.size() <= most;
}

void HttpCall::EndAttempt(const HttpResult& result)
{
    DropReply();
    m_transport->Report(m_request, result.fault);
    const HttpLimits& limits = m_transport->Limits();
    if (m_request.repeatable && m_attempt < limits.attempts && result.IsTransient()) {
        const int pause = Backoff(limits.firstPause, limits.longestPause).PauseAfter(m_attempt);
        m_pause.start(std::min(std::max(pause, result.retryAfter * 1000), limits.longestPause));
        return;
    }
    m_result = result;
    m_pause.start(0);
}

void HttpCall::HandlePauseEnd()
{
    if (!m_result) {
        Attempt();
        return;
    }
    // A receiver may delete this call, and m_result with it, so nothing of it may be used afterwards.
    const HttpResult result = *m_result;
    deleteLater();
    emit Finished(result);
}

void HttpCall::DropReply()
{
    m_deadline.stop();
    Discard(m_reply, this);
}
