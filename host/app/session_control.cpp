#include "host/app/session_control.h"

#include "host/farmclient/sentences.h"
#include "host/mainform/main_form.h"
#include "host/services/communication_service.h"
#include "host/services/ui_loader_service.h"
#include "host/settings/setting_keys.h"
#include "host/ui/consent.h"
#include "host/ui/login_prompt.h"

#include <QCoreApplication>
#include <QEvent>
#include <QHostAddress>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QWidget>

namespace {

/// @return whether a password for the server would cross a network unencrypted.
bool IsReadableOnTheWay(const QUrl& server)
{
    const QString host = server.host();
    const bool isHere = host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
    return server.scheme() == QLatin1String("http") && !isHere;
}

QString SignInKey()
{
    return QStringLiteral("com.vtr.authclient");
}

} // namespace

SessionControl::SessionControl(UiLoaderService* loader, CommunicationService* communication,
    VTSettingsInterface* settings, VTMessagboxInterface* messageBox, QObject* parent)
    : QObject(parent)
    , m_loader(loader)
    , m_communication(communication)
    , m_settings(settings)
    , m_messageBox(messageBox)
    , m_window(loader, nullptr)
{
    m_loader->RegisterWindow(SignInKey(), m_window.Form());
    m_window.Form()->installEventFilter(this);
    m_window.SetName(m_settings->Value(SettingKeys::LastName, {}).toString());
    connect(&m_window, &SignInWindow::SignInRequested, this, &SessionControl::SignIn);
    connect(&m_window, &SignInWindow::StartRequested, this, &SessionControl::StartRequested);
    connect(communication, &CommunicationService::SignInResponse, this, &SessionControl::HandleSignInAnswer);
    connect(
        communication, &CommunicationService::SignOutResponse, this, &SessionControl::HandleSignOutAnswer);
    connect(communication, &CommunicationService::SessionExpired, this, &SessionControl::HandleExpiry);
    AddMenuEntries();
}

void SessionControl::SetAccount(const QString& name, const QString& password)
{
    m_name = name;
    m_password = password;
    m_window.SetName(name);
}

void SessionControl::SignInAutomatically()
{
    if (m_password.isEmpty()) {
        ShowSignIn();
        return;
    }
    ShowSignIn();
    SignIn(m_name, m_password);
    m_password.clear();
}

void SessionControl::ShowSignIn()
{
    if (!m_signedIn)
        m_loader->OpenWindow(SignInKey());
}

void SessionControl::ShowFailure(const SignInWindow::Words& text)
{
    if (m_signedIn)
        return;
    ShowSignIn();
    m_window.SetBusy(false);
    m_window.ShowFailure(text);
}

void SessionControl::SetFarm(SignInWindow::Farm farm, const QString& reason)
{
    m_window.SetFarm(farm, Sentence(reason));
}

void SessionControl::ShowWindow()
{
    m_loader->OpenWindow(m_signedIn ? QStringLiteral("com.vtr.qsclient") : SignInKey());
}

bool SessionControl::eventFilter(QObject* watched, QEvent* event)
{
    // Without a tray icon, closing the last window would leave no way to get it back.
    if (watched == m_window.Form() && event->type() == QEvent::Close && !m_signedIn
        && !QSystemTrayIcon::isSystemTrayAvailable())
        QCoreApplication::quit();
    return QObject::eventFilter(watched, event);
}

void SessionControl::SignIn(const QString& name, const QString& password)
{
    m_window.SetBusy(true);
    const QPointer<SessionControl> self = this;
    const bool isAllowed = MaySendPassword();
    if (!self)
        return;
    if (!isAllowed) {
        m_window.SetBusy(false);
        return;
    }
    m_triedName = name;
    m_triedPassword = password;
    m_communication->SignIn(name, password);
}

/// Asks, once per server, before a password travels unencrypted to another machine.
bool SessionControl::MaySendPassword()
{
    const QUrl server = m_communication->ServerUrl();
    if (!IsReadableOnTheWay(server))
        return true;
    const QString name = server.toString();
    QStringList agreed = m_settings->Value(SettingKeys::PlainServers, {}).toStringList();
    if (agreed.contains(name))
        return true;
    ShowSignIn();
    const QPointer<SessionControl> self = this;
    const bool agrees = AskForConsent(m_messageBox, m_loader,
        {tr("Sign in"),
            tr("The connection to %1 is not encrypted, so others on the network can read your password. Send "
               "it anyway?")
                .arg(name),
            tr("Send")});
    // The server may have changed during the question.
    if (!self || !agrees || m_communication->ServerUrl() != server)
        return false;
    agreed.append(name);
    m_settings->SetValue(SettingKeys::PlainServers, agreed);
    return true;
}

