#pragma once

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QPointer>
#include <QSystemTrayIcon>

#include <memory>

struct VTMainForm;
struct VTSession;
struct VTServices;

/// The tray icon with its menu, which is the loader's and gets a quit entry, and a server entry at sign-in.
class VTTray
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// @param pWindow parent of the icon; all must outlive this object.
    VTTray(QWidget* pWindow, const VTMainForm& form, const VTServices& services, const VTSession& session);

    QSystemTrayIcon* Icon() const { return m_pIcon.get(); }
    QAction* QuitAction() const { return m_pQuit.get(); }

    void Show() const { m_pIcon->show(); }
    void ApplySkin(const QString& strSkin) const;
    void Retranslate() const;

    /// Puts the server's name in front of the quit entry; there is one such entry however often this runs.
    void ShowServer(const QString& strServer);

    /// A double click brings the main form forward, or the sign-in window while nobody is signed in.
    void Activate(QSystemTrayIcon::ActivationReason reason) const;

    /// Says that a file was downloaded.
    void ShowFinished(const QString& strFile) const;

private:
    void AddSubMenu(const QString& strName) const;

    const VTMainForm& m_form;
    const VTServices& m_services;
    const VTSession& m_session;
    std::unique_ptr<QSystemTrayIcon> m_pIcon;
    std::unique_ptr<QAction> m_pQuit;
    std::unique_ptr<QAction> m_pServer;
    std::unique_ptr<QMenu> m_pOwnMenu; ///< used where the loader has no tray menu
    QPointer<QMenu> m_pMenu;
};
