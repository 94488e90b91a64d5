#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>

#include <memory>

struct Reply
{
    int status = 0;
    QJsonObject body;
    QByteArray retryAfter;
};

/// Sends requests to a farm and waits for the answers; the event loop runs meanwhile.
class FarmClient
{
public:
    void SetUrl(const QString& url) { m_url = url; }

    Reply Send(const QByteArray& method, const QString& path, const QByteArray& body = {},
        const QString& token = QString())
    {
        QNetworkRequest request(QUrl(m_url + QStringLiteral("/api/v1") + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
        if (!token.isEmpty())
            request.setRawHeader("Authorization", "Bearer " + token.toLatin1());
        const std::unique_ptr<QNetworkReply> reply(m_network.sendCustomRequest(request, method, body));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        if (!reply->isFinished())
            finished.wait(30000);
        return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
            QJsonDocument::fromJson(reply->readAll()).object(), reply->rawHeader("Retry-After")};
    }

    /// The session's token; empty when the farm refuses.
    QString SignIn(const char* name, const char* password)
    {
        const QJsonObject body {{QStringLiteral("username"), QLatin1String(name)},
            {QStringLiteral("password"), QLatin1String(password)}};
        const Reply reply = Send("POST", QStringLiteral("/session"), QJsonDocument(body).toJson());
        return reply.body[QLatin1String("data")][QLatin1String("token")].toString();
    }

private:
    QString m_url;
    QNetworkAccessManager m_network;
};
