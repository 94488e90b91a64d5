#pragma once

#include "ctkPluginContext.h"

#include <QtPlugin>

/// What the root object of a plugin library implements.
class CTK_PLUGINFW_EXPORT ctkPluginActivator
{
public:
    virtual ~ctkPluginActivator() = default;

    /// Brings the plugin up. An exception stops the start and withdraws what was registered so far.
    virtual void start(ctkPluginContext* context) = 0;

    /// Takes the plugin down. Its services are withdrawn afterwards.
    virtual void stop(ctkPluginContext* context) = 0;
};

Q_DECLARE_INTERFACE(ctkPluginActivator, "org.commontk.pluginfw.pluginactivator")
