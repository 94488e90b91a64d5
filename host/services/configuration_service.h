#pragma once

#include "host/services/finish_sound.h"
#include "host/services/service_base.h"
#include "vtr_configurationinterface.h"

class ConfigurationDialog;

/// The configuration dialog, the finish sound and the client's version.
class ConfigurationService : public ServiceBase<VTConfigurationInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTConfigurationInterface)

public:
    /// @param dialog must outlive this service.
    explicit ConfigurationService(ConfigurationDialog* dialog, QObject* parent = nullptr);

    /// The account whose switches the dialog shows.
    void SetUserName(const QString& userName);

    QString GetVersion() override;

public slots:
    void ShowConf() override;

    /// Plays a chime, once a second at most.
    void Finish(QString file) override;

private:
    ConfigurationDialog* m_dialog;
    FinishSound m_finishSound;
    QString m_userName;
};
