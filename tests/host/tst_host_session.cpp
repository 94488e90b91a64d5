#include "host/app/session_control.h"
#include "host/services/communication_service.h"
#include "host/services/ui_loader_service.h"
#include "tests/host/stand_in_server.h"
#include "tests/hostui/memory_settings.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>

/// Stands in for the plugin's window, which SessionControl finds by the name of this class.
class VTQsClientPrivate : public QWidget
{
    Q_OBJECT

public slots:
    void SignOut() { emit SignOutAsked(); }

signals:
    void SignOutAsked();
};

/// The session of a client without a plugin, with a stand-in for the server.
struct Client
{
    Client()
    {
        communication.SetServerUrl(server.Url());
        communication.Initialize({});
        server.SetReplies({StandInServer::Http(
            200, R"({"loginname": "demo", "username": "u1", "data": {"token": "abc"}})")});
        QObject::connect(&window, &VTQsClientPrivate::SignOutAsked, &communication, [this] {
            communication.SignOut(1, {{"token"_s, "abc"_s}});
        });
    }

    QAction* SignOutEntry() const { return tray->actions().value(tray->actions().size() - 2); }

    template <typename Widget>
    Widget* Find(const char* name)
    {
        return session.SignInForm()->findChild<Widget*>(QLatin1String(name));
    }

    StandInServer server;
    MemorySettings settings;
    UiLoaderService loader {&settings};
    CommunicationService communication;
    VTQsClientPrivate window;
    QMenu* tray = loader.GetMenu("menuTray"_s, {});
    QAction* quit = tray->addAction("Quit"_s);
    SessionControl session {&loader, &communication, &settings};
};

/// The windows that belong to the states of a session, and the sign-in window.
class TestHostSession : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_client = std::make_unique<Client>(); }
    void cleanup() { m_client.reset(); }

    void SignsInWithAnAccountAndOutFromTheMenu()
    {
        QSignalSpy signedIn(&m_client->session, &SessionControl::SignedIn);
        QSignalSpy shown(&m_client->loader, &VTUiLoaderInterface::ShowWindow);
        const QAction* signOut = m_client->SignOutEntry();
        QVERIFY(!signOut->isEnabled());
        SignIn();
        QCOMPARE(signedIn.count(), 1);
        QCOMPARE(signedIn[0][0].toString(), "u1"_s);
        QCOMPARE(shown.constLast()[0].toString(), "com.vtr.qsclient"_s);
        QVERIFY(!m_client->session.SignInForm()->isVisible());
        const QVariant name = m_client->settings.values.value("vtr.auth/lastname"_s);
        QCOMPARE(name.toString(), "demo"_s);

        m_client->server.SetReplies({StandInServer::Http(500)});
        QVERIFY(signOut->isEnabled());
        m_client->SignOutEntry()->trigger();
        EVENTUALLY(!m_client->session.IsSignedIn());
        QVERIFY(m_client->session.SignInForm()->isVisible());
        QVERIFY(!signOut->isEnabled());
    }

    void AsksForNameAndPassword()
    {
        m_client->session.SignInAutomatically();
        QVERIFY(m_client->session.SignInForm()->isVisible());
        auto* name = m_client->Find<QLineEdit>("lneName");
        auto* password = m_client->Find<QLineEdit>("lnePassword");
        const auto* button = m_client->Find<QPushButton>("btnSignIn");
        QCOMPARE(password->echoMode(), QLineEdit::Password);
        name->setText("   "_s);
        password->setText(" secret "_s);
        QVERIFY(!button->isEnabled());
        QTest::keyClick(password, Qt::Key_Return); // ignored without a name
        name->setText(" demo "_s);
        QTest::keyClick(name, Qt::Key_Return);
        QVERIFY(!button->isEnabled() && !password->isEnabled());
        EVENTUALLY(m_client->session.IsSignedIn());
        QCOMPARE(m_client->server.Requests().size(), 1);
        QVERIFY(m_client->server.Requests().at(0).endsWith(R"({"password":" secret ","username":"demo"})"));
        QVERIFY(password->text().isEmpty());
    }

    void ShowsWhySignInFailed()
    {
        m_client->server.SetReplies({StandInServer::Http(403, R"({"message": "Wrong <b>name</b>."})"),
            StandInServer::Http(403, "{\"message\": \"" + QByteArray(100000, 'x') + "\"}")});
        auto* password = m_client->Find<QLineEdit>("lnePassword");
        const auto* failure = m_client->Find<QLabel>("lblFailure");
        m_client->session.SetAccount("demo"_s, "wrong"_s);
        m_client->session.SignInAutomatically();
        EVENTUALLY(m_client->session.SignInForm()->isVisible());
        QVERIFY(!m_client->session.IsSignedIn());
        QCOMPARE(failure->text(), "Wrong <b>name</b>."_s);
        QCOMPARE(failure->textFormat(), Qt::PlainText);

        password->setText("secret"_s);
        m_client->Find<QPushButton>("btnSignIn")->click();
        QVERIFY(failure->text().isEmpty());
        EVENTUALLY(failure->text().startsWith(QLatin1String("xxx")));
        QVERIFY(failure->text().size() < 1000);
        QCOMPARE(password->text(), "secret"_s);
    }

    void EndsAnExpiredSession()
    {
        SignIn();
        m_client->server.SetReplies({StandInServer::Http(401)});
        m_client->communication.GetUserInfo(1, {{"token"_s, "abc"_s}});
        EVENTUALLY(!m_client->session.IsSignedIn());
        QVERIFY(m_client->session.SignInForm()->isVisible());
        QVERIFY(!m_client->Find<QLabel>("lblFailure")->text().isEmpty());
    }

private:
    void SignIn()
    {
        m_client->session.SetAccount("demo"_s, "demo"_s);
        m_client->session.SignInAutomatically();
        EVENTUALLY(m_client->session.IsSignedIn());
    }

    std::unique_ptr<Client> m_client;
};

QTEST_MAIN(TestHostSession)
#include "tst_host_session.moc"
