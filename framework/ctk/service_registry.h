#pragma once

#include "ctkDictionary.h"

#include <QList>
#include <QPointer>
#include <QSharedPointer>
#include <QStringList>

class ctkPlugin;

/// One registered service; shared by the registry, the references and the registration.
struct ServiceEntry
{
    qlonglong id;
    int ranking;
    const ctkPlugin* owner;
    QStringList names;
    QPointer<QObject> object;
    bool registered = true;
    QHash<const ctkPlugin*, int> uses;

    /// Registered, and the object not destroyed behind the registry's back.
    bool IsLive() const { return registered && object; }
    bool ComesBefore(const ServiceEntry& other) const;
    void Withdraw();
};

/// The services of one framework, in the order in which references are handed out.
class ServiceRegistry
{
public:
    /// Throws ctkInvalidArgumentException; see ctkPluginContext::registerService().
    QSharedPointer<ServiceEntry> Add(
        const ctkPlugin* owner, const QStringList& names, QObject* object, const ctkDictionary& properties);

    QList<QSharedPointer<ServiceEntry>> Find(const QString& name) const;

    /// Withdraws what a plugin registered and ends its uses of the others.
    void Release(const ctkPlugin* plugin);

private:
    QList<QSharedPointer<ServiceEntry>> m_entries;
    qlonglong m_nextId = 1;
};
