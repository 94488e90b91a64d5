#include "common/vtr_filename.h"
#include "common/vtr_listfile.h"
#include "host/app/live_refresh.h"
#include "host/app/project_groups.h"
#include "host/app/session_control.h"
#include "host/services/communication_service.h"
#include "host/services/ui_loader_service.h"
#include "host/settings/setting_keys.h"
#include "tests/host/stand_in_server.h"
#include "tests/hostui/memory_settings.h"
#include "tests/support/waiting.h"
#include "vtr_messagboxinterface.h"

#include <QtWidgets>

/// Stands in for the plugin's window, which SessionControl finds by the name of this class.
class VTQsClientPrivate : public QWidget
{
    Q_OBJECT

public slots:
    void SignOut() { emit SignOutAsked(); }
    void RefreshJobList() { emit Refreshed(++refreshes); }
    void GetUserInfo() { ++askedForMoney; }

signals:
    void SignOutAsked();
    void Refreshed(int times);

public:
    int refreshes = 0;
    int askedForMoney = 0;
};

StandInServer::Reply SignedIn()
{
    return StandInServer::Http(200, R"({"loginname": "demo", "username": "u1", "data": {"token": "abc"}})");
}

/// An announcement, and how often the list has been refreshed after it; the opened stream counts as the first time.
const std::tuple<const char*, QByteArray, int> announcements[] = {
    {"a job on the page", R"({"jobs":["6","7"]})", 2},
    {"another job", R"({"jobs":["8"]})", 1},
    {"other lists", R"({"jobs":[],"list":true})", 2},
    {"no object", R"(["7"])", 1},
    {"while a list is on its way", R"({"list":true})", 1},
};

/// The farm's answer with jobs of these numbers, the first of which is the highest.
StandInServer::Reply Jobs(int first, int last)
{
    QByteArrayList jobs;
    for (int number = first; number >= last; --number)
        jobs.append("{'job_id': '" + QByteArray::number(number) + "'}");
    return StandInServer::Data("{'list': [" + jobs.join(',') + "], 'total': 0}");
}

/// Answers every question alike.
class AnsweringBox : public ServiceBase<VTMessagboxInterface>
{
public:
    QString ShowMessage(int /*kind*/, const QString& /*title*/, const QString& /*text*/,
        const QIcon& /*icon*/, const QString& detail, const QVariantHash& /*buttons*/, bool /*list*/) override
    {
        questions.append(detail);
        return answer;
    }

    QStringList questions;
    QString answer;
};

/// The session of a client without a plugin, with a stand-in for the server.
struct Client
{
    Client()
    {
        communication.SetServerUrl(server.Url());
        communication.Initialize({});
        server.SetReplies({SignedIn()});
        QObject::connect(&window, &VTQsClientPrivate::SignOutAsked, &communication, [this] {
            communication.SignOut(1, {{"token"_s, "abc"_s}});
        });
    }

    template <typename Widget>
    Widget* Find(const char* objectName)
    {
        return session.SignInForm()->findChild<Widget*>(QLatin1String(objectName));
    }

    bool IsFormVisible() { return session.SignInForm()->isVisible(); }

    void SignIn()
    {
        session.SetAccount("demo"_s, "demo"_s);
        session.SignInAutomatically();
        EVENTUALLY(session.IsSignedIn());
    }

    void ServeProjects()
    {
        server.SetReplyTo("/projects",
            StandInServer::Data("[{'project_name': 'Harbour', 'project_pool': 'p&1'},"
                                "{'project_name': 'Taken', 'project_pool': 'p2'}]"));
        // A job that is added between two requests moves another one to the second page.
        server.SetReplyTo("page=1&", Jobs(2 * ProjectGroups::PageSize, ProjectGroups::PageSize + 1));
        server.SetReplyTo("page=2&", Jobs(ProjectGroups::PageSize + 1, 2));
        server.SetReplyTo("page=3&", Jobs(1, 1));
    }

    /// Lists jobs as a refresh of the window does.
    void ListJobs(const QString& conditions, bool asksForProject)
    {
        QSignalSpy arrived(&communication, &CommunicationService::JobListResponse);
        communication.GetJobList(
            1, {{"page"_s, 1}, {"pageSize"_s, 18}, {"token"_s, "abc"_s}, {"conditions"_s, conditions}});
        EVENTUALLY(!arrived.isEmpty() && arrived[0][1].toMap()["conditions"_s] == conditions);
        QCOMPARE(server.Requests().constLast().contains("pool_id"), asksForProject);
    }

