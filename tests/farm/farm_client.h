#pragma once

#include "tests/farm/farm_fixture.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpSocket>

#include <memory>
#include <numeric>

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

/// Replaces %1, %2 … in the pattern by the parts.
inline QString Fill(const char* pattern, const QStringList& parts)
{
    return std::accumulate(parts.begin(), parts.end(), QString::fromLatin1(pattern),
        [](const QString& text, const QString& part) { return text.arg(part); });
}

/// Sends requests to a farm and waits for the answers. The event loop runs meanwhile.
class FarmClient
{
public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    void SetUrl(const QString& url) { m_url = url; }

    Reply Send(const QByteArray& method, const QString& path, const QByteArray& body = {},
        const QString& token = QString(), const Headers& headers = {})
    {
        QNetworkRequest request(QUrl(m_url + "/api/v1"_s + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
        if (!token.isEmpty())
            request.setRawHeader("Authorization", "Bearer " + token.toLatin1());
        for (const auto& header : headers)
            request.setRawHeader(header.first, header.second);
        const std::unique_ptr<QNetworkReply> reply(m_network.sendCustomRequest(request, method, body));
        QSignalSpy finished(reply.get(), &QNetworkReply::finished);
        if (!reply->isFinished())
            finished.wait(patienceMs);
        const QByteArray bytes = reply->readAll();
        return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), bytes,
            QJsonDocument::fromJson(bytes).object(), reply->rawHeader("Retry-After"),
            reply->rawHeader("ETag")};
    }

    /// Returns the session's token, which the following requests carry; empty when the farm refuses.
    QString SignIn(const char* name, const char* password)
    {
        const QJsonObject body {{"username"_s, QLatin1String(name)}, {"password"_s, QLatin1String(password)}};
        const Reply reply = Send("POST", "/session"_s, QJsonDocument(body).toJson());
        m_token = reply.Data("token").toString();
        return m_token;
    }

    /// This request and the following ones carry the token of the last sign-in. The parts replace %1, %2 … in the pattern.
    Reply Get(const char* pattern, const QStringList& parts = {}, const Headers& headers = {})
    {
        return Send("GET", Fill(pattern, parts), {}, m_token, headers);
    }

    Reply Post(const char* pattern, const QJsonObject& body = {}, const QStringList& parts = {})
    {
        return Send("POST", Fill(pattern, parts), QJsonDocument(body).toJson(), m_token);
    }

    Reply Apply(const char* action, const QStringList& ids)
    {
        return Post("/jobs/%1", {{"ids"_s, QJsonArray::fromStringList(ids)}}, {QString::fromLatin1(action)});
    }

    Reply BeginUpload(const QByteArray& package)
    {
        return Post("/uploads", {{"checksum"_s, Sha256(package)}, {"size"_s, package.size()}});
    }

    Reply Put(const QString& upload, int offset, const QByteArray& bytes)
    {
        const QStringList parts {upload, QString::number(offset)};
        return Send("PUT", Fill("/uploads/%1?offset=%2", parts), bytes, m_token);
    }

    Reply Unpack(const QString& upload) { return Post("/uploads/%1/unpack", {}, {upload}); }

    /// Returns those of the contents that the account has on the farm.
    QJsonArray Known(const QStringList& checksums)
    {
        return Post("/contents/known", {{"checksums"_s, QJsonArray::fromStringList(checksums)}})
            .Data("known")
            .toArray();
    }

    /// Sends a package in one chunk and returns the answer to its unpacking.
    Reply Deliver(const QByteArray& package)
    {
        const QString upload = BeginUpload(package).Data("id").toString();
        Put(upload, 0, package);
        return Unpack(upload);
    }

    /// Sends raw bytes; the answer can be read from the socket.
    std::unique_ptr<QTcpSocket> SendRaw(const QByteArray& bytes, qint64 bufferSize = 0) const
    {
        auto socket = std::make_unique<QTcpSocket>();
        socket->setReadBufferSize(bufferSize);
        const QUrl url(m_url);
        socket->connectToHost(url.host(), quint16(url.port()));
        socket->waitForConnected(patienceMs);
        socket->write(bytes);
        socket->waitForBytesWritten(patienceMs);
        return socket;
    }

    /// The header field that gives a raw request the token of the last sign-in.
    QByteArray RawToken() const { return "Authorization: Bearer " + m_token.toLatin1() + "\r\n"; }

private:
    QString m_url;
    QString m_token;
    QNetworkAccessManager m_network;
};
