#include "host/farmclient/http_transport.h"

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

constexpr const char* CertificateFaultKey = "certificateFault";

/// Keeps the reason why a certificate is refused, which the error of the reply does not tell.
QNetworkReply* Watched(QNetworkReply* reply)
{
    QObject::connect(reply, &QNetworkReply::sslErrors, reply, [reply](const QList<QSslError>& faults) {
        reply->setProperty(CertificateFaultKey, faults.constFirst().errorString());
    });
    return reply;
}

} // namespace

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
    // Files arrive as they are; a call that can decompress its answer says so itself.
    message.setRawHeader("Accept-Encoding", "identity");
    if (!request.token.isEmpty())
        message.setRawHeader("Authorization", "Bearer " + request.token);
    if (!request.body.isEmpty())
        message.setHeader(QNetworkRequest::ContentTypeHeader, request.contentType);
    for (const auto& [name, value] : request.headers)
        message.setRawHeader(name, value);
    if (request.repeatable || request.body.isEmpty())
        return Watched(m_network.sendCustomRequest(message, request.verb, request.body));
    message.setHeader(QNetworkRequest::ContentLengthHeader, request.body.size());
    message.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    auto body = std::make_unique<SingleUseBody>(request.body);
    QNetworkReply* reply = m_network.sendCustomRequest(message, request.verb, body.get());
    body.release()->setParent(reply);
    return Watched(reply);
}

QString HttpTransport::CertificateFault(const QNetworkReply& reply)
{
    return reply.property(CertificateFaultKey).toString();
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
