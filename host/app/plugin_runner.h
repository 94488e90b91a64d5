#pragma once

#include <QSharedPointer>
#include <QString>

#include <memory>

class ctkPlugin;
class ctkPluginContext;
class ctkPluginFramework;
class ctkPluginFrameworkFactory;
class QObject;
class VTBaseInterface;

/// Runs the plugin framework with the one plugin in it.
class PluginRunner
{
public:
    /// Starts the framework; throws a std::exception when that fails.
    /// @param storageFolder holds the framework's cache of plugins.
    explicit PluginRunner(const QString& storageFolder);

    /// Stops the plugin, then the framework.
    ~PluginRunner();

    Q_DISABLE_COPY(PluginRunner)

    /// Registers a service under the name of its interface. The caller keeps ownership; the service must outlive the runner.
    void Register(const char* interfaceName, QObject* service);

    /// Loads and starts the plugin and initialises its service.
    /// @return the plugin's service, valid until Stop; null, with the reason in `error`, when there is none or it fails.
    VTBaseInterface* Start(const QString& pluginFile, QString* error);

    /// Uninitialises the service and stops the plugin. May be called again.
    void Stop();

private:
    VTBaseInterface* FindService() const;

    /// With an installed CTK the factory owns the framework, so it is declared first and destroyed last.
    std::unique_ptr<ctkPluginFrameworkFactory> m_factory;
    QSharedPointer<ctkPluginFramework> m_framework;
    QSharedPointer<ctkPlugin> m_plugin;
    ctkPluginContext* m_context = nullptr;
};
