#pragma once

#include "ctkPluginFrameworkExport.h"

#include <QSharedPointer>

struct ServiceEntry;

/// A handle of a registered service; a value, cheap to copy, that keeps the service neither alive nor registered.
class CTK_PLUGINFW_EXPORT ctkServiceReference
{
public:
    /// Refers to no service.
    ctkServiceReference() = default;

    /// Whether the service is still registered and its object still there.
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
