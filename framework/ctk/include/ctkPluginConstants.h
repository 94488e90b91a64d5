#pragma once

#include "ctkPluginFrameworkExport.h"

#include <QString>

/// Names of well-known properties.
struct CTK_PLUGINFW_EXPORT ctkPluginConstants
{
    /// Of a service, set at its registration: an int; references of a higher ranking come first. Default 0.
    static const QString SERVICE_RANKING;
};
