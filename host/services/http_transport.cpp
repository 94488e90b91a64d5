#include "http_transport.h"

#include "http_call.h"

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

HttpCall* HttpTransport::Send(const HttpRequest& request, QObject* owner)
{
    return new HttpCall(this, request, owner);
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
    // Plain bytes, so that the limit on an answer's size counts what arrives and nothing is inflated unseen.
    message.setRawHeader("Accept-Encoding", "identity");
    if (!request.token.isEmpty())
        message.setRawHeader("Authorization", "Bearer " + request.token);
    if (!request.body.isEmpty())
        message.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return m_network.sendCustomRequest(message, request.verb, request.body);
}