    StandInServer server;
    MemorySettings settings;
    UiLoaderService loader {&settings};
    CommunicationService communication;
    VTQsClientPrivate window;
    QMenu* tray = loader.GetMenu("menuTray"_s, {});
    QAction* quit = tray->addAction("Quit"_s);
    AnsweringBox box;
    SessionControl session {&loader, &communication, &settings, &box};
    QAction* signOut = tray->actions().value(tray->actions().size() - 2);
    QPushButton* button = Find<QPushButton>("btnSignIn");
    QLabel* failure = Find<QLabel>("lblFailure");
};

/// The windows that belong to the states of a session, and the sign-in window.
class TestHostSession : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_client = std::make_unique<Client>(); }
    void cleanup() { m_client.reset(); }

    void EndsByTheMenuAndByExpiry()
    {
        QVERIFY(!m_client->signOut->isEnabled());
        for (const bool isExpired : {false, true}) {
            m_client->SignIn();
            QVERIFY(!m_client->IsFormVisible() && m_client->signOut->isEnabled());
            m_client->server.SetReplies({StandInServer::Http(isExpired ? 401 : 500), SignedIn()});
            isExpired ? void(m_client->communication.GetUserInfo(1, {{"token"_s, "abc"_s}}))
                      : m_client->signOut->trigger();
            EVENTUALLY(!m_client->session.IsSignedIn());
            QVERIFY(m_client->IsFormVisible() && !m_client->signOut->isEnabled());
            QCOMPARE(m_client->failure->text().isEmpty(), !isExpired);
        }
    }

    void RefreshesWhatTheFarmAnnounces_data() { AddRows(announcements); }
    void RefreshesWhatTheFarmAnnounces()
    {
        const auto& [name, event, refreshes] = Row(announcements);
        const bool isOnItsWay = QByteArray(name).startsWith("while");
        LiveRefresh refresh(&m_client->communication);
        QTableWidget table(1, 1, &m_client->window);
        table.setObjectName("twtMyRender"_s);
        table.setItem(0, 0, new QTableWidgetItem);
        table.item(0, 0)->setData(Qt::UserRole, "7"_s);
        StandInServer& server = m_client->server;
        server.SetReplyTo("/jobs", StandInServer::Held(StandInServer::Http(200)));
        server.SetReplyTo("/events",
            {"HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\ndata: " + event
                    + "\n\ndata: {\"account\":{\"userInfo\":{}}}\n\n",
                false, 0, StandInServer::Stall});
        if (isOnItsWay)
            connect(&m_client->window, &VTQsClientPrivate::Refreshed, &m_client->communication, [this] {
                m_client->communication.GetJobList(1, {{"page"_s, 1}});
            });
        m_client->SignIn();
        refresh.BeginSession({}, "abc"_s);
        EVENTUALLY_COMPARE(m_client->window.askedForMoney, 2);
        QCOMPARE(m_client->window.refreshes, refreshes);
        QSignalSpy balances(&m_client->communication, &VTCommunicationInterface::UserInfoResponse);
        m_client->communication.GetUserInfo(1, {}); // is answered by the announcement
        EVENTUALLY_COMPARE(balances.count(), 1);
        QCOMPARE(balances[0][0].toInt(), 200);
        QVERIFY(!server.Requests().constLast().contains("/account"));
        if (isOnItsWay) {
            EVENTUALLY_COMPARE(server.Requests().size(), 3);
            server.Release(server.Requests().constLast().contains("/jobs") ? 2 : 1);
            EVENTUALLY_COMPARE(m_client->window.refreshes, 2);
        }
    }

    void FillsGroupsNamedAfterProjects()
    {
        m_client->settings.values.insert(SettingKeys::ServerName, "farm"_s);
        m_client->settings.values.insert(SettingKeys::LastName, "ann"_s);
        const QString path = VTAccountFile("Data"_s, "farm"_s, "ann"_s);
        QFile::remove(path);
        const VTListFile file(path, "jobgroup"_s);
        QVERIFY(file.Set("Harbour"_s, QString()) && file.Set("Own"_s, QString())
            && file.Set("Taken"_s, QStringList("7"_s)));
        StandInServer& server = m_client->server;
        m_client->ServeProjects();
        ProjectGroups groups(&m_client->communication, &m_client->settings);
        const auto begin = [&] {
            QSignalSpy listed(&groups, &ProjectGroups::ProjectsListed);
            groups.BeginSession("u1"_s, "abc"_s);
            m_client->communication.GetProjectList(1, {{"token"_s, "abc"_s}});
            EVENTUALLY_COMPARE(
                listed.value(0).value(0).toStringList(), QStringList({"Harbour"_s, "Taken"_s}));
        };
        begin();
        for (const QString& name : {"Harbour"_s, "Own"_s, "Taken"_s, "Gone"_s})
            groups.Follow(name);
        EVENTUALLY_COMPARE(file.Value("Harbour"_s).size(), 2 * ProjectGroups::PageSize);
        QCOMPARE(file.Value("Harbour"_s).constLast(), "1"_s);
        QVERIFY(server.Requests().constLast().contains("conditions=%7B%22pool_id%22%3A%22p%261%22%7D"));
        QCOMPARE(server.Requests().size(), 4);
        QCOMPARE(file.Value("Own"_s), QStringList(QString()));
        QCOMPARE(file.Value("Taken"_s), QStringList("7"_s));
        // Later requests ask only for new jobs.
        server.SetReplyTo("page=1&", Jobs(2 * ProjectGroups::PageSize + 1, ProjectGroups::PageSize + 2));
        begin();
        EVENTUALLY_COMPARE(
            file.Value("Harbour"_s).constFirst(), QString::number(2 * ProjectGroups::PageSize + 1));
        QCOMPARE(server.Requests().size(), 6);
        // A refresh finds jobs that the project got after its group was chosen, and other lists stay as they are.
        m_client->settings.values.insert("vtr.account.ann/currentproject"_s, "Harbour"_s);
        const auto group = [](const QStringList& ids) {
            return R"({"job_guid": "%1"})"_s.arg(ids.join(QLatin1Char(',')));
        };
        const QString chosen = group(file.Value("Harbour"_s));
        m_client->ListJobs(chosen, true);
        QVERIFY(file.Set("Harbour"_s, QStringList {"9"_s}));
        m_client->ListJobs(chosen, true);
        m_client->ListJobs(group({"8"_s}), false);
        m_client->ListJobs(R"({"status": 1})"_s, false);
        groups.EndSession();
        groups.Follow("Harbour"_s);
    }

    void ShowsWhySignInFailed()
    {
        const QByteArray reason = "Wrong <b>name</b>." + QByteArray(100000, 'x');
        m_client->server.SetReplies({StandInServer::Http(403, "{\"message\": \"" + reason + "\"}")});
        m_client->session.SetAccount("demo"_s, "wrong"_s);
        m_client->session.SignInAutomatically();
        const auto* failure = m_client->failure;
        EVENTUALLY(failure->text().startsWith("Wrong <b>name</b>.xx"_s));
        QVERIFY(m_client->IsFormVisible() && !m_client->session.IsSignedIn());
        QVERIFY(failure->text().size() < 1000);
        QCOMPARE(failure->textFormat(), Qt::PlainText);
        m_client->server.SetReplies({StandInServer::Http(401)});
        m_client->session.SetAccount("demo"_s, "wrong"_s);
        m_client->session.SignInAutomatically();
        EVENTUALLY_COMPARE(failure->text(), "The user name or the password is wrong."_s);
        m_client->Find<QLineEdit>("lnePassword")->setText("secret"_s);
        m_client->button->click();
        QVERIFY(failure->text().isEmpty());
    }

    void WaitsForAFarmThatStarts()
    {
        using Farm = SignInWindow::Farm;
        const auto* server = m_client->Find<QLabel>("lblServer");
        m_client->session.ShowSignIn();
        auto* name = m_client->Find<QLineEdit>("lneName");
        name->setText("demo"_s);
        emit name->returnPressed();
        QCOMPARE(name->window()->focusWidget()->objectName(), "lnePassword"_s); // which is empty
        m_client->Find<QLineEdit>("lnePassword")->setText("demo"_s);
        QSignalSpy starts(&m_client->session, &SessionControl::StartRequested);
        const std::tuple<Farm, const char*, const char*, bool> states[] = {
            {Farm::Starting, "", "Starting the farm…", false},
            {Farm::Starting, "no <disk>", "Starting the farm…", false},
            {Farm::Failed, "no <disk>", "Try again", true},
            {Farm::Ready, "", "Sign in", true},
        };
        for (const auto& [farm, reason, text, isEnabled] : states) {
            m_client->session.SetFarm(farm, QLatin1String(reason));
            QCOMPARE(m_client->button->text(), QString::fromUtf8(text));
            QCOMPARE(m_client->button->isEnabled(), isEnabled);
            QCOMPARE(m_client->failure->text().contains("no <disk>."_s), *reason != 0);
            emit m_client->Find<QLineEdit>("lnePassword")->returnPressed();
            m_client->button->click();
            QCOMPARE(starts.count(), farm == Farm::Failed || farm == Farm::Ready ? 1 : 0);
        }
        EVENTUALLY(m_client->session.IsSignedIn());
        const auto* password = m_client->Find<QLineEdit>("lnePassword");
        QVERIFY(password->window()->focusWidget() == password); // for the next to sign in
        QCOMPARE(m_client->server.Requests().size(), 1);
        QCOMPARE(server->text(), "Server: the farm on this computer"_s);
        m_client->session.SetServer("https://farm.example/"_s + QString(300, QLatin1Char('x')));
        QVERIFY(server->text().size() < 100 && server->toolTip().size() > 300);
    }

    void AsksForTheProxysPassword()
    {
        const auto restore = qScopeGuard([] { QNetworkProxyFactory::setUseSystemConfiguration(true); });
        QNetworkProxy::setApplicationProxy(
            {QNetworkProxy::HttpProxy, "127.0.0.1"_s, quint16(m_client->server.Url().port())});
        m_client->server.AskFor("ann:secret");
        m_client->box.answer = "btnMessageBox_2"_s;
        m_client->communication.SetServerUrl(QUrl("http://farm.example"_s));
        QSignalSpy given(&m_client->session, &SessionControl::ProxyLoginGiven);
        QStringList passwords {QString(), "wrong"_s, "secret"_s}; // the first is not given
        QTimer typing;
        connect(&typing, &QTimer::timeout, this, [&passwords] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || passwords.isEmpty())
                return;
            const QString password = passwords.takeFirst();
            dialog->findChild<QLineEdit*>("lneProxyName"_s)->setText("ann"_s);
            dialog->findChild<QLineEdit*>("lneProxyPassword"_s)->setText(password);
            password.isEmpty() ? dialog->reject() : dialog->accept();
        });
        typing.start(1);
        m_client->session.SetAccount("demo"_s, "demo"_s);
        m_client->session.SignInAutomatically();
        EVENTUALLY(!m_client->failure->text().isEmpty());
        m_client->session.SetAccount("demo"_s, "demo"_s);
        m_client->session.SignInAutomatically();
        EVENTUALLY(m_client->session.IsSignedIn());
        QCOMPARE(given.count(), 2);
    }

    void AsksBeforeAPasswordTravelsUnencrypted()
    {
        m_client->communication.SetServerUrl(QUrl("http://192.0.2.1:8080"_s)); // nobody's address
        for (const QString& answer : {QString(), "btnMessageBox_1"_s, "btnMessageBox_2"_s, QString()}) {
            m_client->box.answer = answer;
            const bool isSent = m_client->box.questions.size() > 2 || answer.endsWith(QLatin1Char('2'));
            m_client->session.SetAccount("demo"_s, "demo"_s);
            m_client->session.SignInAutomatically();
            QCOMPARE(m_client->Find<QLineEdit>("lneName")->isEnabled(), !isSent);
            m_client->communication.SetServerUrl({});
            m_client->communication.SetServerUrl(QUrl("http://192.0.2.1:8080"_s));
        }
        QCOMPARE(m_client->box.questions.size(), 3); // agreed once
        QVERIFY(m_client->box.questions.constFirst().contains("http://192.0.2.1:8080"_s));
    }

private:
    std::unique_ptr<Client> m_client;
};

QTEST_MAIN(TestHostSession)
#include "tst_host_session.moc"
