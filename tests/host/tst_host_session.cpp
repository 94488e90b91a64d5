#include "host/app/session_control.h"
#include "host/services/communication_service.h"
#include "host/services/ui_loader_service.h"
#include "tests/host/stand_in_server.h"
#include "tests/hostui/memory_settings.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
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

/// The signing in and out of a client, without a plugin and with a stand-in for the server.
struct Client
{
    Client()
    {
        communication.SetServerUrl(server.Url());
        communication.Initialize({});
        server.SetReplies({StandInServer::Http(
            200, R"({"loginname": "demo", "username": "u1", "data": {"token": "abc"}})")});
        QObject::connect(&window, &VTQsClientPrivate::SignOutAsked, &communication, [this] {
            communication.SignOut(1, {{QStringLiteral("token"), QStringLiteral("abc")}});
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
    QMenu* tray = loader.GetMenu(QStringLiteral("menuTray"), {});
    QAction* quit = tray->addAction(QStringLiteral("Quit"));
    SessionControl session {&loader, &communication, &settings};
};

/// Which window shows for which state of the session, and what the sign-in window shows and asks.
class TestHostSession : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_client = std::make_unique<Client>(); }
    void cleanup() { m_client.reset(); }

    void SignsInWithTheAccountThatWasSetAndOutFromTheMenu()
    {
        QSignalSpy signedIn(&m_client->session, &SessionControl::SignedIn);
        QSignalSpy shown(&m_client->loader, &VTUiLoaderInterface::ShowWindow);
        const QAction* signOut = m_client->SignOutEntry();
        QVERIFY(!signOut->isEnabled());
        SignIn();
        QCOMPARE(signedIn.count(), 1);
        QCOMPARE(signedIn[0][0].toString(), QStringLiteral("u1"));
        QCOMPARE(shown.constLast()[0].toString(), QStringLiteral("com.vtr.qsclient"));
        QVERIFY(!m_client->session.SignInForm()->isVisible());
        const QVariant name = m_client->settings.values.value(QStringLiteral("vtr.auth/lastname"));
        QCOMPARE(name.toString(), QStringLiteral("demo"));

        m_client->server.SetReplies({StandInServer::Http(500)});
        QVERIFY(signOut->isEnabled());
        m_client->SignOutEntry()->trigger();
        QTRY_VERIFY(!m_client->session.IsSignedIn());
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
        name->setText(QStringLiteral("   "));
        password->setText(QStringLiteral(" secret "));
        QVERIFY(!button->isEnabled());
        QTest::keyClick(password, Qt::Key_Return); // asks nothing yet
        name->setText(QStringLiteral(" demo "));
        QTest::keyClick(name, Qt::Key_Return);
        QVERIFY(!button->isEnabled() && !password->isEnabled());
        QTRY_VERIFY(m_client->session.IsSignedIn());
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
        m_client->session.SetAccount(QStringLiteral("demo"), QStringLiteral("wrong"));
        m_client->session.SignInAutomatically();
        QTRY_VERIFY(m_client->session.SignInForm()->isVisible());
        QVERIFY(!m_client->session.IsSignedIn());
        QCOMPARE(failure->text(), QStringLiteral("Wrong <b>name</b>."));
        QCOMPARE(failure->textFormat(), Qt::PlainText);

        password->setText(QStringLiteral("secret"));
        m_client->Find<QPushButton>("btnSignIn")->click();
        QVERIFY(failure->text().isEmpty());
        QTRY_VERIFY(failure->text().startsWith(QLatin1String("xxx")));
        QVERIFY(failure->text().size() < 1000);
        QCOMPARE(password->text(), QStringLiteral("secret"));
    }

    void EndsAnExpiredSession()
    {
        SignIn();
        m_client->server.SetReplies({StandInServer::Http(401)});
        m_client->communication.GetUserInfo(1, {{QStringLiteral("token"), QStringLiteral("abc")}});
        QTRY_VERIFY(!m_client->session.IsSignedIn());
        QVERIFY(m_client->session.SignInForm()->isVisible());
    }

private:
    void SignIn()
    {
        m_client->session.SetAccount(QStringLiteral("demo"), QStringLiteral("demo"));
        m_client->session.SignInAutomatically();
        QTRY_VERIFY(m_client->session.IsSignedIn());
    }

    std::unique_ptr<Client> m_client;
};

QTEST_MAIN(TestHostSession)
#include "tst_host_session.moc"
