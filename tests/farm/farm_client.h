#pragma once

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>

#include <memory>

struct Reply
{
    int status = 0;
    QByteArray bytes;
    QJsonObject body;
    QByteArray retryAfter;
    QByteArray tag;

    QJsonValue Data(const char* key) const { return body[QLatin1String("data")][QLatin1String(key)]; }
    QString Error() const { return body[QLatin1String("error")].toString(); }
};

inline QString Sha256(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

/// Sends requests to a farm and waits for the answers; the event loop runs meanwhile.
class FarmClient
{
public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    void SetUrl(const QString& url) { m_url = url; }

    Reply Send(const QByteArray& method, const QString& path, const QByteArray& body = {},
        const QString& token = QString(), const Headers& headers = {})
    {
        QNetworkRequest request(QUrl(m_url + QStringLiteral("/api/v1") + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
        if (!token.isEmpty())
            request.setRawHeader("Authorization", "Bearer " + token.toLatin1());
        for (const auto& header : headers)
            request.setRawHeader(header.first, header.second);
        const std::unique_ptr<QNetworkReply> reply(m_network.sendCustomRequest(request, method, body));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        if (!reply->isFinished())
            finished.wait(30000);
        const QByteArray bytes = reply->readAll();
        return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), bytes,
            QJsonDocument::fromJson(bytes).object(), reply->rawHeader("Retry-After"),
            reply->rawHeader("ETag")};
    }

    /// The session's token; empty when the farm refuses.
    QString SignIn(const char* name, const char* password)
    {
        const QJsonObject body {{QStringLiteral("username"), QLatin1String(name)},
            {QStringLiteral("password"), QLatin1String(password)}};
        return Send("POST", QStringLiteral("/session"), QJsonDocument(body).toJson())
            .Data("token")
            .toString();
    }

    Reply BeginUpload(const QByteArray& package, const QString& token)
    {
        const QJsonObject body {
            {QStringLiteral("checksum"), Sha256(package)}, {QStringLiteral("size"), package.size()}};
        return Send("POST", QStringLiteral("/uploads"), QJsonDocument(body).toJson(), token);
    }

    Reply Put(const QString& upload, int offset, const QByteArray& bytes, const QString& token)
    {
        return Send("PUT", QStringLiteral("/uploads/%1?offset=%2").arg(upload).arg(offset), bytes, token);
    }

    Reply Unpack(const QString& upload, const QString& token)
    {
        return Send("POST", QStringLiteral("/uploads/%1/unpack").arg(upload), "{}", token);
    }

    /// The answer to the unpacking of a package that was sent whole.
    Reply Deliver(const QByteArray& package, const QString& token)
    {
        const QString upload = BeginUpload(package, token).Data("id").toString();
        Put(upload, 0, package, token);
        return Unpack(upload, token);
    }

private:
    QString m_url;
    QNetworkAccessManager m_network;
};
