#include "mainwindow/vtr_accountsettings.h"

#include "common/vtr_connections.h"
#include "common/vtr_services.h"
#include "mainwindow/vtr_session.h"

namespace {

void SwitchConnection(bool bOn, const VTConnection& connection)
{
    if (bOn)
        VTConnect({connection});
    else if (connection.pSender && connection.pReceiver)
        QObject::disconnect(connection.pSender, connection.szSignal, connection.pReceiver, connection.szSlot);
}

} // namespace

void VTAccountSettings::Load()
{
    if (m_session.strUserName.isEmpty())
        return;
    m_bAutoDownload = Read(QStringLiteral("autodownload"));
    SwitchConnection(Read(QStringLiteral("popupfinish")),
        {m_services.pRenderCore, SIGNAL(DownloadFinish(QString)), m_pWindow, SLOT(PopupFinish(QString))});
    SwitchConnection(Read(QStringLiteral("soundfinish")),
        {m_services.pRenderCore, SIGNAL(DownloadFinish(QString)), m_services.pConfiguration,
            SLOT(Finish(QString))});
    m_bOffersArguments = Read(QStringLiteral("setargument"));
}

bool VTAccountSettings::Read(const QString& strName) const
{
    const QString strKey = QStringLiteral("vtr.account.%1/%2").arg(m_session.strUserName, strName);
    return m_services.pSettings && m_services.pSettings->Value(strKey, 0).toBool();
}
