#pragma once

#include "vtr_baseinterface.h"

#include <QObject>
#include <QString>
#include <QVariant>

/// The host's settings store. Keys have the form "group/key", for example "vtr.web/currentserver".
class VTSettingsInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;

    virtual QVariant Value(const QString& strKey, const QVariant& varDefault) = 0;
    virtual void SetValue(const QString& strKey, const QVariant& varValue) = 0;

signals:
    /// The user has changed a value, for example in the configuration dialog.
    void SettingsUpdated();
};

Q_DECLARE_INTERFACE(VTSettingsInterface, "com.vtr.settings")
