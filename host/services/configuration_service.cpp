#include "host/services/configuration_service.h"

#include "host/ui/configuration_dialog.h"

ConfigurationService::ConfigurationService(ConfigurationDialog* dialog, QObject* parent)
    : ServiceBase<VTConfigurationInterface>(parent)
    , m_dialog(dialog)
{
}

void ConfigurationService::SetUserName(const QString& userName)
{
    m_userName = userName;
}

QString ConfigurationService::GetVersion()
{
    return QStringLiteral(QSCLIENT_VERSION);
}

void ConfigurationService::ShowConf()
{
    m_dialog->Run(m_userName);
}

void ConfigurationService::Finish(QString file)
{
    Q_UNUSED(file)
    m_finishSound.Play();
}
