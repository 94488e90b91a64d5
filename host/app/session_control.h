#pragma once

#include "host/farmclient/proxy_login.h"
#include "host/ui/sign_in_window.h"

#include <QAction>
#include <QObject>
#include <QString>
#include <QVariantMap>

class CommunicationService;
class UiLoaderService;
class VTMessagboxInterface;
class VTSettingsInterface;
struct FarmFault;

/// Signs the user in and out and shows the window that belongs to the session: the sign-in window or the main window.
class SessionControl : public QObject
{
    Q_OBJECT

public:
    /// Create it after the plugin has started, so that the main window receives each answer first.
    SessionControl(UiLoaderService* loader, CommunicationService* communication,
        VTSettingsInterface* settings, VTMessagboxInterface* messageBox, QObject* parent = nullptr);

    bool IsSignedIn() const { return m_signedIn; }
    QWidget* SignInForm() { return m_window.Form(); }

    /// @return whether the user can sign in now.
    bool IsReady() const { return m_window.IsReady(); }

    /// @param server shown in the sign-in window; empty for the farm on this computer.
    void SetServer(const QString& server) { m_window.SetServer(server); }

    /// Tells the sign-in window the state of the farm on this computer.
    /// @param reason why it does not start, with or without a full stop; empty for none.
    void SetFarm(SignInWindow::Farm farm, const QString& reason = {});

    /// Sets the account for SignInAutomatically(), which clears the password after use.
    void SetAccount(const QString& name, const QString& password);

    /// Signs in with the account that was set, or shows the sign-in window if there is none.
    void SignInAutomatically();

    void ShowSignIn();

    /// Shows a reason in the sign-in window; ignored while somebody is signed in.
    void ShowFailure(const SignInWindow::Words& text);

    /// Brings the main window to the front, or the sign-in window while nobody is signed in.
    void ShowWindow();

signals:
    /// @param userName the "username" of the answer, which identifies the account.
    /// @param token identifies the session; must never be logged.
    void SignedIn(const QString& userName, const QString& token);
    void SignedOut();
    /// The user asks to start the farm on this computer once more.
    void StartRequested();
    /// A proxy has asked for a name and a password, which must never be logged.
    void ProxyLoginGiven(const ProxyLogin& login);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void SignIn(const QString& name, const QString& password);
    bool MaySendPassword();
    bool AnswerProxy();
    void HandleSignInAnswer(int code, const QVariantMap& answer);
    static QString FailureText(int code, const FarmFault& fault, const QString& message);
    void HandleSignOutAnswer();
    void HandleExpiry();
    static void RequestSignOut();
    void ConnectForm();
    void AddMenuEntries();
    void TranslateMenuEntries();

    UiLoaderService* m_loader;
    CommunicationService* m_communication;
    VTSettingsInterface* m_settings;
    VTMessagboxInterface* m_messageBox;
    SignInWindow m_window;
    QAction m_open; // entries of the tray's menu
    QAction m_signOut;
    QString m_name;
    QString m_password;
    QString m_triedName; // name and password of the sign-in under way
    QString m_triedPassword;
    bool m_signedIn = false;
    bool m_expired = false;
};
