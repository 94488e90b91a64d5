#pragma once

#include "ctkDictionary.h"

#include <QList>
#include <QPointer>
#include <QSharedPointer>
#include <QStringList>

class ctkPlugin;

/// One registered service, shared by the registry, the references and the registration.
struct ServiceEntry
{
    qlonglong id;
    int ranking;
    const ctkPlugin* owner;
    QStringList names;
    QPointer<QObject> object;
    bool registered = true;
    QHash<const ctkPlugin*, int> uses;

    /// Whether the service is registered and its object exists; the registrant may destroy it without unregistering.
    bool IsLive() const { return registered && object; }
    bool ComesBefore(const ServiceEntry& other) const;
    void Withdraw();
};

/// The services of one framework, sorted as `ctkPluginContext::getServiceReferences` returns them.
class ServiceRegistry
{
public:
    /// Throws `ctkInvalidArgumentException` as `ctkPluginContext::registerService` does.
    QSharedPointer<ServiceEntry> Add(
        const ctkPlugin* owner, const QStringList& names, QObject* object, const ctkDictionary& properties);

    QList<QSharedPointer<ServiceEntry>> Find(const QString& name) const;

    /// Withdraws the services of a plugin and ends its use of others' services.
    void Release(const ctkPlugin* plugin);

private:
    QList<QSharedPointer<ServiceEntry>> m_entries;
    qlonglong m_nextId = 1;
};
