#include "mainwindow/vtr_accountsettings.h"

#include "common/vtr_services.h"
#include "mainwindow/vtr_session.h"

void VTAccountSettings::Load()
{
    if (m_session.strUserName.isEmpty())
        return;
    m_bAutoDownload = Read(QStringLiteral("autodownload"));
    const bool bBalloon = Read(QStringLiteral("popupfinish"));
    const bool bSound = Read(QStringLiteral("soundfinish"));
    m_bOffersArguments = Read(QStringLiteral("setargument"));

    Disconnect();
    const QObject* pRenderCore = m_services.pRenderCore;
    if (bBalloon)
        m_balloon.Add(
            {{pRenderCore, SIGNAL(DownloadFinish(QString)), m_pWindow, SLOT(PopupFinish(QString))}});
    if (bSound)
        m_sound.Add({{pRenderCore, SIGNAL(DownloadFinish(QString)), m_services.pConfiguration,
            SLOT(Finish(QString))}});
}

void VTAccountSettings::Disconnect()
{
    m_balloon.Clear();
    m_sound.Clear();
}

bool VTAccountSettings::Read(const QString& strName) const
{
    const QString strKey = QStringLiteral("vtr.account.%1/%2").arg(m_session.strUserName, strName);
    return m_services.pSettings && m_services.pSettings->Value(strKey, 0).toBool();
}
