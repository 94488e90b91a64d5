#pragma once

#include "ctkPluginFrameworkExport.h"

#include <QString>

/// Names of well-known properties.
struct CTK_PLUGINFW_EXPORT ctkPluginConstants
{
    /// A service property, an int that is set at the registration: services of a higher ranking come first. Default 0.
    static const QString SERVICE_RANKING;
};
