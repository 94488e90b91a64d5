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

/// The plugin framework and the one plugin that runs in it.
class PluginRunner
{
public:
    /// Starts the framework. Throws what the framework throws (a std::exception).
    /// @param storageFolder where an installed framework keeps its cache.
    explicit PluginRunner(const QString& storageFolder);

    /// Ends what Start began and the framework.
    ~PluginRunner();

    Q_DISABLE_COPY(PluginRunner)

    /// Registers a service under its interface's name. The object stays the caller's and must outlive this one.
    void Register(const char* interfaceName, QObject* service);

    /// Loads and starts the plugin and initialises its service.
    /// @return the plugin's service, valid until Stop; null where it offers none or the service refuses, with the
    ///         reason in error.
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
