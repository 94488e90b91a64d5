#pragma once

#include <ctkPluginContext.h>

#include <QMetaType>
#include <QtPlugin>
#include <QVariantMap>

// Host and plugin put the same type under the parameter "plugin_context".
Q_DECLARE_METATYPE(ctkPluginContext*)

/// Life cycle of every service of the host family. All operations are called on the GUI thread.
///
/// All six return a status: 0 success, -1 failure, -3 not initialised, -4 the request's integer value is not 1.
/// They are entries 0 to 5 of the virtual table, so there is no virtual destructor: no service is deleted through this
/// type.
class VTBaseInterface
{
public:
    /// @param mapParameters the host's parameters; "plugin_context" holds the `ctkPluginContext*`.
    virtual int Initialize(const QVariantMap& mapParameters) = 0;
    virtual int Uninitialize() = 0;

    /// @param varResult receives the status (an int) that later requests pass back.
    virtual int Show(QVariant& varResult, const QVariantMap& mapParameters) = 0;
    virtual int Hide(const QVariant& varRequest) = 0;
    virtual int Activate(const QVariant& varRequest, const QVariantMap& mapParameters) = 0;
    virtual int Close(const QVariant& varRequest) = 0;

protected:
    ~VTBaseInterface() = default;
};

Q_DECLARE_INTERFACE(VTBaseInterface, "com.vtr.base")
