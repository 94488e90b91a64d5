#include "host/farmclient/farm_link.h"

#include "host/farmclient/http_call.h"

#include <QJsonDocument>

#include <utility>

namespace {

HttpLimits OneAttempt(int attemptTime)
{
    HttpLimits limits;
    limits.attempts = 1;
    limits.attemptTime = attemptTime;
    return limits;
}

} // namespace

FarmLink::FarmLink(int attemptTime)
    : m_transport(OneAttempt(attemptTime))
{
}

void FarmLink::Begin(const FarmAccess& access, const InterruptFlag& interrupted)
{
    if (std::exchange(m_base, access.apiRoot) != access.apiRoot)
        m_transport.SetBaseUrl(access.apiRoot);
    m_transport.SetProxyLogin(access.proxy);
    m_transport.SetFeed(access.feed);
    m_token = access.token.toLatin1();
    m_interrupted = interrupted;
}

void FarmLink::Interrupt()
{
    if (m_waiting && *m_interrupted)
        m_waiting->quit();
}

std::optional<HttpResult> FarmLink::Send(HttpRequest request, const std::function<void(qint64)>& onSent)
{
    if (*m_interrupted)
        return std::nullopt;
    request.token = m_token;
    std::optional<HttpResult> result;
    QEventLoop waiting;
    m_waiting = &waiting;
    {
        QObject owner; // its end cancels an unfinished call
        auto* call = new HttpCall(&m_transport, request, &owner);
        QObject::connect(call, &HttpCall::Finished, &owner,
            [result = &result, waiting = &waiting](const HttpResult& answer) {
                *result = answer;
                waiting->quit();
            });
        if (onSent)
            QObject::connect(call, &HttpCall::Sent, &owner, onSent);
        waiting.exec();
    }
    if (*m_interrupted && !(result && result->status == HttpStatus::Ok))
        return std::nullopt;
    return result;
}

std::optional<HttpResult> FarmLink::Post(const QByteArray& target, const QJsonObject& body, int attemptTime)
{
    HttpRequest request;
    request.verb = "POST";
    request.target = target;
    request.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    request.attemptTime = attemptTime;
    return Send(request);
}
