#pragma once

#include "ctkDictionary.h"
#include "ctkPluginFrameworkExport.h"
#include "ctkServiceReference.h"
#include "ctkServiceRegistration.h"

#include <QList>
#include <QStringList>

class ctkPlugin;
class FrameworkCore;
class QIODevice;
class QObject;
class QUrl;

/// A plugin's way into the framework: its services and those of the others.
///
/// Owned by its plugin and valid while that is starting, active or stopping; afterwards every call throws
/// ctkIllegalStateException. For use on one thread.
class CTK_PLUGINFW_EXPORT ctkPluginContext
{
public:
    /// Loads the library behind a `file:` URL and reads its manifest. The same path again gives the plugin that is
    /// already there. Throws ctkPluginException for what is no plugin library, has no sound manifest or takes the
    /// symbolic name of another plugin; reading from a device is not supported.
    QSharedPointer<ctkPlugin> installPlugin(const QUrl& location, QIODevice* input = nullptr);

    /// Registers an object, which stays the caller's, under class or interface names. The service is withdrawn when
    /// this plugin stops. Throws ctkInvalidArgumentException for a null object, no or an empty name, and a name that
    /// the object does not inherit.
    ctkServiceRegistration registerService(
        const QStringList& classes, QObject* service, const ctkDictionary& properties = ctkDictionary());

    /// The reference that comes first under a name; empty where there is none.
    ctkServiceReference getServiceReference(const QString& name);

    /// All references under a name, the highest ranking first, then in the order of registration. Filters are not
    /// supported: throws ctkInvalidArgumentException for a filter that is not empty.
    QList<ctkServiceReference> getServiceReferences(const QString& name, const QString& filter = QString());

    /// The object of a service, still owned by its registrant; null once it is withdrawn or destroyed. Throws
    /// ctkInvalidArgumentException for an empty reference.
    QObject* getService(const ctkServiceReference& reference);

    /// Gives up one use of a service. Returns whether this plugin was using it.
    bool ungetService(const ctkServiceReference& reference);

private:
    friend class ctkPlugin;

    explicit ctkPluginContext(const ctkPlugin& plugin);
    Q_DISABLE_COPY(ctkPluginContext)

    FrameworkCore& ValidCore() const;

    const ctkPlugin& m_plugin;
};
