#pragma once

#include "service_base.h"
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

    /// The system's bell: heard wherever the desktop has one, and silent elsewhere.
    void Finish(QString file) override;

private:
    ConfigurationDialog* m_dialog;
    QString m_userName;
};
