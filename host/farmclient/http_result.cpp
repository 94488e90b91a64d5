#include "host/farmclient/http_result.h"

#include "host/farmclient/certificate_fault.h"
#include "host/farmclient/farm_numbers.h"
#include "json/read_object.h"

#include <QNetworkReply>

#include <algorithm>

namespace {

constexpr int LongestRetryAfter = 3600; // seconds
constexpr int LongestMessage = 1000;    // characters of a refusal

/// @return 0 when no complete answer arrived.
int StatusOf(const QNetworkReply& reply)
{
    const int error = reply.error();
    // Qt also reports a proxy's refusal of a tunnel, which has no status.
    if (error == QNetworkReply::ProxyAuthenticationRequiredError)
        return HttpStatus::ProxyAuthenticationRequired;
    // Errors from this one on correspond to an HTTP status, except for an exchange that is not HTTP.
    const bool isOfStatus = error == QNetworkReply::NoError
        || (error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ProtocolFailure);
    return isOfStatus ? reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() : 0;
}

/// @return why there is no answer.
FarmFault NoAnswer(const QNetworkReply& reply)
{
    const FarmFault fault = CertificateFault(reply);
    return fault.status != 0 ? fault : HttpResult::ConnectionFault(reply);
}

} // namespace

HttpResult HttpResult::Failed(const FarmFault& fault, const QJsonObject& json)
{
    return {fault.status, json, fault.Text(), 0, fault};
}

FarmFault HttpResult::ConnectionFault(const QNetworkReply& reply)
{
    return {FarmFault::Unreachable, reply.error(), reply.errorString()};
}

HttpResult HttpResult::Of(const QNetworkReply& reply, const QByteArray& body)
{
    const int status = StatusOf(reply);
    if (status == 0)
        return Failed(NoAnswer(reply));
    const JsonRead read = ReadJsonObject(body);
    if (status == HttpStatus::Ok && read.fault)
        return Failed({FarmFault::NotJson});
    HttpResult result {status, read.object};
    if (status != HttpStatus::Ok)
        result
            = Failed({status, 0, read.object.value(QLatin1String("message")).toString().left(LongestMessage)},
                read.object);
    result.retryAfter = std::clamp(reply.rawHeader("Retry-After").toInt(), 0, LongestRetryAfter);
    return result;
}

bool HttpResult::IsTransient() const
{
    switch (status) {
    case FarmFault::Unreachable:
    case FarmFault::TimedOut:
    case FarmFault::Untrusted:
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

bool HttpResult::IsFromIntermediary() const
{
    return status == HttpStatus::ProxyAuthenticationRequired
        || (status >= HttpStatus::Redirection && status < HttpStatus::BadRequest);
}

bool HttpResult::IsDiskFull() const
{
    return status == HttpStatus::InsufficientStorage
        && json.value(QLatin1String("error")).toString() != QLatin1String("quota_exceeded");
}
