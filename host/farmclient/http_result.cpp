#include "host/farmclient/http_result.h"

#include "host/farmclient/farm_numbers.h"

#include <QJsonDocument>
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
        return message;
    if (status == HttpStatus::ProxyAuthenticationRequired)
        return HttpResult::tr("The proxy asks for a name and a password, or refuses those it was given.");
    return HttpResult::tr("The server answered with status %1.").arg(status);
}

} // namespace

HttpResult HttpResult::Of(const QNetworkReply& reply, const QByteArray& body)
{
    const int status = StatusOf(reply);
    if (status == 0)
        return {Unreachable, {}, tr("The server cannot be reached: %1").arg(reply.errorString())};
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (status == HttpStatus::Ok && !document.isObject())
        return {NotJson, {}, tr("The server's answer cannot be read.")};
    HttpResult result {status, document.object()};
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
