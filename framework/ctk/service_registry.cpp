#include "framework/ctk/service_registry.h"

#include "ctkException.h"
#include "ctkPluginConstants.h"
#include "ctkServiceReference.h"
#include "ctkServiceRegistration.h"

#include <algorithm>

namespace {

void CheckNames(const QStringList& names, const QObject* object)
{
    if (!object)
        throw ctkInvalidArgumentException(QStringLiteral("A service needs an object"));
    if (names.isEmpty())
        throw ctkInvalidArgumentException(QStringLiteral("A service needs at least one class name"));
    for (const QString& name : names) {
        if (name.isEmpty())
            throw ctkInvalidArgumentException(QStringLiteral("A class name of a service is empty"));
        if (!object->inherits(name.toUtf8().constData())) {
            throw ctkInvalidArgumentException(
                QStringLiteral("The service object of class %1 does not inherit %2")
                    .arg(QLatin1String(object->metaObject()->className()), name));
        }
    }
}

} // namespace

bool ServiceEntry::ComesBefore(const ServiceEntry& other) const
{
    return ranking != other.ranking ? ranking > other.ranking : id < other.id;
}

void ServiceEntry::Withdraw()
{
    registered = false;
    uses.clear();
}

QSharedPointer<ServiceEntry> ServiceRegistry::Add(
    const ctkPlugin* owner, const QStringList& names, QObject* object, const ctkDictionary& properties)
{
    CheckNames(names, object);
    const auto isGone = [](const QSharedPointer<ServiceEntry>& entry) { return !entry->IsLive(); };
    m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), isGone), m_entries.end());

    const auto entry = QSharedPointer<ServiceEntry>::create();
    entry->id = m_nextId++;
    entry->ranking = properties.value(ctkPluginConstants::SERVICE_RANKING).toInt();
    entry->owner = owner;
    entry->names = names;
    entry->object = object;

    const auto comesBefore = [](const auto& one, const auto& other) { return one->ComesBefore(*other); };
    m_entries.insert(std::upper_bound(m_entries.begin(), m_entries.end(), entry, comesBefore), entry);
    return entry;
}

QList<QSharedPointer<ServiceEntry>> ServiceRegistry::Find(const QString& name) const
{
    QList<QSharedPointer<ServiceEntry>> found;
    for (const auto& entry : m_entries) {
        if (entry->IsLive() && entry->names.contains(name))
            found.append(entry);
    }
    return found;
}

void ServiceRegistry::Release(const ctkPlugin* plugin)
{
    for (const auto& entry : std::as_const(m_entries)) {
        if (entry->owner == plugin)
            entry->Withdraw();
        entry->uses.remove(plugin);
    }
}

ctkServiceReference::operator bool() const
{
    return m_entry && m_entry->IsLive();
}

ServiceEntry& ctkServiceRegistration::RegisteredEntry() const
{
    if (!m_entry || !m_entry->registered)
        throw ctkIllegalStateException(QStringLiteral("The service is no longer registered"));
    return *m_entry;
}

ctkServiceReference ctkServiceRegistration::getReference() const
{
    RegisteredEntry();
    return ctkServiceReference(m_entry);
}

void ctkServiceRegistration::unregister()
{
    RegisteredEntry().Withdraw();
}
