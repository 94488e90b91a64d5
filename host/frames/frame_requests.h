#pragma once

#include "host/farmclient/farm_access.h"
#include "host/farmclient/http_transport.h"
#include "host/frames/frames_answer.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class HttpCall;

/// Requests frames, their logs and the account's spending from the farm. Each request is tried once; the window asks
/// again regularly.
class FrameRequests : public QObject
{
    Q_OBJECT

public:
    explicit FrameRequests(QObject* parent = nullptr);

    /// Ends all requests.
    void SetAccess(const FarmAccess& access);
    /// Ends all requests but changes of priorities.
    void Cancel();

    /// Does nothing while an earlier request for frames is under way.
    void RequestFrames(const QString& job, qint64 since);
    /// Replaces an earlier request for a log.
    void RequestLog(const QString& job, int number);
    /// Does nothing while an earlier request for spending is under way.
    void RequestSpending(int days);
    /// Ends an earlier request for frames, whose answer may contain the old priority.
    void SetPriority(const QString& job, int priority);

signals:
    void FramesArrived(const FramesAnswer& answer);
    void LogArrived(int number, const QString& log);
    void SpendingArrived(const SpendingAnswer& answer);
    /// @param refusal says why the priority stays as it was; empty when it has changed.
    void PriorityAnswered(const QString& job, const QString& refusal);
    /// @param reason a sentence for the user.
    void Failed(const QString& reason);

private:
    using Handler = std::function<void(const QJsonObject& body)>;

    HttpCall* Get(const QByteArray& target, const Handler& handler);
    HttpRequest Request(const char* verb, const QByteArray& target) const;

    HttpTransport m_transport;
    FarmAccess m_access;
    std::unique_ptr<QObject> m_calls;   // owns the requests under way
    std::unique_ptr<QObject> m_changes; // owns those that change priorities
    QPointer<HttpCall> m_frames;
    QPointer<HttpCall> m_log;
    QPointer<HttpCall> m_spending;
};
