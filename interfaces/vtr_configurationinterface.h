#pragma once

#include "vtr_baseinterface.h"

#include <QObject>
#include <QString>

/// The configuration dialog, the finish sound and the client's version.
class VTConfigurationInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;

    virtual QString GetVersion() = 0;

public slots:
    virtual void ShowConf() = 0;

    /// Says audibly that a download has finished.
    virtual void Finish(QString strFile) = 0;
};

Q_DECLARE_INTERFACE(VTConfigurationInterface, "com.vtr.configuration")
