#pragma once

#include "host/ui/sign_in_window.h"

#include <QAction>
#include <QObject>
#include <QString>
#include <QVariantMap>

class CommunicationService;
class UiLoaderService;
class VTSettingsInterface;

/// Who is signed in, and which window shows for it: the sign-in window or the main one.
class SessionControl : public QObject
{
    Q_OBJECT

public:
    /// Build it after the plugin has started, so that the main window hears of each answer first.
    SessionControl(UiLoaderService* loader, CommunicationService* communication,
        VTSettingsInterface* settings, QObject* parent = nullptr);

    bool IsSignedIn() const { return m_signedIn; }
    QWidget* SignInForm() { return m_window.Form(); }

    /// The account that SignInAutomatically uses. The password is kept in memory until then.
    void SetAccount(const QString& name, const QString& password);

    /// Signs in with the account that was set; without one it shows the sign-in window.
    void SignInAutomatically();

    void ShowSignIn();

    /// Shows why nobody can sign in now.
    void ShowFailure(const QString& message);

    /// Brings the window that is right for the session to the front.
    void ComeForward();

signals:
    /// @param userName the account's own name.
    /// @param token of the session, never to be logged.
    void SignedIn(const QString& userName, const QString& token);
    void SignedOut();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void SignIn(const QString& name, const QString& password);
    void HandleSignIn(int code, const QVariantMap& answer);
    static QString FailureText(int code, const QString& message);
    void HandleSignOut();
    void HandleExpiry();
    void AddMenuEntry();
    void TranslateMenuEntry();

    UiLoaderService* m_loader;
    CommunicationService* m_communication;
    VTSettingsInterface* m_settings;
    SignInWindow m_window;
    QAction m_signOut;
    QString m_name;
    QString m_password;
    bool m_signedIn = false;
    bool m_expired = false;
};
