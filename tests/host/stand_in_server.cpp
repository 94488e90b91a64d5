#include "stand_in_server.h"

#include <QRegularExpression>

StandInServer::StandInServer()
{
    connect(&m_server, &QTcpServer::newConnection, this, &StandInServer::Accept);
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("no loopback port to listen on");
}

StandInServer::Reply StandInServer::Http(int status, const QByteArray& body, const QByteArray& headers)
{
    return {"HTTP/1.1 " + QByteArray::number(status)
            + " Status\r\nContent-Type: application/json\r\nContent-Length: "
            + QByteArray::number(body.size()) + "\r\nConnection: close\r\n" + headers + "\r\n" + body,
        false};
}

QUrl StandInServer::Url() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort()));
}

void StandInServer::Release(int request)
{
    const Exchange& exchange = m_exchanges.at(request);
    if (exchange.socket)
        Send(exchange.socket, exchange.reply.bytes);
}

void StandInServer::Accept()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { Read(socket); });
    }
}

void StandInServer::Read(QTcpSocket* socket)
{
    static const QRegularExpression length(
        QStringLiteral("\r\nContent-Length: *([0-9]+)"), QRegularExpression::CaseInsensitiveOption);
    const QByteArray received = socket->peek(socket->bytesAvailable());
    const int head = received.indexOf("\r\n\r\n");
    if (head < 0)
        return;
    const int body = length.match(QString::fromLatin1(received.left(head))).captured(1).toInt();
    if (received.size() < head + 4 + body)
        return;
    m_requests.append(socket->readAll());
    const Reply reply = m_replies.size() > 1 ? m_replies.takeFirst() : m_replies.value(0);
    m_exchanges.append({socket, reply});
    if (!reply.hold)
        Send(socket, reply.bytes);
}

void StandInServer::Send(QTcpSocket* socket, const QByteArray& bytes)
{
    socket->write(bytes);
    socket->disconnectFromHost();
}
