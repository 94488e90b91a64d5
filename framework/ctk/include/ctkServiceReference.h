#pragma once

#include "ctkPluginFrameworkExport.h"

#include <QSharedPointer>

struct ServiceEntry;

/// A handle to a registered service. It is cheap to copy and keeps the service neither alive nor registered.
class CTK_PLUGINFW_EXPORT ctkServiceReference
{
public:
    /// An empty reference.
    ctkServiceReference() = default;

    /// Whether the service is still registered and its object still exists.
    operator bool() const;

private:
    friend class ctkPluginContext;
    friend class ctkServiceRegistration;

    explicit ctkServiceReference(const QSharedPointer<ServiceEntry>& entry)
        : m_entry(entry)
    {
    }

    QSharedPointer<ServiceEntry> m_entry;
};
