#include "mainwindow/vtr_filereveal.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#ifdef QSCLIENT_HAVE_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#endif

namespace {

void OpenFolderOf(const QString& strPath)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(strPath).path()));
}

#ifdef QSCLIENT_HAVE_DBUS
/// Asks the desktop's file manager on the session bus. If none answers, or there is no bus, the folder is opened.
void RevealInFileManager(const QString& strPath)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) { // a call would never finish
        OpenFolderOf(strPath);
        return;
    }
    QDBusMessage message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"), QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("ShowItems"));
    message << QStringList {QUrl::fromLocalFile(strPath).toString()} << QString();
    auto* pCall = new QDBusPendingCallWatcher(bus.asyncCall(message), qApp);
    QObject::connect(pCall, &QDBusPendingCallWatcher::finished, qApp, [pCall, strPath] {
        if (pCall->isError())
            OpenFolderOf(strPath);
        pCall->deleteLater();
    });
}
#else
void RevealInFileManager(const QString& strPath)
{
    OpenFolderOf(strPath);
}
#endif

} // namespace

void VTRevealFile(const QString& strPath)
{
    if (strPath.isEmpty())
        return;
    if (!QProcess::startDetached(
            QStringLiteral("explorer.exe"), {QStringLiteral("/select,"), QDir::toNativeSeparators(strPath)}))
        RevealInFileManager(strPath);
}
