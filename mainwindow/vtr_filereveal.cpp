#include "vtr_filereveal.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#ifdef QSCLIENT_HAVE_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#endif

namespace {

/// Asks the desktop's file manager on the session bus. @return whether there is one to ask.
bool RevealOnBus(const QString& strPath)
{
#ifdef QSCLIENT_HAVE_DBUS
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"), QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("ShowItems"));
    message << QStringList {QUrl::fromLocalFile(strPath).toString()} << QString();
    const QDBusMessage answer = QDBusConnection::sessionBus().call(message, QDBus::Block, 3000);
    return answer.type() == QDBusMessage::ReplyMessage;
#else
    Q_UNUSED(strPath)
    return false;
#endif
}

} // namespace

void VTRevealFile(const QString& strPath)
{
    if (strPath.isEmpty())
        return;
    if (QProcess::startDetached(
            QStringLiteral("explorer.exe"), {QStringLiteral("/select,"), QDir::toNativeSeparators(strPath)}))
        return;
    if (!RevealOnBus(strPath))
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(strPath).path()));
}
