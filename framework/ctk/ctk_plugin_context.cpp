#include "ctkPluginContext.h"

#include "ctkException.h"
#include "ctkPluginException.h"
#include "framework/ctk/framework_core.h"
#include "framework/ctk/library_plugin.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

ctkPluginContext::ctkPluginContext(const ctkPlugin& plugin)
    : m_plugin(plugin)
{
}

FrameworkCore& ctkPluginContext::ValidCore() const
{
    if (m_plugin.getPluginContext() != this)
        throw ctkIllegalStateException(QStringLiteral("The plugin is not active, so its context is invalid"));
    return *m_plugin.m_core;
}

QSharedPointer<ctkPlugin> ctkPluginContext::installPlugin(const QUrl& location, QIODevice* input)
{
    FrameworkCore& core = ValidCore();
    if (input || !location.isLocalFile()) {
        throw ctkPluginException(QStringLiteral("Plugins are installed from local files, not from %1")
                                     .arg(input ? QStringLiteral("a device") : location.toDisplayString()),
            ctkPluginException::UNSUPPORTED_OPERATION);
    }
    const QString file = QDir::cleanPath(QFileInfo(location.toLocalFile()).absoluteFilePath());
    for (const auto& plugin : std::as_const(core.plugins)) {
        if (plugin->File() == file)
            return plugin;
    }
    const auto installed = QSharedPointer<LibraryPlugin>::create(m_plugin.m_core, file);
    for (const auto& plugin : std::as_const(core.plugins)) {
        if (plugin->getSymbolicName() == installed->getSymbolicName()) {
            throw ctkPluginException(QStringLiteral("%1 is already installed from %2")
                                         .arg(plugin->getSymbolicName(), plugin->File()),
                ctkPluginException::DUPLICATE_PLUGIN_ERROR);
        }
    }
    core.plugins.append(installed);
    return installed;
}

ctkServiceRegistration ctkPluginContext::registerService(
    const QStringList& classes, QObject* service, const ctkDictionary& properties)
{
    return ctkServiceRegistration(ValidCore().services.Add(&m_plugin, classes, service, properties));
}

ctkServiceReference ctkPluginContext::getServiceReference(const QString& name)
{
    return getServiceReferences(name).value(0);
}

QList<ctkServiceReference> ctkPluginContext::getServiceReferences(const QString& name, const QString& filter)
{
    const FrameworkCore& core = ValidCore();
    if (!filter.isEmpty())
        throw ctkInvalidArgumentException(QStringLiteral("Service filters are not supported"));
    QList<ctkServiceReference> references;
    const auto entries = core.services.Find(name);
    for (const auto& entry : entries)
        references.append(ctkServiceReference(entry));
    return references;
}

QObject* ctkPluginContext::getService(const ctkServiceReference& reference)
{
    ValidCore();
    if (!reference.m_entry)
        throw ctkInvalidArgumentException(QStringLiteral("The service reference is empty"));
    if (!reference)
        return nullptr;
    ++reference.m_entry->uses[&m_plugin];
    return reference.m_entry->object;
}

bool ctkPluginContext::ungetService(const ctkServiceReference& reference)
{
    ValidCore();
    if (!reference.m_entry)
        throw ctkInvalidArgumentException(QStringLiteral("The service reference is empty"));
    auto& uses = reference.m_entry->uses;
    const auto use = uses.find(&m_plugin);
    if (use == uses.end())
        return false;
    if (--*use == 0)
        uses.erase(use);
    return true;
}
