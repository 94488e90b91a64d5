#include "plugin/vtr_qsclient_plugin.h"

#include "plugin/vtr_qsclient.h"

#include <ctkPluginContext.h>

#include <QCoreApplication>
#include <QOpenGLContext>
#include <QThread>

namespace {

/// Creates the thread storage in which Qt looks up the OpenGL context of a window that it deletes. When the framework
/// stops, CTK destroys a thread storage of its own, and Qt reuses its slot, with the old value still in it, for the
/// next storage created. If that were this one, deleting a window would crash.
void PrepareToDeleteWindows()
{
#ifndef QT_NO_OPENGL
    QOpenGLContext::currentContext();
#endif
}

} // namespace

VTQsClientPlugin::VTQsClientPlugin() = default;

VTQsClientPlugin::~VTQsClientPlugin()
{
    // A host that ends without a stop has this object deleted after its application; widgets cannot be deleted then.
    if (!QCoreApplication::instance())
        m_pService.release(); // NOLINT(bugprone-unused-return-value)
}

void VTQsClientPlugin::start(ctkPluginContext* context)
{
    // Both use the host's services: the earlier object must be done with them before the new one begins.
    delete m_pStoppedService.data();
    PrepareToDeleteWindows();
    m_pService = std::make_unique<VTQsClient>();
    // The registration lives until the framework withdraws it when the plugin stops.
    context->registerService(
        QStringList {QStringLiteral("VTBaseInterface")}, m_pService.get(), ctkDictionary());
}

void VTQsClientPlugin::stop(ctkPluginContext* /*context*/)
{
    if (m_pService && m_pService->thread() != QThread::currentThread()) {
        // The GUI thread may be waiting for this call, so this does not wait for the GUI thread.
        m_pStoppedService = m_pService.release();
        m_pStoppedService->deleteLater();
    }
    m_pService.reset();
}
