#include "host/frames/frame_requests.h"

#include "host/farmclient/http_call.h"

namespace {

HttpLimits OneAttempt()
{
    HttpLimits limits;
    limits.attempts = 1;
    return limits;
}

} // namespace

FrameRequests::FrameRequests(QObject* parent)
    : QObject(parent)
    , m_transport(OneAttempt())
    , m_calls(std::make_unique<QObject>())
{
}

void FrameRequests::SetAccess(const FarmAccess& access)
{
    Cancel();
    m_access = access;
    m_transport.SetBaseUrl(access.apiRoot);
    m_transport.SetProxyLogin(access.proxy);
}

void FrameRequests::Cancel()
{
    m_calls = std::make_unique<QObject>();
}

void FrameRequests::RequestFrames(const QString& job, qint64 since)
{
    if (m_frames)
        return;
    m_frames = Get(
        QStringLiteral("/jobs/%1/frames?since=%2").arg(job).arg(since), [this](const QJsonObject& body) {
            if (const auto answer = FramesAnswer::Read(body))
                emit FramesArrived(*answer);
            else
                emit Failed(tr("The server's answer cannot be read."));
        });
}

void FrameRequests::RequestLog(const QString& job, int number)
{
    delete m_log.data();
    m_log = Get(QStringLiteral("/jobs/%1/frames/%2/log").arg(job).arg(number),
        [this, number](const QJsonObject& body) {
            emit LogArrived(number, body.value(QLatin1String("data"))[QLatin1String("log")].toString());
        });
}

void FrameRequests::RequestSpending(int days)
{
    Get(QStringLiteral("/account/spending?days=%1").arg(days),
        [this](const QJsonObject& body) { emit SpendingArrived(SpendingAnswer::Read(body)); });
}

HttpCall* FrameRequests::Get(const QString& target, const Handler& handler)
{
    HttpRequest request;
    request.verb = "GET";
    request.target = target.toLatin1();
    request.token = m_access.token.toLatin1();
    auto* call = new HttpCall(&m_transport, request, m_calls.get());
    connect(call, &HttpCall::Finished, this, [this, call, handler](const HttpResult& result) {
        // The receiver may ask again at once.
        if (m_frames == call)
            m_frames.clear();
        if (result.status == HttpStatus::Ok)
            handler(result.json);
        else
            emit Failed(result.error);
    });
    return call;
}
