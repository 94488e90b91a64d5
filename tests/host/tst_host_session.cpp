#include "communication_service.h"
#include "session_control.h"
#include "settings_service.h"
#include "stand_in_server.h"
#include "ui_loader_service.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

/// Takes the place of the plugin's window, which the session control finds by this name.
class VTQsClientPrivate : public QWidget
{
    Q_OBJECT

public slots:
    void SignOut() { emit SignOutAsked(); }

signals:
    void SignOutAsked();
};

/// Which window shows for which state of the session, and what the sign-in window shows and asks.
class TestHostSession : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void SignsInWithTheAccountThatWasSet();
    void AsksForNameAndPassword();
    void ShowsWhySignInFailed();
    void SignsOutFromTheMenu();
    void EndsAnExpiredSession();

private:
    void SignIn();
    QAction* SignOutEntry() const;
    template <typename Widget>
    Widget* Find(const char* name) const
    {
        return m_session->SignInForm()->findChild<Widget*>(QLatin1String(name));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<SettingsService> m_settings;
    std::unique_ptr<UiLoaderService> m_loader;
    std::unique_ptr<CommunicationService> m_communication;
    std::unique_ptr<VTQsClientPrivate> m_window;
    std::unique_ptr<SessionControl> m_session;
};

void TestHostSession::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_server = std::make_unique<StandInServer>();
    m_settings = std::make_unique<SettingsService>(m_folder->filePath(QStringLiteral("settings.ini")));
    m_loader = std::make_unique<UiLoaderService>(m_settings.get());
    m_communication = std::make_unique<CommunicationService>();
    m_communication->SetServerUrl(m_server->Url());
    m_communication->Initialize({});
    m_window = std::make_unique<VTQsClientPrivate>();
    m_loader->GetMenu(QStringLiteral("menuTray"), {})->addAction(QStringLiteral("Quit"));
    m_session = std::make_unique<SessionControl>(m_loader.get(), m_communication.get(), m_settings.get());
    connect(m_window.get(), &VTQsClientPrivate::SignOutAsked, m_communication.get(), [this] {
        m_communication->SignOut(1, {{QStringLiteral("token"), QStringLiteral("abc")}});
    });
    m_server->SetReplies(
        {StandInServer::Http(200, R"({"loginname": "demo", "username": "u1", "data": {"token": "abc"}})")});
}

void TestHostSession::cleanup()
{
    m_session.reset();
    m_window.reset();
    m_communication.reset();
    m_loader.reset();
    m_settings.reset();
}

void TestHostSession::SignIn()
{
    m_session->SetAccount(QStringLiteral("demo"), QStringLiteral("demo"));
    m_session->SignInAutomatically();
    QTRY_VERIFY(m_session->IsSignedIn());
    QVERIFY(SignOutEntry()->isEnabled());
}

QAction* TestHostSession::SignOutEntry() const
{
    const QList<QAction*> entries = m_loader->GetMenu(QStringLiteral("menuTray"), {})->actions();
    return entries.value(entries.size() - 2);
}

void TestHostSession::SignsInWithTheAccountThatWasSet()
{
    QSignalSpy signedIn(m_session.get(), &SessionControl::SignedIn);
    QSignalSpy shown(m_loader.get(), &VTUiLoaderInterface::ShowWindow);
    QVERIFY(!SignOutEntry()->isEnabled());
    SignIn();
    QCOMPARE(signedIn.count(), 1);
    QCOMPARE(signedIn[0][0].toString(), QStringLiteral("u1"));
    QCOMPARE(shown.constLast()[0].toString(), QStringLiteral("com.vtr.qsclient"));
    QVERIFY(!m_session->SignInForm()->isVisible());
    QCOMPARE(m_settings->Value(QStringLiteral("vtr.auth/lastname"), {}).toString(), QStringLiteral("demo"));
}

void TestHostSession::AsksForNameAndPassword()
{
    m_session->SignInAutomatically();
    QVERIFY(m_session->SignInForm()->isVisible());
    auto* name = Find<QLineEdit>("lneName");
    auto* password = Find<QLineEdit>("lnePassword");
    const auto* button = Find<QPushButton>("btnSignIn");
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    name->setText(QStringLiteral("   "));
    password->setText(QStringLiteral(" secret "));
    QVERIFY(!button->isEnabled());
    QTest::keyClick(password, Qt::Key_Return); // asks nothing yet
    name->setText(QStringLiteral(" demo "));
    QTest::keyClick(name, Qt::Key_Return);
    QVERIFY(!button->isEnabled() && !password->isEnabled());
    QTRY_VERIFY(m_session->IsSignedIn());
    QCOMPARE(m_server->Requests().size(), 1);
    QVERIFY(m_server->Requests().at(0).endsWith(R"({"password":" secret ","username":"demo"})"));
    QVERIFY(password->text().isEmpty());
}

void TestHostSession::ShowsWhySignInFailed()
{
    m_server->SetReplies({StandInServer::Http(403, R"({"message": "Wrong <b>name</b>."})"),
        StandInServer::Http(403, R"({"message": ")" + QByteArray(100000, 'x') + "\"}")});
    auto* password = Find<QLineEdit>("lnePassword");
    const auto* failure = Find<QLabel>("lblFailure");
    m_session->SetAccount(QStringLiteral("demo"), QStringLiteral("wrong"));
    m_session->SignInAutomatically();
    QTRY_VERIFY(m_session->SignInForm()->isVisible());
    QVERIFY(!m_session->IsSignedIn());
    QCOMPARE(failure->text(), QStringLiteral("Wrong <b>name</b>."));
    QCOMPARE(failure->textFormat(), Qt::PlainText);

    password->setText(QStringLiteral("secret"));
    Find<QPushButton>("btnSignIn")->click();
    QVERIFY(failure->text().isEmpty());
    QTRY_VERIFY(failure->text().startsWith(QLatin1String("xxx")));
    QVERIFY(failure->text().size() < 1000);
    QCOMPARE(password->text(), QStringLiteral("secret"));
}

void TestHostSession::SignsOutFromTheMenu()
{
    SignIn();
    m_server->SetReplies({StandInServer::Http(500, "{}")});
    SignOutEntry()->trigger();
    QTRY_VERIFY(!m_session->IsSignedIn());
    QVERIFY(m_session->SignInForm()->isVisible());
    QVERIFY(!SignOutEntry()->isEnabled());
}

void TestHostSession::EndsAnExpiredSession()
{
    SignIn();
    m_server->SetReplies({StandInServer::Http(401, "{}")});
    m_communication->GetUserInfo(1, {{QStringLiteral("token"), QStringLiteral("abc")}});
    QTRY_VERIFY(!m_session->IsSignedIn());
    QVERIFY(m_session->SignInForm()->isVisible());
}

QTEST_MAIN(TestHostSession)
#include "tst_host_session.moc"
