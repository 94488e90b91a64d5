#pragma once

#include "host/base/interrupt_flag.h"
#include "host/farmclient/farm_access.h"
#include "host/farmclient/http_transport.h"

#include <QEventLoop>
#include <QPointer>

#include <functional>
#include <optional>

/// Sends requests to the farm and waits for the answers; the thread's event loop runs meanwhile. Each request is tried
/// once.
class FarmLink
{
public:
    /// @param attemptTime in milliseconds: a request without progress for this long has failed.
    explicit FarmLink(int attemptTime);

    /// Sets server and session for the following requests.
    /// @param interrupted ends a request early.
    void Begin(const FarmAccess& access, const InterruptFlag& interrupted);

    /// Ends the current request if the flag is set. Must be called in the same thread.
    void Interrupt();

    /// @param onSent is called with the number of bytes of the body that have been sent.
    /// @return none when the request was interrupted.
    std::optional<HttpResult> Send(HttpRequest request, const std::function<void(qint64)>& onSent = {});

    /// Sends a JSON object.
    /// @param attemptTime in milliseconds; 0 for the limit of this link.
    std::optional<HttpResult> Post(const QByteArray& target, const QJsonObject& body, int attemptTime = 0);

private:
    HttpTransport m_transport;
    QUrl m_base;
    QByteArray m_token;
    InterruptFlag m_interrupted;
    QPointer<QEventLoop> m_waiting;
};
