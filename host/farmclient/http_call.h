#pragma once

#include "host/farmclient/http_transport.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <optional>

/// One request with a JSON answer, through all its attempts. It reports once, never from inside the constructor, and then
/// deletes itself; deleting it earlier cancels the request.
class HttpCall : public QObject
{
    Q_OBJECT

public:
    /// @param transport must outlive this call, which lives in its thread.
    HttpCall(HttpTransport* transport, const HttpRequest& request, QObject* owner);
    ~HttpCall() override;

signals:
    /// @param bytes is how much of the body the current attempt has sent; each attempt counts from 0.
    void Sent(qint64 bytes);
    void Finished(const HttpResult& result);

private:
    void Attempt();
    void Collect();
    void NoteProgress(qint64 bytes);
    bool DecompressReceived();
    void HandleTimeout();
    void HandleFinished();
    void EndAttempt(const HttpResult& result);
    void DropReply();
    void HandlePauseEnd();

    HttpTransport* m_transport;
    HttpRequest m_request;
    QPointer<QNetworkReply> m_reply;
    QByteArray m_received;
    qint64 m_noted = 0;                 // bytes received when the deadline was moved last
    std::optional<HttpResult> m_result; // set when no attempt follows
    QTimer m_deadline;
    QTimer m_pause; // runs before the next attempt, or before the result is reported
    int m_attempt = 0;
};
