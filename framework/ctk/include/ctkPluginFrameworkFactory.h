#pragma once

#include "ctkDictionary.h"
#include "ctkPluginFramework.h"

/// Creates one framework.
class CTK_PLUGINFW_EXPORT ctkPluginFrameworkFactory
{
public:
    /// An installed framework reads its settings from the properties; this one has no settings and ignores them.
    explicit ctkPluginFrameworkFactory(const ctkProperties& properties = ctkProperties());

    /// @return the same framework at every call. Keep the factory as long as the framework: an installed one needs it.
    QSharedPointer<ctkPluginFramework> getFramework() const { return m_framework; }

private:
    QSharedPointer<ctkPluginFramework> m_framework;
};
