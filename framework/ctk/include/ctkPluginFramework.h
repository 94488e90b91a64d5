#pragma once

#include "ctkPlugin.h"

/// The framework itself, the plugin that hosts the others. Made by ctkPluginFrameworkFactory.
class CTK_PLUGINFW_EXPORT ctkPluginFramework : public ctkPlugin
{
public:
    /// Stops the framework and lets go of its plugins.
    ~ctkPluginFramework() override;

    /// Makes the context valid, so that services can be registered before the start. Does nothing once that is done.
    void init();

    /// Goes through init() where that was not done. No plugin is started by it.
    void start(const StartOptions& options = StartOptions()) override;

    /// Stops the plugins, the last one started first, then withdraws the framework's own services. An activator that
    /// throws is logged and holds up nothing.
    void stop(const StopOptions& options = StopOptions()) override;

    /// Returns at once: stop() has finished when it returns.
    void waitForStop(unsigned long timeout);

private:
    friend class ctkPluginFrameworkFactory;

    explicit ctkPluginFramework(const QSharedPointer<FrameworkCore>& core);
};
