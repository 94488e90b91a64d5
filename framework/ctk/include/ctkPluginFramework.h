#pragma once

#include "ctkPlugin.h"

/// The framework itself, which is a plugin too and hosts the others. `ctkPluginFrameworkFactory` makes it.
class CTK_PLUGINFW_EXPORT ctkPluginFramework : public ctkPlugin
{
public:
    /// Stops the framework and releases its plugins.
    ~ctkPluginFramework() override;

    /// Makes the context valid, so that services can be registered before the start. A second call does nothing.
    void init();

    /// Calls `init` if nobody has. Does not start any plugin.
    void start(const StartOptions& options = StartOptions()) override;

    /// Stops the plugins, the last one started first, then withdraws the framework's own services. The exception of an
    /// activator is logged, and the other plugins are stopped all the same.
    void stop(const StopOptions& options = StopOptions()) override;

    /// Returns at once, because `stop` returns only when everything is stopped.
    void waitForStop(unsigned long timeout);

private:
    friend class ctkPluginFrameworkFactory;

    explicit ctkPluginFramework(const QSharedPointer<FrameworkCore>& core);
};
