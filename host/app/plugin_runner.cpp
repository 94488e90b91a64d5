#include "host/app/plugin_runner.h"

#include "vtr_baseinterface.h"

#include <ctkPlugin.h>
#include <ctkPluginFramework.h>
#include <ctkPluginFrameworkFactory.h>

#include <QDebug>
#include <QUrl>
#include <QVariantHash>

#include <exception>

PluginRunner::PluginRunner(const QString& storageFolder)
{
    // The cache is rebuilt at each start, so that it never holds an older version of the plugin's file.
    QVariantHash properties;
    properties.insert(QStringLiteral("org.commontk.pluginfw.storage"), storageFolder);
    properties.insert(QStringLiteral("org.commontk.pluginfw.storage.clean"), QStringLiteral("onFirstInit"));
    m_factory = std::make_unique<ctkPluginFrameworkFactory>(properties);
    m_framework = m_factory->getFramework();
    m_framework->init();
    m_framework->start();
    m_context = m_framework->getPluginContext();
}

PluginRunner::~PluginRunner()
{
    Stop();
    try {
        m_framework->stop();
        m_framework->waitForStop(5000);
    } catch (const std::exception& error) {
        qWarning() << "cannot stop the plugin framework:" << error.what();
    }
}

void PluginRunner::Register(const char* interfaceName, QObject* service)
{
    m_context->registerService(QStringList(QString::fromLatin1(interfaceName)), service);
}

VTBaseInterface* PluginRunner::Start(const QString& pluginFile, QString* error)
{
    try {
        m_plugin = m_context->installPlugin(QUrl::fromLocalFile(pluginFile));
        m_plugin->start(ctkPlugin::START_TRANSIENT);
    } catch (const std::exception& failure) {
        *error = QString::fromUtf8(failure.what());
        return nullptr;
    }
    VTBaseInterface* service = FindService();
    if (!service) {
        *error = QStringLiteral("the plugin registers no service");
        return nullptr;
    }
    const int status
        = service->Initialize({{QStringLiteral("plugin_context"), QVariant::fromValue(m_context)}});
    if (status == 0)
        return service;
    *error = QStringLiteral("the plugin's service failed to initialise (status %1)").arg(status);
    return nullptr;
}

void PluginRunner::Stop()
{
    if (!m_plugin)
        return;
    if (VTBaseInterface* service = FindService())
        service->Uninitialize();
    try {
        m_plugin->stop();
    } catch (const std::exception& error) {
        qWarning() << "cannot stop the plugin:" << error.what();
    }
    m_plugin.reset();
}

VTBaseInterface* PluginRunner::FindService() const
{
    const ctkServiceReference reference = m_context->getServiceReference(QStringLiteral("VTBaseInterface"));
    return reference ? qobject_cast<VTBaseInterface*>(m_context->getService(reference)) : nullptr;
}
