#pragma once

#include "ctkServiceReference.h"

/// The registrant's handle of its service. Dropping it leaves the service registered.
class CTK_PLUGINFW_EXPORT ctkServiceRegistration
{
public:
    /// Stands for no registration.
    ctkServiceRegistration() = default;

    operator bool() const { return !m_entry.isNull(); }

    /// Throws ctkIllegalStateException once the service is withdrawn, and for an empty registration.
    ctkServiceReference getReference() const;

    /// Withdraws the service. Throws ctkIllegalStateException once it is withdrawn, and for an empty registration.
    void unregister();

private:
    friend class ctkPluginContext;

    explicit ctkServiceRegistration(const QSharedPointer<ServiceEntry>& entry)
        : m_entry(entry)
    {
    }

    ServiceEntry& RegisteredEntry() const;

    QSharedPointer<ServiceEntry> m_entry;
};
