#include "client_test.h"

#include <QLabel>

namespace {

constexpr int jobListInterval = 15000;
constexpr int userInfoInterval = 30000;

struct Balance
{
    const char* name;
    QVariant balance;
    int character;
};
const Balance balances[] = {{"letter", 65.0, 65}, {"cut off", 65.99, 65}, {"text", "66.5"_s, 66},
    {"low 8 bits", 256 + 67, 67}, {"Latin-1", 0xe9, 0xe9}, {"negative", -1, 0xff}, {"huge", 1e300, 0},
    {"no number", qQNaN(), 0}, {"missing", QVariant(), 0}, {"wrong type", QVariantList {1}, 0}};

} // namespace

/// A session from sign-in to sign-out, and the account panel.
class TestPluginAccount : public ClientTest
{
    Q_OBJECT

private slots:
    void beginsASessionInOrder()
    {
        const QSignalSpy login(m_client->Window(), SIGNAL(login(QString, QString, QString, QString)));
        m_client->SignIn();
        QCOMPARE(TakeJournal(), (QStringList {"GetUserInfo"_s, "GetJobList"_s, "GetProjectList"_s}));
        const QVariantHash session {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s}};
        QCOMPARE(Communication().requests.at(0).map, session);
        QCOMPARE(Communication().requests.at(1).map,
            (QVariantHash {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s}, {"page"_s, 1},
                {"pageSize"_s, 18}, {"identifier"_s, 0}}));
        QCOMPARE(Communication().requests.at(2).map, session);
        for (const auto& request : qAsConst(Communication().requests))
            QCOMPARE(request.status, QVariant(CommunicationStandIn::handedOut));

        const QVariant server = m_client->settings.values.value("vtr.web/currentserver"_s);
        QCOMPARE(login.size(), 1);
        QCOMPARE(login.first(), (QVariantList {server, "login-ann"_s, "token-ann"_s, "ann"_s}));
        QCOMPARE(Label("lblUserName")->text(), "login-ann"_s);
        QCOMPARE(Label("lblVersionV")->text(), "4.5.6"_s);
        QCOMPARE(m_client->RunningTimers(userInfoInterval).size(), 1);
        QVERIFY(m_client->Tick(jobListInterval));
        QCOMPARE(TakeJournal(), QStringList {"GetJobList"_s});
    }

    void ignoresAFailedSignIn()
    {
        Communication().DeliverSignIn("ann"_s, 401);
        QCOMPARE(TakeJournal(), QStringList());
        QCOMPARE(Label("lblUserName")->text(), QString());
        QVERIFY(m_client->RunningTimers(jobListInterval).isEmpty());
        QVERIFY(m_client->RunningTimers(userInfoInterval).isEmpty());
    }

    void asksTwiceForTheBalanceAfterASecondSignIn()
    {
        int times = 0;
        for (const char* user : {"ann", "bob"}) {
            m_client->SignIn(QLatin1String(user));
            TakeJournal();
            QVERIFY(m_client->Tick(userInfoInterval));
            QCOMPARE(TakeJournal().size(), ++times);
        }
        QCOMPARE(Communication().Last().operation, "GetUserInfo"_s);
        QCOMPARE(Communication().Last().map.value("token"_s), QVariant("token-bob"_s));
    }

    void showsTheBalance_data() { AddRows(balances); }
    void showsTheBalance()
    {
        m_client->SignIn();
        const QVariantMap user {{"user_balance"_s, Row(balances).balance}, {"username"_s, "other"_s}};
        Communication().DeliverUserInfo(user, false);
        QCOMPARE(Label("lblRmb")->text(), QString(QChar(Row(balances).character)));
        QVERIFY(!m_client->Shows("lblCyb"_s) && !m_client->Shows("lblCybU"_s));
        QCOMPARE(Label("lblUserName")->text(), "login-ann"_s);
    }

    void showsBothBalancesOfABoundAccountAsSent()
    {
        m_client->SignIn();
        const QVariantMap user {{"user_rmb_balance"_s, "<b>1,5</b>"_s}, {"user_vso_balance"_s, "007"_s},
            {"user_balance"_s, 65}, {"username"_s, "<i>Ann</i>"_s}};
        Communication().DeliverUserInfo(user, false);
        Communication().DeliverUserInfo(user, true);
        emit Communication().UserInfoResponse(500, {});
        QCOMPARE(Label("lblRmb")->text(), "<b>1,5</b>"_s);
        QCOMPARE(Label("lblRmb")->textFormat(), Qt::PlainText);
        QVERIFY(Label("lblRmb")->toolTip().contains("&lt;b&gt;1,5"_s));
        QCOMPARE(Label("lblCyb")->text(), "007"_s);
        QCOMPARE(Label("lblCyb")->toolTip(), "007"_s);
        QVERIFY(m_client->Shows("lblCyb"_s) && m_client->Shows("lblCybU"_s));
        QCOMPARE(Label("lblUserName")->text(), "<i>Ann</i>"_s);
        QCOMPARE(Label("lblUserName")->textFormat(), Qt::PlainText);
    }

    void signsOutWithTheLocalTasks()
    {
        m_client->SignIn();
        RenderCore().tasks = {{"a"_s, {}}, {"b"_s, {}}};
        emit RenderCore().SubmitListChanged();
        TakeJournal();
        QVERIFY(m_client->Call("SignOut"));
        QVERIFY(m_client->Form()->isVisible());
        RenderCore().tasks = {{"c"_s, {}}};
        emit RenderCore().SubmitListChanged();
        Communication().onRequest = [this] {
            emit Communication().SignOutResponse(200, {});
            m_client->Service()->Hide(1);
        };
        QVERIFY(m_client->Call("SignOut"));
        QCOMPARE(TakeJournal(),
            (QStringList {"SignOut"_s, "RemoveSubmitTasks a,b"_s, "SignOut"_s, "RemoveSubmitTasks c"_s}));
    }

    void endsTheSessionWhateverTheFarmSays()
    {
        SignInWithJobs(MakeJobs(18), 200);
        m_client->Button("btnNextGroup"_s)->click();
        RenderCore().downloads.insert("d"_s, QVariantMap());
        m_client->Tabs()->setCurrentIndex(2);
        emit Communication().SignOutResponse(500, {});

        QVERIFY(!m_client->Form()->isVisible());
        QVERIFY(m_client->RunningTimers(jobListInterval).isEmpty());
        QVERIFY(m_client->RunningTimers(userInfoInterval).isEmpty());
        for (const char* table : {"twtMyRender", "twtLocalTask", "twtDownload"})
            QCOMPARE(m_client->Table(QLatin1String(table))->rowCount(), 0);
        QCOMPARE(m_client->Button("btnPageOne"_s)->text(), "1"_s);
        QVERIFY(!m_client->Shows("btnPageTwo"_s) && !m_client->Shows("btnPreGroup"_s));
        m_client->Tabs()->setCurrentIndex(0);
        QCOMPARE(Communication().Last().map.value("page"_s), QVariant(1));
    }

private:
    QLabel* Label(const char* name) const { return m_client->Find<QLabel>(QLatin1String(name)); }
};

QTEST_MAIN(TestPluginAccount)
#include "tst_plugin_account.moc"
