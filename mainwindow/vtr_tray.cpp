#include "mainwindow/vtr_tray.h"

#include "common/vtr_ids.h"
#include "common/vtr_services.h"
#include "common/vtr_showform.h"
#include "common/vtr_skin.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_session.h"

namespace {

constexpr int FinishedNoticeTime = 10000; // ms

const QString& TrayMenu()
{
    static const QString strName = QStringLiteral("menuTray");
    return strName;
}

} // namespace

VTTray::VTTray(QWidget* pWindow, const VTMainForm& form, const VTServices& services, const VTSession& session)
    : m_form(form)
    , m_services(services)
    , m_session(session)
    , m_pIcon(std::make_unique<QSystemTrayIcon>(pWindow))
    , m_pQuit(std::make_unique<QAction>())
    , m_pServer(std::make_unique<QAction>())
{
    if (m_services.pUiLoader)
        m_pMenu = m_services.pUiLoader->GetMenu(TrayMenu(), QString());
    if (!m_pMenu) {
        m_pOwnMenu = std::make_unique<QMenu>();
        m_pMenu = m_pOwnMenu.get();
    }
    AddSubMenu(QStringLiteral("meuSkin"));
    AddSubMenu(QStringLiteral("meuLanguage"));
    m_pMenu->addAction(m_pQuit.get());
    m_pIcon->setContextMenu(m_pMenu);
    ApplySkin(m_services.Skin());
}

void VTTray::AddSubMenu(const QString& strName) const
{
    QMenu* pSubMenu = m_services.pUiLoader ? m_services.pUiLoader->GetMenu(TrayMenu(), strName) : nullptr;
    if (pSubMenu && pSubMenu != m_pMenu && !m_pMenu->actions().contains(pSubMenu->menuAction()))
        m_pMenu->addMenu(pSubMenu);
}

void VTTray::ApplySkin(const QString& strSkin) const
{
    m_pIcon->setIcon(VTSkin::MainIcon(strSkin));
}

void VTTray::Retranslate() const
{
    m_pIcon->setToolTip(tr("Quillstar Client"));
    m_pQuit->setText(tr("Quit"));
    if (!m_session.strServer.isEmpty())
        m_pServer->setText(tr(qUtf8Printable(m_session.strServer)));
}

void VTTray::ShowServer(const QString& strServer)
{
    if (m_pMenu && !m_pMenu->actions().contains(m_pServer.get()))
        m_pMenu->insertAction(m_pQuit.get(), m_pServer.get());
    m_pServer->setText(tr(qUtf8Printable(strServer)));
}

void VTTray::Activate(QSystemTrayIcon::ActivationReason reason) const
{
    if (reason != QSystemTrayIcon::DoubleClick)
        return;
    if (m_session.bSignedIn) {
        if (VTShowForm(m_form.pForm))
            m_form.pForm->activateWindow();
    } else if (m_services.pUiLoader) {
        m_services.pUiLoader->OpenWindow(VTIds::SignInWindow);
    }
}

void VTTray::ShowFinished(const QString& strFile) const
{
    m_pIcon->showMessage(QStringLiteral("Download tips"), QString(strFile + QLatin1String(" finish!")),
        QSystemTrayIcon::Information, FinishedNoticeTime);
}
