#pragma once

#include "host/farmclient/farm_numbers.h"
#include "host/farmclient/http_result.h"
#include "host/farmclient/proxy_login.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <utility>
#include <vector>

class ConnectionFeed;
class QAuthenticator;
class QNetworkReply;

struct HttpRequest
{
    QByteArray verb;
    QByteArray target;      ///< path below the transport's base URL and query, both percent-encoded
    QByteArray token;       ///< bearer token; empty for none
    QByteArray body;        ///< empty for none
    bool repeatable = true; ///< may be sent again when the connection failed during an attempt
    int attemptTime = 0;    ///< ms without progress before an attempt has failed; 0 for the transport's limit
    QByteArray contentType = QByteArrayLiteral("application/json"); ///< media type of the body
    std::vector<std::pair<QByteArray, QByteArray>> headers = {};    ///< additional headers
};

/// Time and retry limits, in milliseconds.
struct HttpLimits
{
    int attemptTime = 10000; ///< without progress, after which an attempt has failed
    int attempts = 3;
    int firstPause = 300;    ///< the pause before the second attempt; doubled before each further one
    int longestPause = 8000; ///< also caps the server's Retry-After
    qint64 answerBytes = FarmNumbers::LongestAnswer; ///< compressed as well as decompressed
};

/// Sends requests to one server. It follows no redirects, keeps no cookies and accepts no unverified certificates.
/// It belongs to the thread that created it; HttpCall sends a request through all its attempts.
class HttpTransport
{
public:
    explicit HttpTransport(const HttpLimits& limits = {});

    /// Sets where requests go from now on, including further attempts of running calls. Without a URL they all fail.
    /// Connections to the previous server are closed, so that an embedded farm can end without waiting for this client.
    void SetBaseUrl(const QUrl& url);

    /// Sets the name and password for proxies that ask for them where the system's settings have none or wrong ones.
    void SetProxyLogin(const ProxyLogin& login);

    /// Sets the feed to which all exchanges are reported; null for none. It must outlive this transport.
    void SetFeed(ConnectionFeed* feed) { m_feed = feed; }
    ConnectionFeed* Feed() const { return m_feed; }

    /// Reports the end of an attempt at this request to the feed.
    /// @param fault none if it succeeded.
    void Report(const HttpRequest& request, const FarmFault& fault = {}) const;

    /// Handles a reply with which a proxy asked for a password instead of passing the request on.
    /// @return whether Begin() has a password for it that the request of this reply did not carry.
    bool CanAnswerProxy(const QNetworkReply& reply);

    /// Makes one attempt and accepts any kind of answer. The caller owns the reply; null while there is no server.
    QNetworkReply* Begin(const HttpRequest& request);
    const HttpLimits& Limits() const { return m_limits; }

private:
    QByteArray ProxyAuthorization(const QUrl& url) const;
    void AnswerProxy(QAuthenticator* question) const;

    QNetworkAccessManager m_network;
    ProxyLogin m_proxyLogin;
    bool m_proxyAsks = false;
    ConnectionFeed* m_feed = nullptr;
    HttpLimits m_limits;
    QUrl m_base;
};

/// @return the URL of the farm's interface on a server; empty for an empty URL.
QUrl FarmApiRoot(const QUrl& server);

/// Aborts and clears the reply, if there is one, after disconnecting the receiver from it.
void Discard(QPointer<QNetworkReply>& reply, const QObject* receiver);
