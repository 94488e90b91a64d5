#pragma once

#include "host/farmclient/farm_fault.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

class QNetworkReply;

/// The answer to a request, or the reason why there is none.
struct HttpResult
{
    // These replace the HTTP status when there is no usable answer.
    static constexpr int Unreachable = -1;
    static constexpr int TimedOut = -2;
    static constexpr int TooLarge = -3;
    static constexpr int NotJson = -4;
    static constexpr int Untrusted = -5; ///< the server's certificate

    int status = Unreachable;
    QJsonObject json = {}; ///< the answer's body, even of a failure; empty unless the body is a JSON object
    QString error = {};    ///< sentences for the user; empty when status is 200
    int retryAfter = 0;    ///< seconds that the server asks clients to wait, at most an hour
    FarmFault fault = {};  ///< what `error` says

    /// @return the result of a request that failed in this way.
    static HttpResult Failed(const FarmFault& fault, const QJsonObject& json = {});

    /// @return the result of a finished exchange, whatever its status; an answer that was cut off is none.
    static HttpResult Of(const QNetworkReply& reply, const QByteArray& body);

    /// @return how the connection ended, for a reply that failed.
    static FarmFault ConnectionFault(const QNetworkReply& reply);

    /// @return whether the same request may succeed later.
    bool IsTransient() const;

    /// @return whether the farm's disk is full, which no client can change; an exhausted quota is an answer to the client.
    bool IsDiskFull() const;
};
