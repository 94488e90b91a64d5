#include "plugin/vtr_qsclient_plugin.h"

#include "plugin/vtr_qsclient.h"

#include <ctkPluginContext.h>

#include <QCoreApplication>

VTQsClientPlugin::VTQsClientPlugin() = default;

VTQsClientPlugin::~VTQsClientPlugin()
{
    // A host that ends without a stop has this object deleted after its application; widgets cannot be deleted then.
    if (!QCoreApplication::instance())
        m_pService.release(); // NOLINT(bugprone-unused-return-value)
}

void VTQsClientPlugin::start(ctkPluginContext* context)
{
    m_pService = std::make_unique<VTQsClient>();
    // The registration lives until the framework withdraws it when the plugin stops.
    context->registerService(
        QStringList {QStringLiteral("VTBaseInterface")}, m_pService.get(), ctkDictionary());
}

void VTQsClientPlugin::stop(ctkPluginContext* /*context*/)
{
    m_pService.reset();
}
