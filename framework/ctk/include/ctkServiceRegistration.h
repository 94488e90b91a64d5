#pragma once

#include "ctkServiceReference.h"

/// The registrant's handle to its service. The service stays registered when the handle is dropped.
class CTK_PLUGINFW_EXPORT ctkServiceRegistration
{
public:
    /// An empty registration.
    ctkServiceRegistration() = default;

    operator bool() const { return !m_entry.isNull(); }

    /// Throws `ctkIllegalStateException` when the service is withdrawn or the registration empty.
    ctkServiceReference getReference() const;

    /// Withdraws the service. Throws `ctkIllegalStateException` when that is done already or the registration empty.
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
