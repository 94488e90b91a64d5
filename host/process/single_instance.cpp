#include "host/process/single_instance.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QStandardPaths>

namespace {

constexpr int kCallTime = 2000;
constexpr qint64 kLongestCall = 1024LL * 1024;

QString RuntimeFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return folder.isEmpty() ? QDir::tempPath() : folder;
}

QString InstanceName(const QString& configFile)
{
    const QByteArray identity = QDir::homePath().toUtf8() + '\n' + configFile.toUtf8();
    const QByteArray digest = QCryptographicHash::hash(identity, QCryptographicHash::Sha256).toHex().left(24);
    return QDir(RuntimeFolder()).filePath(QLatin1String("quillstar-") + QString::fromLatin1(digest));
}

} // namespace

SingleInstance::SingleInstance(const QString& configFile, QObject* parent)
    : QObject(parent)
    , m_name(InstanceName(configFile))
    , m_lock(m_name + QLatin1String(".lock"))
{
    m_lock.setStaleLockTime(0);
    m_first = m_lock.tryLock(0) || m_lock.error() != QLockFile::LockFailedError;
    if (!m_first)
        return;
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(m_name);
    if (!m_server.listen(m_name))
        qWarning().noquote() << "other starts of the client cannot reach this one:" << m_server.errorString();
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* caller = m_server.nextPendingConnection())
            Listen(caller);
    });
}

/// A caller sends its scenes and hangs up.
void SingleInstance::Listen(QLocalSocket* caller)
{
    const auto conclude = [this, caller] {
        caller->disconnect(this);
        caller->deleteLater();
        emit Called(QJsonDocument::fromJson(caller->read(kLongestCall)).toVariant().toStringList());
    };
    if (caller->state() == QLocalSocket::UnconnectedState) {
        conclude();
        return;
    }
    caller->setReadBufferSize(kLongestCall);
    connect(caller, &QLocalSocket::disconnected, this, conclude);
}

bool SingleInstance::CallFirst(const QStringList& scenes) const
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(kCallTime))
        return false;
    socket.write(QJsonDocument(QJsonArray::fromStringList(scenes)).toJson(QJsonDocument::Compact));
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(kCallTime))
            return false;
    }
    socket.disconnectFromServer();
    return true;
}
