#include "plugin/vtr_qsclient_plugin.h"

#include "plugin/vtr_qsclient.h"

#include <ctkPluginContext.h>

#include <QCoreApplication>
#include <QOpenGLContext>
#include <QThread>

namespace {

/// Creates the thread storage in which Qt looks up the OpenGL context when it deletes a window. A stopping CTK destroys
/// a thread storage of its own; the next storage created reuses its slot, stale value included. If that were Qt's, the
/// deletion would crash, so Qt's is created first.
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
    // If the host exits without stopping the plugin, this object dies after the QApplication, when widgets can no longer
    // be deleted.
    if (!QCoreApplication::instance())
        m_pService.release(); // NOLINT(bugprone-unused-return-value)
}

void VTQsClientPlugin::start(ctkPluginContext* context)
{
    // A service object left by an earlier stop still uses the host's services, so it goes before the new one starts.
    if (m_pStoppedService && m_pStoppedService->IsBusy())
        m_pStoppedService->DeleteWhenIdle();
    else
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
    } else if (m_pService && m_pService->IsBusy()) {
        m_pService.release()->DeleteWhenIdle();
    }
    m_pService.reset();
}
