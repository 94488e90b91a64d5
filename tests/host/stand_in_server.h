#pragma once

#include <QtNetwork>

/// An HTTP server on a loopback port that answers with prepared bytes, which need not be valid HTTP.
class StandInServer : public QObject
{
public:
    enum After { Close, Stall, Flood };

    /// The answer to one request: the bytes are sent unchanged, then the connection is closed.
    struct Reply
    {
        QByteArray bytes;
        bool hold = false;   ///< send nothing until Release
        int pace = 0;        ///< bytes sent every tenth of a second; 0 for all at once
        After after = Close; ///< stay silent instead of closing, or send as much as the client takes
    };

    /// @param certificate a file with a certificate and its key, for TLS; empty for none.
    explicit StandInServer(const QString& certificate = {})
        : m_server(certificate)
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection()) {
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Read(socket); });
            }
        });
        Listen();
    }

    /// Accepts connections, again at the same port after Refuse.
    void Listen()
    {
        if (!m_server.listen(QHostAddress::LocalHost, m_port))
            qFatal("no loopback port to listen on");
        m_port = m_server.serverPort();
    }

    /// Refuses connections from now on.
    void Refuse() { m_server.close(); }

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

    QUrl Url() const
    {
        return QUrl(QStringLiteral("http%1://127.0.0.1:%2")
                        .arg(QLatin1String(m_server.file.isEmpty() ? "" : "s"))
                        .arg(m_port));
    }

    /// Sets the replies to the next requests, in order. The last one also answers all later requests.
    void SetReplies(const QList<Reply>& replies) { m_replies = replies; }

    /// Answers every request with this text in it by the same reply, instead of the next one.
    void SetReplyTo(const QByteArray& text, const Reply& reply) { m_fixed.insert(text, reply); }

    /// Sends the held reply to the request with this index.
    void Release(int request) { Release(request, m_exchanges.at(request).reply.bytes); }

    /// Sends other bytes than the held ones.
    void Release(int request, const QByteArray& bytes)
    {
        if (QTcpSocket* socket = m_exchanges.at(request).socket)
            Send(socket, bytes);
    }

    /// Sends more bytes to a client whose reply stalls.
    void Continue(int request, const QByteArray& bytes)
    {
        if (QTcpSocket* socket = m_exchanges.at(request).socket)
            socket->write(bytes);
    }

    /// Acts as a proxy that passes only requests with this name and password on.
    void AskFor(const QByteArray& login)
    {
        m_login = "Proxy-Authorization: Basic " + login.toBase64() + "\r\n";
    }

    /// @return head and body of each request so far, in order.
    QList<QByteArray> Requests() const { return m_requests; }

    /// @return how many bytes the clients took of endless replies.
    qint64 Flooded() const { return m_flooded; }

private:
    struct Server : QTcpServer
    {
        explicit Server(const QString& certificate)
            : file(certificate)
        {
        }
        void incomingConnection(qintptr handle) override
        {
            if (file.isEmpty()) {
                QTcpServer::incomingConnection(handle);
                return;
            }
            auto* socket = new QSslSocket(this);
            socket->setSocketDescriptor(handle);
            socket->setLocalCertificate(file);
            socket->setPrivateKey(file, QSsl::Ec);
            socket->startServerEncryption();
            addPendingConnection(socket);
        }
        QString file;
    };

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
        if (!received.contains(m_login)) {
            socket->readAll();
            Send(socket, Http(407, "{}", "Proxy-Authenticate: Basic realm=\"x\"\r\n").bytes);
            return;
        }
        m_requests.append(socket->readAll());
        const Reply reply = ReplyTo(m_requests.constLast());
        m_exchanges.append({socket, reply});
        if (!reply.hold)
            Begin(socket, reply);
    }

    Reply ReplyTo(const QByteArray& request)
    {
        for (auto fixed = m_fixed.cbegin(); fixed != m_fixed.cend(); ++fixed) {
            if (request.contains(fixed.key()))
                return fixed.value();
        }
        return m_replies.size() > 1 ? m_replies.takeFirst() : m_replies.value(0);
    }

    void Begin(QTcpSocket* socket, const Reply& reply)
    {
        if (reply.pace == 0 || reply.bytes.size() <= reply.pace) {
            if (reply.after == Close)
                Send(socket, reply.bytes);
            else
                socket->write(reply.bytes);
            if (reply.after == Flood)
                connect(socket, &QTcpSocket::bytesWritten, this, [this, socket](qint64 bytes) {
                    m_flooded += bytes;
                    if (socket->bytesToWrite() == 0)
                        socket->write(QByteArray(65536, 'x'));
                });
            return;
        }
        socket->write(reply.bytes.left(reply.pace));
        QTimer::singleShot(100, socket, [=] {
            Begin(socket, {reply.bytes.mid(reply.pace), false, reply.pace, reply.after});
        });
    }

    static void Send(QTcpSocket* socket, const QByteArray& bytes)
    {
        socket->write(bytes);
        socket->disconnectFromHost();
    }

    Server m_server;
    quint16 m_port = 0;
    qint64 m_flooded = 0;
    QByteArray m_login;
    QList<Reply> m_replies;
    QMap<QByteArray, Reply> m_fixed; // by a text in the request
    QList<QByteArray> m_requests;
    QList<Exchange> m_exchanges;
};
