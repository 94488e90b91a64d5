#include "host/app/client_host.h"
#include "host/app/host_options.h"
#include "host/process/data_folder.h"
#include "host/process/single_instance.h"
#include "host/process/termination_signals.h"
#include "host/tour/screenshot_tour.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

#include <cstdio>
#include <limits>
#include <memory>

namespace {

int Fail(const QString& message)
{
    std::fprintf(stderr, "quillstar: %s\n", qUtf8Printable(message));
    return 1;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QGuiApplication::setDesktopFileName(QStringLiteral("com.vtr.quillstar"));
    QCoreApplication::setApplicationName(QStringLiteral("quillstar"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QSCLIENT_VERSION));
    HostOptions options;
    QString error;
    if (HostOptions::AsksForText(argc, argv)) {
        // The help begins with this name. Users start the installed program by a script, not by its path.
        static char name[] = "quillstar";
        argv[0] = name;
        const QCoreApplication console(argc, argv); // needs no display
        return options.Parse(QCoreApplication::arguments(), &error) ? 0 : Fail(error);
    }

    // Qt polls the network interfaces every ten seconds for a feature that the client does not use.
    qputenv("QT_BEARER_POLL_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("QuillStar Client"));
    QApplication::setQuitOnLastWindowClosed(false);
    if (!options.Parse(QApplication::arguments(), &error))
        return Fail(error);

    const bool isTour = !options.screenshotFolder.isEmpty();
    if (isTour)
        options.autoSignIn = false; // the tour signs in after saving a picture of the sign-in window

    const SingleInstance instance(options.configFile);
    if (!instance.IsFirst()) {
        if (isTour || !instance.ActivateFirst(options.scenes, options.priority))
            return Fail(QStringLiteral("the client is already running"));
        return 0;
    }

    // Clients with other configurations must not use the same databases.
    DataFolder data(options.dataFolder);
    if (!data.Lock(options.takeOver, &error))
        return Fail(error);
    QDir().mkpath(QFileInfo(options.configFile).path());
    if (!QFileInfo::exists(options.configFile))
        MakePrivateFile(options.configFile);

    ClientHost host(options);
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::Received, &application, &QApplication::quit);
    QObject::connect(&instance, &SingleInstance::Activated, &host, &ClientHost::Activate);
    if (!host.Start(&error))
        return Fail(error);
    const auto tour = isTour ? std::make_unique<ScreenshotTour>(options.screenshotFolder, &host) : nullptr;
    return QApplication::exec();
}
