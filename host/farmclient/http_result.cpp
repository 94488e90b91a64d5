#include "host/farmclient/http_result.h"

#include "host/farmclient/farm_numbers.h"
#include "host/farmclient/http_transport.h"
#include "host/farmclient/sentences.h"
#include "json/read_object.h"

#include <QNetworkReply>

#include <algorithm>

namespace {

constexpr int LongestRetryAfter = 3600; // seconds

/// @return 0 when no complete answer arrived.
int StatusOf(const QNetworkReply& reply)
{
    const int error = reply.error();
    // Qt also reports the proxy's refusal of a tunnel, which has no status of its own.
    if (error == QNetworkReply::ProxyAuthenticationRequiredError)
        return HttpStatus::ProxyAuthenticationRequired;
    // Errors from here on stand for a status, except for an exchange that is not HTTP.
    const bool isOfStatus = error == QNetworkReply::NoError
        || (error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ProtocolFailure);
    return isOfStatus ? reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() : 0;
}

QString RefusalText(int status, const QJsonObject& json)
{
    const QString message = json.value(QLatin1String("message")).toString();
    if (!message.isEmpty())
        return Sentence(message);
    if (status == HttpStatus::ProxyAuthenticationRequired)
        return HttpResult::tr("The proxy asks for a name and a password, or refuses those it was given.");
    return HttpResult::tr("The server answered with status %1.").arg(status);
}

/// @return the end of a connection in words; Qt has none where its server closed it before an answer.
QString ConnectionFault(const QNetworkReply& reply)
{
    switch (reply.error()) {
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::ContentReSendError:
    case QNetworkReply::UnknownNetworkError:
        return HttpResult::tr("the connection was closed before the answer was complete");
    default:
        return reply.errorString();
    }
}

HttpResult NoAnswer(const QNetworkReply& reply)
{
    const QString fault = HttpTransport::CertificateFault(reply);
    if (fault.isEmpty())
        return {HttpResult::Unreachable, {},
            Sentence(HttpResult::tr("The server cannot be reached: %1").arg(ConnectionFault(reply)))};
    return {HttpResult::Untrusted, {},
        Sentence(HttpResult::tr("The server's certificate is not accepted, so nothing was sent to it: %1")
                     .arg(fault))};
}

} // namespace

HttpResult HttpResult::Of(const QNetworkReply& reply, const QByteArray& body)
{
    const int status = StatusOf(reply);
    if (status == 0)
        return NoAnswer(reply);
    const JsonRead read = ReadJsonObject(body);
    if (status == HttpStatus::Ok && read.fault)
        return {NotJson, {}, tr("The server's answer cannot be read.")};
    HttpResult result {status, read.object};
    if (status != HttpStatus::Ok)
        result.error = RefusalText(status, result.json);
    result.retryAfter = std::clamp(reply.rawHeader("Retry-After").toInt(), 0, LongestRetryAfter);
    return result;
}

bool HttpResult::IsTransient() const
{
    switch (status) {
    case Unreachable:
    case TimedOut:
    case Untrusted:
    case HttpStatus::RequestTimeout:
    case HttpStatus::TooEarly:
    case HttpStatus::TooManyRequests:
        return true;
    case HttpStatus::NotImplemented:
    case HttpStatus::VersionNotSupported:
        return false;
    case HttpStatus::InsufficientStorage:
        return IsDiskFull();
    default:
        return status >= HttpStatus::ServerError && status < HttpStatus::PastServerErrors;
    }
}

bool HttpResult::IsDiskFull() const
{
    return status == HttpStatus::InsufficientStorage
        && json.value(QLatin1String("error")).toString() != QLatin1String("quota_exceeded");
}
