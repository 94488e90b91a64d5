#pragma once

#include <QtNetwork>

/// An HTTP server on a loopback port that answers with prepared bytes, which need not be valid HTTP.
class StandInServer : public QObject
{
public:
    /// The answer to one request: the bytes are sent unchanged, then the connection is closed.
    struct Reply
    {
        QByteArray bytes;
        bool hold = false; ///< send nothing until Release
        int pace = 0;      ///< bytes sent every tenth of a second; 0 for all at once
    };

    StandInServer()
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection()) {
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Read(socket); });
            }
        });
        if (!m_server.listen(QHostAddress::LocalHost))
            qFatal("no loopback port to listen on");
    }

    /// @return a complete answer.
    static Reply Http(int status, const QByteArray& body = "{}", const QByteArray& headers = {})
    {
        return {"HTTP/1.1 " + QByteArray::number(status)
            + " Status\r\nContent-Type: application/json\r\nContent-Length: "
            + QByteArray::number(body.size()) + "\r\nConnection: close\r\n" + headers + "\r\n" + body};
    }

    /// @return a success with this JSON, in which apostrophes may stand for quotation marks, as its data.
    static Reply Data(QByteArray json) { return Http(200, "{\"data\": " + json.replace('\'', '"') + '}'); }

    /// @return a reply that is not sent before Release.
    static Reply Held(const Reply& reply) { return {reply.bytes, true}; }

    QUrl Url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort())); }

    /// Sets the replies to the next requests, in order. The last one also answers all later requests.
    void SetReplies(const QList<Reply>& replies) { m_replies = replies; }

    /// Sends the held reply to the request with this index.
    void Release(int request)
    {
        const Exchange& exchange = m_exchanges.at(request);
        if (exchange.socket)
            Send(exchange.socket, exchange.reply.bytes);
    }

    /// @return head and body of each request so far, in order.
    QList<QByteArray> Requests() const { return m_requests; }

private:
    struct Exchange
    {
        QPointer<QTcpSocket> socket;
        Reply reply;
    };

    void Read(QTcpSocket* socket)
    {
        static const QRegularExpression length(
            QStringLiteral("\r\nContent-Length: *([0-9]+)"), QRegularExpression::CaseInsensitiveOption);
        const QByteArray received = socket->peek(socket->bytesAvailable());
        const int head = received.indexOf("\r\n\r\n");
        const int body = length.match(QString::fromLatin1(received.left(head))).captured(1).toInt();
        if (head < 0 || received.size() < head + 4 + body)
            return;
        m_requests.append(socket->readAll());
        const Reply reply = m_replies.size() > 1 ? m_replies.takeFirst() : m_replies.value(0);
        m_exchanges.append({socket, reply});
        if (!reply.hold)
            Begin(socket, reply);
    }

    void Begin(QTcpSocket* socket, const Reply& reply)
    {
        if (reply.pace == 0 || reply.bytes.size() <= reply.pace) {
            Send(socket, reply.bytes);
            return;
        }
        socket->write(reply.bytes.left(reply.pace));
        QTimer::singleShot(100, socket, [=] {
            Begin(socket, {reply.bytes.mid(reply.pace), false, reply.pace});
        });
    }

    static void Send(QTcpSocket* socket, const QByteArray& bytes)
    {
        socket->write(bytes);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    QList<Reply> m_replies;
    QList<QByteArray> m_requests;
    QList<Exchange> m_exchanges;
};