/// Asks for the proxy's name and password, and signs in again.
/// @return false when the user cancelled.
bool SessionControl::AnswerProxy()
{
    ShowSignIn();
    const QPointer<SessionControl> self = this;
    const QUrl server = m_communication->ServerUrl();
    const TypedLogin login = AskForLogin(m_window.Form(), tr("Sign in"),
        tr("The proxy %1 asks for a name and a password.").arg(m_communication->Proxy()));
    if (!self || !login.isGiven || m_communication->ServerUrl() != server)
        return false;
    m_communication->SetProxyLogin({login.name, login.password});
    emit ProxyLoginGiven({login.name, login.password});
    m_communication->SignIn(m_triedName, m_triedPassword);
    return true;
}

void SessionControl::HandleSignInAnswer(int code, const QVariantMap& answer)
{
    if (code == HttpStatus::ProxyAuthenticationRequired) {
        const QPointer<SessionControl> self = this;
        if (AnswerProxy() || !self)
            return;
    }
    m_triedPassword.clear();
    if (code != HttpStatus::Ok) {
        ShowFailure([code, fault = m_communication->LatestFault(),
                        message = answer.value(QStringLiteral("message")).toString()] {
            return FailureText(code, fault, message);
        });
        return;
    }
    m_signedIn = true;
    m_signOut.setEnabled(true);
    m_window.SetBusy(false);
    m_window.Reset();
    m_settings->SetValue(SettingKeys::LastName, answer.value(QStringLiteral("loginname")));
    m_window.Form()->hide();
    emit SignedIn(answer.value(QStringLiteral("username")).toString(),
        answer.value(QStringLiteral("data")).toMap().value(QStringLiteral("token")).toString());
    ConnectForm();
    ShowWindow();
}

/// Translates the usual failures; the server's own messages are English.
/// @param message is the answer's, in the language at that time.
QString SessionControl::FailureText(int code, const FarmFault& fault, const QString& message)
{
    switch (code) {
    case HttpStatus::Unauthorized:
        return tr("The user name or the password is wrong.");
    case HttpStatus::TooManyRequests:
        return tr("Too many attempts. Please try again in a moment.");
    default:
        return fault.status == 0 ? message : fault.Text();
    }
}

void SessionControl::HandleSignOutAnswer()
{
    m_signedIn = false;
    m_signOut.setEnabled(false);
    emit SignedOut();
    ShowSignIn();
    if (m_expired)
        ShowFailure([] { return tr("Your session has ended. Please sign in again."); });
    m_expired = false;
}

void SessionControl::HandleExpiry()
{
    m_expired = true;
    RequestSignOut();
}

void SessionControl::RequestSignOut()
{
    if (QWidget* window = FindMainWindow())
        QMetaObject::invokeMethod(window, "SignOut");
}

/// Connects the form's button for signing out. The form may be a new one in each session.
void SessionControl::ConnectForm()
{
    const QWidget* form = FindMainForm();
    if (const auto* button = form ? form->findChild<QPushButton*>(QStringLiteral("btnSignOut")) : nullptr)
        connect(button, &QPushButton::clicked, &m_signOut, &QAction::trigger, Qt::UniqueConnection);
}

void SessionControl::AddMenuEntries()
{
    m_signOut.setEnabled(false);
    connect(&m_open, &QAction::triggered, this, &SessionControl::ShowWindow);
    connect(&m_signOut, &QAction::triggered, this, &SessionControl::RequestSignOut);
    connect(m_loader, &UiLoaderService::LanguageChanged, this, &SessionControl::TranslateMenuEntries);
    TranslateMenuEntries();
    QMenu* menu = m_loader->GetMenu(QStringLiteral("menuTray"), {});
    if (!menu)
        return;
    // The last entry is the main window's "Quit".
    const QList<QAction*> entries = menu->actions();
    menu->insertAction(entries.value(0), &m_open);
    menu->insertAction(entries.isEmpty() ? nullptr : entries.constLast(), &m_signOut);
}

void SessionControl::TranslateMenuEntries()
{
    m_open.setText(tr("Open QuillStar"));
    m_signOut.setText(tr("Sign out"));
}
