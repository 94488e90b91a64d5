#pragma once

#include "host/services/finish_sound.h"
#include "host/services/service_base.h"
#include "vtr_configurationinterface.h"

class ConfigurationDialog;

/// Opens the configuration dialog, plays the finish sound and knows the client's version.
class ConfigurationService : public ServiceBase<VTConfigurationInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTConfigurationInterface)

public:
    /// @param dialog must outlive this service.
    explicit ConfigurationService(ConfigurationDialog* dialog, QObject* parent = nullptr);

    /// Sets the account whose settings the dialog shows.
    void SetUserName(const QString& userName);

    QString GetVersion() override;

public slots:
    void ShowConf() override;

    /// Plays a chime, at most once per second.
    /// @param file the finished download; not used.
    void Finish(QString file) override;

private:
    ConfigurationDialog* m_dialog;
    FinishSound m_finishSound;
    QString m_userName;
};
