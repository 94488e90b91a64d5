#pragma once

#include "ctkDictionary.h"
#include "ctkPluginFramework.h"

/// Makes one framework, which lives as long as someone holds it.
class CTK_PLUGINFW_EXPORT ctkPluginFrameworkFactory
{
public:
    /// The properties steer an installed framework; the embedded one has nothing to be steered.
    explicit ctkPluginFrameworkFactory(const ctkProperties& properties = ctkProperties());

    /// The same framework at every call.
    QSharedPointer<ctkPluginFramework> getFramework() const { return m_framework; }

private:
    QSharedPointer<ctkPluginFramework> m_framework;
};
