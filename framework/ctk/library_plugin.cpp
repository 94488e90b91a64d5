#include "framework/ctk/library_plugin.h"

#include "ctkPluginActivator.h"
#include "ctkPluginException.h"
#include "framework/ctk/framework_core.h"
#include "framework/ctk/plugin_manifest.h"

#include <QFile>

namespace {

[[noreturn]] void Refuse(const QString& message, ctkPluginException::Type type)
{
    throw ctkPluginException(message, type);
}

/// Loads the library, which registers its resources, and reads the manifest among them.
ManifestHeaders LoadManifest(const QString& file)
{
    // The library stays loaded: its meta-types, queued events and static data may outlive every stop.
    QPluginLoader loader(file);
    if (!loader.load())
        Refuse(loader.errorString(), ctkPluginException::READ_ERROR);
    QFile manifest(QStringLiteral(":/%1/META-INF/MANIFEST.MF").arg(ResourceFolder(file)));
    if (!manifest.open(QIODevice::ReadOnly)) {
        Refuse(QStringLiteral("%1 has no manifest at %2").arg(file, manifest.fileName()),
            ctkPluginException::MANIFEST_ERROR);
    }
    return ParseManifest(manifest.readAll());
}

/// Calls an activator's start or stop, which may throw anything. @return the error's text; null when there is none.
template <typename Call>
QString FailureOf(Call call)
{
    try {
        call();
    } catch (const std::exception& exception) {
        return QStringLiteral("The activator failed: %1").arg(QString::fromUtf8(exception.what()));
    } catch (...) {
        return QStringLiteral("The activator failed");
    }
    return QString();
}

} // namespace

LibraryPlugin::LibraryPlugin(const QSharedPointer<FrameworkCore>& core, const QString& file)
    : ctkPlugin(core, LoadManifest(file))
    , m_file(file)
    , m_loader(file)
{
}

void LibraryPlugin::RefuseTransition() const
{
    if (getState() == STARTING || getState() == STOPPING) {
        Refuse(QStringLiteral("%1 is just starting or stopping").arg(getSymbolicName()),
            ctkPluginException::STATECHANGE_ERROR);
    }
}

void LibraryPlugin::start(const StartOptions& options)
{
    Q_UNUSED(options)
    if (getState() == ACTIVE)
        return;
    RefuseTransition();
    if (!Core().running)
        Refuse(QStringLiteral("The framework is not running"), ctkPluginException::INVALID_OPERATION);
    auto* const activator = qobject_cast<ctkPluginActivator*>(m_loader.instance());
    if (!activator) {
        Refuse(QStringLiteral("%1 has no activator").arg(getSymbolicName()),
            ctkPluginException::ACTIVATOR_ERROR);
    }

    SetState(STARTING);
    const QString failure = FailureOf([&] { activator->start(getPluginContext()); });
    if (!failure.isNull()) {
        Retire();
        Refuse(failure, ctkPluginException::ACTIVATOR_ERROR);
    }
    Core().started.append(this);
    SetState(ACTIVE);
}

void LibraryPlugin::stop(const StopOptions& options)
{
    Q_UNUSED(options)
    RefuseTransition();
    if (getState() != ACTIVE)
        return;

    SetState(STOPPING);
    Core().started.removeOne(this);
    auto* const activator = qobject_cast<ctkPluginActivator*>(m_loader.instance());
    const QString failure = FailureOf([&] { activator->stop(getPluginContext()); });
    Retire();
    if (!failure.isNull())
        Refuse(failure, ctkPluginException::ACTIVATOR_ERROR);
}
