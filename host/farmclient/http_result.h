#pragma once

#include "host/farmclient/farm_fault.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

class QNetworkReply;

/// The answer to a request, or the reason why there is none.
struct HttpResult
{
    int status = FarmFault::Unreachable; ///< of HTTP, or one of those of FarmFault
    QJsonObject json = {}; ///< the answer's body, even of a failure; empty unless the body is a JSON object
    QString error = {};    ///< sentences for the user; empty when status is 200
    int retryAfter = 0;    ///< the wait in seconds that the server asks for, at most an hour
    FarmFault fault = {};  ///< the reason for the failure, from which `error` is made

    /// @return the result of a request that failed with this fault.
    static HttpResult Failed(const FarmFault& fault, const QJsonObject& json = {});

    /// @return the result of a finished exchange, whatever its status; an answer that was cut off counts as none.
    static HttpResult Of(const QNetworkReply& reply, const QByteArray& body);

    /// @return the reason why the connection of a failed reply ended.
    static FarmFault ConnectionFault(const QNetworkReply& reply);

    /// @return whether the same request may succeed later.
    bool IsTransient() const;

    /// @return whether an intermediary has answered in the farm's place: a proxy that asks for a password, or a network
    /// that shows its own page first. The request may succeed later, but not soon.
    bool IsFromIntermediary() const;

    /// @return whether the farm's disk is full, which no client can change; an exhausted quota is an answer to the client.
    bool IsDiskFull() const;
};
