#include "host/process/single_instance.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QStandardPaths>

namespace {

constexpr int CallTime = 2000;                // ms
constexpr qint64 LongestCall = 1024LL * 1024; // bytes

const QLatin1String ScenesKey("scenes");
const QLatin1String PriorityKey("priority");

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
        qWarning().noquote() << "cannot listen for other starts of the client:" << m_server.errorString();
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* caller = m_server.nextPendingConnection())
            ReadScenes(caller);
    });
}

/// The caller sends a JSON object and disconnects.
void SingleInstance::ReadScenes(QLocalSocket* caller)
{
    const auto conclude = [this, caller] {
        caller->disconnect(this);
        caller->deleteLater();
        const QJsonObject call = QJsonDocument::fromJson(caller->read(LongestCall)).object();
        emit Activated(call.value(ScenesKey).toVariant().toStringList(), call.value(PriorityKey).toInt());
    };
    if (caller->state() == QLocalSocket::UnconnectedState) {
        conclude();
        return;
    }
    caller->setReadBufferSize(LongestCall);
    connect(caller, &QLocalSocket::disconnected, this, conclude);
}

bool SingleInstance::ActivateFirst(const QStringList& scenes, int priority) const
{
    const QJsonObject call {{ScenesKey, QJsonArray::fromStringList(scenes)}, {PriorityKey, priority}};
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(CallTime))
        return false;
    socket.write(QJsonDocument(call).toJson(QJsonDocument::Compact));
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(CallTime))
            return false;
    }
    socket.disconnectFromServer();
    return true;
}
