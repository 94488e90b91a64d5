#pragma once

#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

/// An HTTP server on a loopback port that answers as it is told, badly if need be.
class StandInServer : public QObject
{
    Q_OBJECT

public:
    /// What happens to one request: bytes are sent as they are, then the connection is closed.
    struct Reply
    {
        QByteArray bytes;
        bool hold = false; ///< send nothing until Release
    };

    StandInServer();

    /// A whole answer.
    static Reply Http(int status, const QByteArray& body, const QByteArray& headers = {});

    /// An answer that is not sent before Release.
    static Reply Held(const Reply& reply) { return {reply.bytes, true}; }

    QUrl Url() const;

    /// The replies to the coming requests, in order; the last one also serves all that follow.
    void SetReplies(const QList<Reply>& replies) { m_replies = replies; }

    /// Sends the held reply to the request of this index.
    void Release(int request);

    /// Head and body of each request so far, in order.
    QList<QByteArray> Requests() const { return m_requests; }

private:
    void Accept();
    void Read(QTcpSocket* socket);
    static void Send(QTcpSocket* socket, const QByteArray& bytes);

    struct Exchange
    {
        QPointer<QTcpSocket> socket;
        Reply reply;
    };

    QTcpServer m_server;
    QList<Reply> m_replies;
    QList<QByteArray> m_requests;
    QList<Exchange> m_exchanges;
};
