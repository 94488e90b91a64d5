#pragma once

#include "host/farmclient/http_transport.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <optional>

/// One request through all its attempts. Reports once, never from inside the call that sent it, and deletes itself.
class HttpCall : public QObject
{
    Q_OBJECT

public:
    /// @param transport must outlive this call.
    HttpCall(HttpTransport* transport, const HttpRequest& request, QObject* owner);
    ~HttpCall() override;

signals:
    /// How much of the body is on its way, in bytes; less than before when another attempt begins.
    void Sent(qint64 bytes);
    void Finished(const HttpResult& result);

private:
    void Attempt();
    void Collect();
    void TimeOut();
    void Conclude();
    void EndAttempt(const HttpResult& result);
    void DropReply();
    void GoOn();

    HttpTransport* m_transport;
    HttpRequest m_request;
    QPointer<QNetworkReply> m_reply;
    QByteArray m_received;
    std::optional<HttpResult> m_result; // once there is no further attempt
    QTimer m_deadline;
    QTimer m_pause; // before the next attempt, or before the result is reported
    int m_attempt = 0;
};
