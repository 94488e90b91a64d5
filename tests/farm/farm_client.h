#pragma once

#include "tests/farm/farm_fixture.h"

#include <QCryptographicHash>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpSocket>

#include <memory>

struct Reply
{
    int status = 0;
    QByteArray bytes;
    QJsonObject body;
    QByteArray retryAfter;
    QByteArray tag;

    QJsonValue Data(const char* key) const { return body["data"_s][QLatin1String(key)]; }
    QString Error() const { return body["error"_s].toString(); }
};

inline QString Sha256(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

/// Sends requests to a farm and waits for the answers. The event loop runs meanwhile.
class FarmClient
{
public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    void SetUrl(const QString& url) { m_url = url; }

    Reply Send(const QByteArray& method, const QString& path, const QByteArray& body = {},
        const Headers& headers = {})
    {
        QNetworkRequest request(QUrl(m_url + "/api/v1"_s + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
        if (!token.isEmpty())
            request.setRawHeader("Authorization", "Bearer " + token.toLatin1());
        for (const auto& header : headers)
            request.setRawHeader(header.first, header.second);
        const std::unique_ptr<QNetworkReply> reply(m_network.sendCustomRequest(request, method, body));
        QSignalSpy(reply.get(), &QNetworkReply::finished).wait(Patience);
        const QByteArray bytes = reply->readAll();
        return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), bytes, Json(bytes),
            reply->rawHeader("Retry-After"), reply->rawHeader("ETag")};
    }

    Reply Get(const QString& path, const Headers& headers = {}) { return Send("GET", path, {}, headers); }

    Reply Post(const QString& path, const QJsonObject& body = {})
    {
        return Send("POST", path, QJsonDocument(body).toJson());
    }

    /// Makes the following requests carry the session's token, which is empty when the farm refuses, and returns it.
    QString SignIn(const char* name, const char* password)
    {
        const QJsonObject body {{"username"_s, QLatin1String(name)}, {"password"_s, QLatin1String(password)}};
        signIn = Post("/session"_s, body);
        return token = signIn.Data("token").toString();
    }

    Reply Apply(const QString& action, const QStringList& ids)
    {
        return Post("/jobs/"_s + action, {{"ids"_s, QJsonArray::fromStringList(ids)}});
    }

    Reply BeginUpload(const QByteArray& package)
    {
        return Post("/uploads"_s, {{"checksum"_s, Sha256(package)}, {"size"_s, package.size()}});
    }

    Reply Put(const QString& upload, int offset, const QByteArray& bytes)
    {
        return Send("PUT", "/uploads/%1?offset=%2"_s.arg(upload).arg(offset), bytes);
    }

    Reply Unpack(const QString& upload) { return Post("/uploads/%1/unpack"_s.arg(upload)); }

    /// Returns those of the contents that the account has on the farm.
    QJsonArray Known(const QStringList& checksums)
    {
        const QJsonObject body {{"checksums"_s, QJsonArray::fromStringList(checksums)}};
        return Post("/contents/known"_s, body).Data("known").toArray();
    }

    /// Sends a package in one chunk and returns the answer to its unpacking.
    Reply Deliver(const QByteArray& package)
    {
        const QString upload = BeginUpload(package).Data("id").toString();
        Put(upload, 0, package);
        return Unpack(upload);
    }

    /// Sends raw bytes; the answer can be read from the socket.
    std::unique_ptr<QTcpSocket> SendRaw(const QByteArray& bytes) const
    {
        auto socket = std::make_unique<QTcpSocket>();
        const QUrl url(m_url);
        socket->connectToHost(url.host(), quint16(url.port()));
        socket->waitForConnected(Patience);
        socket->write(bytes);
        socket->waitForBytesWritten(Patience);
        return socket;
    }

    /// Opens the account's stream of events.
    std::unique_ptr<QTcpSocket> Listen() const
    {
        return SendRaw(
            "GET /api/v1/events HTTP/1.1\r\nAuthorization: Bearer " + token.toLatin1() + "\r\n\r\n");
    }

    /// The token that requests carry: that of the last sign-in, unless a test changes it.
    QString token;
    /// The answer to the last sign-in.
    Reply signIn;

private:
    QString m_url;
    QNetworkAccessManager m_network;
};
