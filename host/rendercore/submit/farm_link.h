#pragma once

#include "host/farmclient/http_transport.h"
#include "host/rendercore/submit/stage_outcome.h"

#include <QEventLoop>
#include <QPointer>

#include <optional>

/// Requests to the farm, one after another, for a thread that can wait: its event loop runs meanwhile.
/// Each is tried once.
class FarmLink
{
public:
    FarmLink();

    /// Where and as whom from now on, and what ends a request early.
    void Begin(const FarmAccess& access, const InterruptFlag& interrupted);

    /// Ends the request that is under way when the flag is set; to be called in the client's thread.
    void Interrupt();

    /// @param onSent is told how many bytes of the body are on their way.
    /// @return the result; none when it was interrupted.
    std::optional<HttpResult> Send(HttpRequest request, const std::function<void(qint64)>& onSent = {});

    /// Sends a JSON object.
    std::optional<HttpResult> Post(const QByteArray& target, const QJsonObject& body, int attemptTime = 0);

private:
    HttpTransport m_transport;
    QUrl m_base;
    QByteArray m_token;
    InterruptFlag m_interrupted;
    QPointer<QEventLoop> m_waiting;
};
