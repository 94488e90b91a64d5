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

/// A plugin's access to the framework: it registers services and finds those of other plugins.
///
/// The plugin owns its context, which is valid while the plugin is starting, active or stopping. Afterwards every call
/// throws `ctkIllegalStateException`. All calls must come from one thread.
class CTK_PLUGINFW_EXPORT ctkPluginContext
{
public:
    /// Loads the library at a `file:` URL and reads its manifest; returns the installed plugin if the path is installed
    /// already. Throws `ctkPluginException` when the file is not a plugin library, when its manifest is malformed, or
    /// when another plugin has its symbolic name. Reading from a device is not supported.
    QSharedPointer<ctkPlugin> installPlugin(const QUrl& location, QIODevice* input = nullptr);

    /// Registers an object, which the caller still owns, under class or interface names. The service is withdrawn when
    /// this plugin stops. Throws `ctkInvalidArgumentException` for a null object, for a missing or empty name, and for
    /// a name that the object does not inherit.
    ctkServiceRegistration registerService(
        const QStringList& classes, QObject* service, const ctkDictionary& properties = ctkDictionary());

    /// The first of `getServiceReferences`; empty when there is none.
    ctkServiceReference getServiceReference(const QString& name);

    /// All references under a name, those of the highest ranking first, then in the order of registration. Filters are
    /// not supported: a filter that is not empty throws `ctkInvalidArgumentException`.
    QList<ctkServiceReference> getServiceReferences(const QString& name, const QString& filter = QString());

    /// The object of a service, which its registrant owns; null once the service is withdrawn or its object destroyed.
    /// Throws `ctkInvalidArgumentException` for an empty reference.
    QObject* getService(const ctkServiceReference& reference);

    /// Ends one use of a service. @return whether this plugin was using it.
    bool ungetService(const ctkServiceReference& reference);

private:
    friend class ctkPlugin;

    explicit ctkPluginContext(const ctkPlugin& plugin);
    Q_DISABLE_COPY(ctkPluginContext)

    FrameworkCore& ValidCore() const;

    const ctkPlugin& m_plugin;
};
