#include "host/farmclient/http_transport.h"

#include <QNetworkReply>
#include <QNetworkRequest>

HttpTransport::HttpTransport(const HttpLimits& limits)
    : m_limits(limits)
{
    m_network.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

void HttpTransport::SetBaseUrl(const QUrl& url)
{
    m_base = url;
    m_network.clearConnectionCache();
}

QNetworkReply* HttpTransport::Begin(const HttpRequest& request)
{
    if (m_base.isEmpty())
        return nullptr;
    QNetworkRequest message(QUrl::fromEncoded(m_base.toEncoded(QUrl::StripTrailingSlash) + request.target));
    message.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    message.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    message.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    message.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("QuillStar/" QSCLIENT_VERSION));
    message.setRawHeader("Accept", "application/json");
    // Uncompressed, so that the limit on an answer's size counts the bytes received.
    message.setRawHeader("Accept-Encoding", "identity");
    if (!request.token.isEmpty())
        message.setRawHeader("Authorization", "Bearer " + request.token);
    if (!request.body.isEmpty())
        message.setHeader(QNetworkRequest::ContentTypeHeader, request.contentType);
    for (const auto& [name, value] : request.headers)
        message.setRawHeader(name, value);
    return m_network.sendCustomRequest(message, request.verb, request.body);
}

QUrl FarmApiRoot(const QUrl& server)
{
    QUrl root = server;
    if (!server.isEmpty())
        root.setPath(server.adjusted(QUrl::StripTrailingSlash).path() + QLatin1String("/api/v1"));
    return root;
}

bool IsAnswered(const QNetworkReply& reply)
{
    const int error = reply.error();
    // Qt reports status 400 as an invalid operation of the protocol.
    return error == QNetworkReply::NoError || error == QNetworkReply::ProtocolInvalidOperationError
        || (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError)
        || (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
}

void Discard(QPointer<QNetworkReply>& reply, const QObject* receiver)
{
    if (!reply)
        return;
    reply->disconnect(receiver);
    reply->abort();
    reply->deleteLater();
    reply.clear();
}

bool IsTransient(int status)
{
    return status == HttpResult::Unreachable || status == HttpResult::TimedOut
        || status == HttpStatus::TooManyRequests || status >= HttpStatus::ServerError;
}
