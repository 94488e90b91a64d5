#pragma once

#include "ctkPluginContext.h"

#include <QtPlugin>

/// The interface of the root object of a plugin library.
class CTK_PLUGINFW_EXPORT ctkPluginActivator
{
public:
    virtual ~ctkPluginActivator() = default;

    /// Starts the plugin. An exception makes the start fail and withdraws the services registered so far.
    virtual void start(ctkPluginContext* context) = 0;

    /// Stops the plugin. Its services are withdrawn afterwards.
    virtual void stop(ctkPluginContext* context) = 0;
};

Q_DECLARE_INTERFACE(ctkPluginActivator, "org.commontk.pluginfw.pluginactivator")
