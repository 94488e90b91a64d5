#include "host/farmclient/http_transport.h"

#include "host/farmclient/certificate_fault.h"
#include "host/farmclient/connection_feed.h"

#include <QAuthenticator>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <algorithm>
#include <memory>

namespace {

/// A body that can be read once. When a server closes the connection without an answer, Qt sends a request again by
/// itself, unless its body cannot be rewound.
class SingleUseBody : public QIODevice
{
public:
    explicit SingleUseBody(const QByteArray& bytes)
        : m_left(bytes)
    {
        open(ReadOnly | Unbuffered);
    }

    bool isSequential() const override { return true; }
    bool reset() override { return false; }
    bool atEnd() const override { return m_left.isEmpty(); }
    qint64 bytesAvailable() const override { return m_left.size(); }

protected:
    qint64 readData(char* data, qint64 most) override
    {
        if (m_left.isEmpty())
            return -1;
        const int count = static_cast<int>(std::min<qint64>(most, m_left.size()));
        std::copy_n(m_left.constData(), count, data);
        m_left.remove(0, count);
        return count;
    }
    qint64 writeData(const char* /*data*/, qint64 /*most*/) override { return -1; }

private:
    QByteArray m_left;
};

QNetworkProxy ProxyTo(const QUrl& url)
{
    return QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(url)).value(0);
}

QNetworkReply* Watched(QNetworkReply* reply)
{
    WatchCertificate(reply);
    return reply;
}

} // namespace

HttpTransport::HttpTransport(const HttpLimits& limits)
    : m_limits(limits)
{
    m_network.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
    QObject::connect(&m_network, &QNetworkAccessManager::proxyAuthenticationRequired, &m_network,
        [this](const QNetworkProxy&, QAuthenticator* question) { AnswerProxy(question); });
}

void HttpTransport::SetBaseUrl(const QUrl& url)
{
    m_base = url;
    m_proxyAsks = false;
    m_network.clearConnectionCache();
}

void HttpTransport::SetProxyLogin(const ProxyLogin& login)
{
    if (m_proxyLogin.name == login.name && m_proxyLogin.password == login.password)
        return;
    m_proxyLogin = login;
    // Qt remembers what a proxy has refused.
    m_network.clearAccessCache();
    m_network.clearConnectionCache();
}

/// Qt asks again when a name and password were refused. Leaving them unchanged ends the request.
void HttpTransport::AnswerProxy(QAuthenticator* question) const
{
    const bool isRefused
        = question->user() == m_proxyLogin.name && question->password() == m_proxyLogin.password;
    if (m_proxyLogin.name.isEmpty() || isRefused)
        return;
    question->setUser(m_proxyLogin.name);
    question->setPassword(m_proxyLogin.password);
}

bool HttpTransport::CanAnswerProxy(const QNetworkReply& reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status != HttpStatus::ProxyAuthenticationRequired
        || !reply.rawHeader("Proxy-Authenticate").toLower().contains("basic"))
        return false;
    m_proxyAsks = true;
    return ProxyAuthorization(reply.url()) != reply.request().rawHeader("Proxy-Authorization");
}

/// @return the header with which a proxy lets a request to this URL pass; empty when none is needed or known.
QByteArray HttpTransport::ProxyAuthorization(const QUrl& url) const
{
    // Requests to an encrypted server pass through a tunnel, for which Qt answers the proxy itself.
    const QNetworkProxy proxy
        = m_proxyAsks && url.scheme() == QLatin1String("http") ? ProxyTo(url) : QNetworkProxy();
    const bool isTyped = !m_proxyLogin.name.isEmpty();
    const QString name = isTyped ? m_proxyLogin.name : proxy.user();
    if (name.isEmpty() || proxy.hostName().isEmpty())
        return {};
    const QString password = isTyped ? m_proxyLogin.password : proxy.password();
    return "Basic " + QString(name + QLatin1Char(':') + password).toUtf8().toBase64();
}

QNetworkReply* HttpTransport::Begin(const HttpRequest& request)
{
    if (m_base.isEmpty())
        return nullptr;
    QNetworkRequest message(QUrl::fromEncoded(m_base.toEncoded(QUrl::StripTrailingSlash) + request.target));
    message.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    message.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    message.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("QuillStar/" QSCLIENT_VERSION));
    message.setRawHeader("Accept", "application/json");
    // Files are sent uncompressed; a call that can decompress its answer asks for compression itself.
    message.setRawHeader("Accept-Encoding", "identity");
    if (!request.token.isEmpty())
        message.setRawHeader("Authorization", "Bearer " + request.token);
    if (!request.body.isEmpty())
        message.setHeader(QNetworkRequest::ContentTypeHeader, request.contentType);
    for (const auto& [name, value] : request.headers)
        message.setRawHeader(name, value);
    if (request.repeatable || request.body.isEmpty())
        return Watched(m_network.sendCustomRequest(message, request.verb, request.body));
    // To answer a proxy, Qt would have to send the body again, which can be read only once; HttpCall makes another
    // attempt instead.
    message.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    const QByteArray proxyAuthorization = ProxyAuthorization(message.url());
    if (!proxyAuthorization.isEmpty())
        message.setRawHeader("Proxy-Authorization", proxyAuthorization);
    message.setHeader(QNetworkRequest::ContentLengthHeader, request.body.size());
    message.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    auto body = std::make_unique<SingleUseBody>(request.body);
    QNetworkReply* reply = m_network.sendCustomRequest(message, request.verb, body.get());
    body.release()->setParent(reply);
    return Watched(reply);
}

void HttpTransport::Report(const HttpRequest& request, const FarmFault& fault) const
{
    if (m_feed)
        m_feed->Report(request.verb, request.target, fault, request.token);
}

QString ProxyName(const QUrl& server)
{
    const QNetworkProxy proxy = ProxyTo(server);
    return proxy.hostName().isEmpty() ? QString()
                                      : QStringLiteral("%1:%2").arg(proxy.hostName()).arg(proxy.port());
}

QUrl FarmApiRoot(const QUrl& server)
{
    QUrl root = server;
    if (!server.isEmpty())
        root.setPath(server.adjusted(QUrl::StripTrailingSlash).path() + QLatin1String("/api/v1"));
    return root;
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
