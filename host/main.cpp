#include "host/app/client_host.h"
#include "host/app/host_options.h"
#include "host/process/single_instance.h"
#include "host/process/termination_signals.h"
#include "host/tour/screenshot_tour.h"

#include <QApplication>
#include <QDir>
#include <QLockFile>

#include <cstdio>
#include <memory>

namespace {

int Fail(const QString& message)
{
    std::fprintf(stderr, "quillstar: %s\n", qUtf8Printable(message));
    return 1;
}

/// Keeps clients with other configurations away from the same databases.
/// @return false when another client holds the lock.
bool Lock(QLockFile& lock)
{
    lock.setStaleLockTime(0);
    return lock.tryLock(0) || lock.error() != QLockFile::LockFailedError;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quillstar"));
    QApplication::setApplicationVersion(QStringLiteral(QSCLIENT_VERSION));
    QApplication::setApplicationDisplayName(QStringLiteral("QuillStar Client"));
    QApplication::setQuitOnLastWindowClosed(false);

    HostOptions options;
    QString error;
    if (!options.Parse(QApplication::arguments(), &error))
        return Fail(error);

    const bool isTour = !options.screenshotFolder.isEmpty();
    if (isTour)
        options.autoSignIn = false; // the tour signs in after saving a picture of the sign-in window

    const SingleInstance instance(options.configFile);
    if (!instance.IsFirst()) {
        if (isTour || !instance.ActivateFirst(options.scenes))
            return Fail(QStringLiteral("the client is already running"));
        return 0;
    }

    const QString transferFolder = options.dataFolder + QLatin1String("/transfer");
    QDir().mkpath(transferFolder);
    QLockFile dataLock(transferFolder + QLatin1String("/client.lock"));
    if (!Lock(dataLock))
        return Fail(
            QStringLiteral("the client is already running with the data in %1").arg(options.dataFolder));

    ClientHost host(options);
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::Received, &application, &QApplication::quit);
    QObject::connect(&instance, &SingleInstance::Activated, &host, &ClientHost::Activate);
    if (!host.Start(&error))
        return Fail(error);
    const auto tour = isTour ? std::make_unique<ScreenshotTour>(options.screenshotFolder, &host) : nullptr;
    return QApplication::exec();
}
