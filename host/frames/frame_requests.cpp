#include "host/frames/frame_requests.h"

#include "host/farmclient/http_call.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

HttpLimits OneAttempt()
{
    HttpLimits limits;
    limits.attempts = 1;
    return limits;
}

/// The farm chooses the ids of jobs, so an id may contain anything.
QByteArray FramesOf(const QString& job)
{
    return "/jobs/" + QUrl::toPercentEncoding(job) + "/frames";
}

} // namespace

FrameRequests::FrameRequests(QObject* parent)
    : QObject(parent)
    , m_transport(OneAttempt())
    , m_calls(std::make_unique<QObject>())
    , m_changes(std::make_unique<QObject>())
{
}

void FrameRequests::SetAccess(const FarmAccess& access)
{
    Cancel();
    m_changes = std::make_unique<QObject>();
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
    m_frames = Get(FramesOf(job) + "?since=" + QByteArray::number(since), [this](const QJsonObject& body) {
        if (const auto answer = FramesAnswer::Read(body))
            emit FramesArrived(*answer);
        else
            emit Failed(tr("The server's answer cannot be read."));
    });
}

void FrameRequests::RequestLog(const QString& job, int number)
{
    delete m_log.data();
    m_log = Get(
        FramesOf(job) + '/' + QByteArray::number(number) + "/log", [this, number](const QJsonObject& body) {
            emit LogArrived(number, body.value(QLatin1String("data"))[QLatin1String("log")].toString());
        });
}

void FrameRequests::RequestSpending(int days)
{
    if (m_spending)
        return;
    m_spending = Get("/account/spending?days=" + QByteArray::number(days),
        [this](const QJsonObject& body) { emit SpendingArrived(SpendingAnswer::Read(body)); });
}

void FrameRequests::SetPriority(const QString& job, int priority)
{
    HttpRequest request = Request("POST", "/jobs/priority");
    request.body = QJsonDocument(
        QJsonObject {{QStringLiteral("ids"), QJsonArray {job}}, {QStringLiteral("priority"), priority}})
                       .toJson(QJsonDocument::Compact);
    const auto* call = new HttpCall(&m_transport, request, m_changes.get());
    connect(call, &HttpCall::Finished, this, [this, job](const HttpResult& result) {
        delete m_frames.data();
        emit PriorityAnswered(job, result.error);
    });
}

HttpRequest FrameRequests::Request(const char* verb, const QByteArray& target) const
{
    HttpRequest request;
    request.verb = verb;
    request.target = target;
    request.token = m_access.token.toLatin1();
    return request;
}

HttpCall* FrameRequests::Get(const QByteArray& target, const Handler& handler)
{
    auto* call = new HttpCall(&m_transport, Request("GET", target), m_calls.get());
    connect(call, &HttpCall::Finished, this, [this, call, handler](const HttpResult& result) {
        // The receiver may ask again at once.
        for (QPointer<HttpCall>* underWay : {&m_frames, &m_spending}) {
            if (*underWay == call)
                underWay->clear();
        }
        if (result.status == HttpStatus::Ok)
            handler(result.json);
        else
            emit Failed(result.error);
    });
    return call;
}
