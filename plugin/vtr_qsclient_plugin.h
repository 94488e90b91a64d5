#pragma once

#include <ctkPluginActivator.h>

#include <QObject>
#include <QPointer>

#include <memory>

class VTQsClient;

/// Root object of the plugin and its activator: owns the one service object between start and stop.
class VTQsClientPlugin : public QObject, public ctkPluginActivator
{
    Q_OBJECT
    Q_INTERFACES(ctkPluginActivator)
    Q_PLUGIN_METADATA(IID "com.vtr.qsclient")

public:
    VTQsClientPlugin();
    ~VTQsClientPlugin() override;

    /// Creates the service object and registers it under "VTBaseInterface". The host initialises it later.
    /// Called on the GUI thread.
    void start(ctkPluginContext* context) override;

    /// Deletes the service object. Does nothing if not started. Called off the GUI thread (CTK stops a whole framework
    /// there), it leaves the deletion to the GUI thread's event loop.
    void stop(ctkPluginContext* context) override;

private:
    std::unique_ptr<VTQsClient> m_pService;
    /// A stopped service object that the GUI thread has not deleted yet.
    QPointer<VTQsClient> m_pStoppedService;
};
