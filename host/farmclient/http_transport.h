#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <utility>
#include <vector>

class HttpCall;
class QNetworkReply;

struct HttpRequest
{
    QByteArray verb;
    QByteArray target;      ///< path below the transport's base URL and query, both percent-encoded
    QByteArray token;       ///< bearer token; none when empty
    QByteArray body;        ///< none when empty
    bool repeatable = true; ///< may be sent again when it failed on the way
    int attemptTime = 0;    ///< in milliseconds instead of the transport's own limit; 0 for that
    QByteArray contentType = QByteArrayLiteral("application/json"); ///< of the body
    std::vector<std::pair<QByteArray, QByteArray>> headers = {};    ///< further ones
};

struct HttpResult
{
    // What stands in for an HTTP status when there is no answer to read one from.
    static constexpr int Unreachable = -1;
    static constexpr int TimedOut = -2;
    static constexpr int TooLarge = -3;
    static constexpr int NotJson = -4;

    int status = Unreachable;
    QJsonObject json;   ///< the answer's body, also that of a failure where it is a JSON object
    QString error;      ///< English sentence; empty when status is 200
    int retryAfter = 0; ///< seconds that the server asks to be left alone for, at most an hour
};

/// How long and how often the transport tries. Times in milliseconds.
struct HttpLimits
{
    int attemptTime = 10000; ///< one attempt, from its start to the answer's last byte
    int attempts = 3;
    int firstPause = 300;    ///< before the second attempt; doubled before each further one
    int longestPause = 8000; ///< also the most that a server's Retry-After is followed
    qint64 answerBytes = 8LL * 1024 * 1024;
};

/// Requests to one server. Follows no redirect, keeps no cookie, accepts no unverified certificate.
/// It belongs to the thread that it was made in, like all that it sends.
class HttpTransport
{
public:
    explicit HttpTransport(const HttpLimits& limits = {});

    /// Where requests go from now on, further attempts of running ones included; an empty URL makes each of them fail.
    /// No connection to the former place is kept, so that a server of ours can end without waiting for us.
    void SetBaseUrl(const QUrl& url);

    /// Sends a request with a JSON answer. The call reports its result once, later, and then deletes itself; deleting it cancels it.
    /// @param owner must not outlive this transport.
    HttpCall* Send(const HttpRequest& request, QObject* owner);

    /// One attempt, with whatever answer; the reply is the caller's. Null when there is nowhere to send it.
    QNetworkReply* Begin(const HttpRequest& request);
    const HttpLimits& Limits() const { return m_limits; }

private:
    QNetworkAccessManager m_network;
    HttpLimits m_limits;
    QUrl m_base;
};

/// Where the farm's interface stands on a server; empty for an empty URL.
QUrl FarmApiRoot(const QUrl& server);

/// True when a whole answer came, whatever its status; false when the exchange itself failed.
bool IsAnswered(const QNetworkReply& reply);

/// Ends an exchange, of which the receiver hears no more. Harmless when there is none.
void Discard(QPointer<QNetworkReply>& reply, const QObject* receiver);

/// Whether a request that ended with this status, or with what stands in for one, may succeed later as it is.
bool IsPassing(int status);
