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

    /// @return the client's version as shown to the user.
    virtual QString GetVersion() = 0;

public slots:
    /// Opens the configuration dialog.
    virtual void ShowConf() = 0;

    /// Plays the sound for a finished download.
    /// @param strFile path of the downloaded file.
    virtual void Finish(QString strFile) = 0;
};

Q_DECLARE_INTERFACE(VTConfigurationInterface, "com.vtr.configuration")
