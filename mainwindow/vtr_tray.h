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

/// The tray icon with its menu. The menu comes from the loader; it gets a quit entry, and at sign-in a server entry.
class VTTray
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// @param pWindow parent of the icon; all must outlive this object.
    VTTray(QWidget* pWindow, const VTMainForm& form, const VTServices& services, const VTSession& session);

    QSystemTrayIcon* Icon() const { return m_pIcon.get(); }
    QAction* QuitAction() const { return m_pQuit.get(); }

    void Show() const { m_pIcon->show(); }
    void Hide() const { m_pIcon->hide(); }
    void ApplySkin(const QString& strSkin) const;
    void Retranslate() const;

    /// Shows the server's name in one entry in front of the quit entry, however often it is called.
    void ShowServer(const QString& strServer);

    /// On a double click, brings the main form to the front, or the sign-in window while nobody is signed in.
    void Activate(QSystemTrayIcon::ActivationReason reason) const;

    /// Shows a balloon for a downloaded file.
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
