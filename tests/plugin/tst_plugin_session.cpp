#include "tests/standins/client_test.h"

#include <QAction>
#include <QLabel>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTranslator>

namespace {

constexpr int jobListInterval = 15000;
constexpr int userInfoInterval = 30000;

struct Balance
{
    const char* name;
    QVariant balance;
    int character;
};
const Balance balances[] = {{"cut off", 65.99, 65}, {"text", "66.5"_s, 66}, {"low 8 bits", 256 + 67, 67},
    {"Latin-1", 0xe9, 0xe9}, {"negative", -1, 0xff}, {"huge", 1e300, 0}, {"no number", qQNaN(), 0},
    {"missing", QVariant(), 0}, {"wrong type", QVariantList {1}, 0}};

struct Answer
{
    const char* name;
    QString button;
    bool quits;
};
const Answer answers[] = {{"cancel", MessageBoxStandIn::Refusal(), false}, {"closed", QString(), false},
    {"ok", MessageBoxStandIn::Consent(), true}};

const char* const tables[] = {"twtMyRender", "twtLocalTask", "twtDownload"};

/// Marks every text that is translated.
class MarkingTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* text, const char*, int) const override
    {
        return QString("~"_s + QString::fromUtf8(text));
    }
};

} // namespace

/// A session from sign-in to sign-out, and what surrounds the content: account, skin, language, size, tray, way out.
class TestPluginSession : public ClientTest
{
    Q_OBJECT

private slots:
    void beginsASessionInOrder()
    {
        const QSignalSpy login(m_client->Window(), SIGNAL(login(QString, QString, QString, QString)));
        Communication().DeliverSignIn("ann"_s, 401);
        QCOMPARE(TakeJournal(), QStringList());
        QCOMPARE(Label("lblUserName")->text(), QString());
        QVERIFY(!m_client->Tick(jobListInterval) && !m_client->Tick(userInfoInterval));
        m_client->SignIn();
        QCOMPARE(TakeJournal(), (QStringList {"GetUserInfo"_s, "GetJobList"_s, "GetProjectList"_s}));
        const QVariantHash session {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s}};
        QVariantHash page = session;
        page.insert(QVariantHash {{"page"_s, 1}, {"pageSize"_s, 18}, {"identifier"_s, 0}});
        const QVariantHash maps[] = {session, page, session};
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(Communication().requests.at(i).map, maps[i]);
            QCOMPARE(Communication().requests.at(i).status, QVariant(CommunicationStandIn::handedOut));
        }
        const QVariant server = m_client->settings.values.value("vtr.web/currentserver"_s);
        QCOMPARE(login.value(0), (QVariantList {server, "login-ann"_s, "token-ann"_s, "ann"_s}));
        QCOMPARE(Label("lblUserName")->text(), "login-ann"_s);
        QCOMPARE(Label("lblVersionV")->text(), "4.5.6"_s);
        QVERIFY(m_client->Tick(jobListInterval));
        QCOMPARE(TakeJournal(), QStringList {"GetJobList"_s});
    }

    void asksTwiceForTheBalanceAfterASecondSignIn()
    {
        int times = 0;
        for (const char* user : {"ann", "bob"}) {
            m_client->SignIn(QLatin1String(user));
            TakeJournal();
            QVERIFY(m_client->Tick(userInfoInterval));
            QCOMPARE(TakeJournal().count("GetUserInfo"_s), ++times);
        }
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
        Communication().DeliverUserInfo(user, true);
        emit Communication().UserInfoResponse(500, {});
        QCOMPARE(Label("lblRmb")->text(), "<b>1,5</b>"_s);
        QVERIFY(Label("lblRmb")->toolTip().contains("&lt;b&gt;1,5"_s));
        QCOMPARE(Label("lblCyb")->text(), "007"_s);
        QCOMPARE(Label("lblCyb")->toolTip(), "007"_s);
        QVERIFY(m_client->Shows("lblCyb"_s) && m_client->Shows("lblCybU"_s));
        QCOMPARE(Label("lblUserName")->text(), "<i>Ann</i>"_s);
        for (const char* label : {"lblRmb", "lblUserName"})
            QCOMPARE(Label(label)->textFormat(), Qt::PlainText);
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
        QVERIFY(!m_client->Tick(jobListInterval) && !m_client->Tick(userInfoInterval));
        for (const char* table : tables)
            QCOMPARE(m_client->Table(QLatin1String(table))->rowCount(), 0);
        QCOMPARE(m_client->Button("btnPageOne"_s)->text(), "1"_s);
        QVERIFY(!m_client->Shows("btnPageTwo"_s) && !m_client->Shows("btnPreGroup"_s));
        m_client->Tabs()->setCurrentIndex(0);
        QCOMPARE(Communication().Last().map.value("page"_s), QVariant(1));
    }

    void takesItsStyleSheetsFromTheSkin()
    {
        UiLoaderStandIn& loader = m_client->uiLoader;
        QCOMPARE(loader.skinSettings, QStringList {":/teal/com.vtr.qsclient.ini"_s});
        m_client->Form()->setAutoFillBackground(false);
        emit loader.SkinChanged("plum"_s);
        QVERIFY(m_client->Form()->autoFillBackground());
        QVERIFY(m_client->Form()->styleSheet().contains("/* plum form */"_s));
        QVERIFY(m_client->Window()->styleSheet().contains("/* plum menu */"_s));
        QVERIFY(loader.Form("com.vtr.search"_s)->styleSheet().contains("/* plum search */"_s));
        emit loader.SkinChanged("no such skin"_s);
        QCOMPARE(m_client->Form()->styleSheet() + m_client->Window()->styleSheet(), QString());
        QCOMPARE(loader.skinSettings.last(), ":/no such skin/com.vtr.qsclient.ini"_s);

        // A form is laid out anew instead of resized.
        loader.layouts.clear();
        loader.skin = "plum"_s;
        QResizeEvent resize(QSize(500, 400), m_client->Form()->size());
        QVERIFY(QCoreApplication::sendEvent(m_client->Form(), &resize));
        QCOMPARE(loader.layouts, QStringList {":/plum/com.vtr.qsclient.ini"_s});
    }

    void asksBeforeItQuits_data() { AddRows(answers); }
    void asksBeforeItQuits()
    {
        constexpr int stillRunning = 7;
        const bool quits = Row(answers).quits;
        RenderCore().tasks = {{"a"_s, {}}, {"b"_s, {}}, {"c"_s, {}}};
        emit RenderCore().SubmitListChanged();
        MessageBox().answer = Row(answers).button;
        QTimer::singleShot(0, m_client->Button("btnSystemClose"_s), &QPushButton::click);
        QTimer::singleShot(50, qApp, [] { QCoreApplication::exit(stillRunning); });
        QCOMPARE(QCoreApplication::exec(), quits ? 0 : stillRunning);
        QCOMPARE(
            MessageBox().messages, QStringList {"4|QuillStar Client||Are you sure to quit?|Cancel,Ok|0"_s});
        QCOMPARE(m_client->Form()->isVisible(), !quits);
        QCOMPARE(TakeJournal().mid(1), quits ? QStringList {"RemoveSubmitTasks a,b,c"_s} : QStringList());
    }

    void comesForwardUnderItsOwnKeyOnly()
    {
        m_client->Form()->hide();
        for (const char* key : {"com.vtr.search", "COM.VTR.QSCLIENT", "", "com.vtr.qsclient"}) {
            QVERIFY(!m_client->Form()->isVisible());
            emit m_client->uiLoader.ShowWindow(QLatin1String(key));
        }
        QVERIFY(m_client->Form()->isVisible());
    }

    void maximisesAndRestoresExactly()
    {
        const QSignalSpy resized(m_client->Window(), SIGNAL(windowSizeChanged()));
        const QSize before = m_client->Tabs()->size();
        const QSize delta = QGuiApplication::primaryScreen()->availableSize() - m_client->Form()->size();
        const QTableWidget* jobs = m_client->Table("twtMyRender"_s);
        m_client->Button("btnSystemMaxnormal"_s)->click();
        QVERIFY(m_client->Shows("btnSystemMaxmax"_s) && !m_client->Shows("btnSystemMaxnormal"_s));
        QCOMPARE(m_client->Tabs()->minimumSize(), before + delta);
        QVERIFY(m_client->Form()->isMaximized());
        QTRY_COMPARE(resized.size(), 1);
        QTRY_COMPARE(jobs->columnWidth(5), jobs->width() / 6);

        m_client->Button("btnSystemMaxmax"_s)->click();
        QVERIFY(!m_client->Shows("btnSystemMaxmax"_s) && m_client->Shows("btnSystemMaxnormal"_s));
        QCOMPARE(m_client->Tabs()->maximumSize(), before);
        QVERIFY(!m_client->Form()->isMaximized());
        QTRY_COMPARE(resized.size(), 2);
    }

    void togglesBetweenTheLanguages()
    {
        QPushButton* button = m_client->Button("btnLang"_s);
        button->click();
        for (const char* state : {"normal", "hover", "pressed"})
            QVERIFY(button->styleSheet().contains(":/default/de_%1.png"_s.arg(QLatin1String(state))));
        button->click();
        QVERIFY(button->styleSheet().contains(":/default/en_normal.png"_s));
        QCOMPARE(
            TakeJournal(), (QStringList {"SetLanguage /lang/vtr_de.qm"_s, "SetLanguage /lang/vtr_en.qm"_s}));
    }

    void translatesEverythingAgain()
    {
        const QString headers = "Sequence,Name,Start Time,Progress,Status,Cost,"
                                "Name,Start Time,Status,Progress,SceneFile,Warn,"
                                "Name,Source,Dest,Progress,Status,Start Time"_s;
        QCOMPARE(Headers(), headers);
        MarkingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        emit m_client->uiLoader.LanguageChanged("vtr_de.qm"_s);
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(Headers(), "~"_s + QString(headers).replace(","_s, ",~"_s));
        QCOMPARE(m_client->Form()->windowTitle(), "~QuillStar Client"_s);
        QCOMPARE(m_client->Button("btnRecover"_s)->toolTip(), "~Recover"_s);
        for (const char* entry : {"~Download", "~Set parent", "~Continue submit", "~Delete Tasks",
                 "~Set argument", "~Open file path", "~Redownload"})
            QVERIFY2(m_client->Entry(entry), entry);
        QCOMPARE(m_client->uiLoader.trayMenu.actions().last()->text(), "~Quit"_s);
        QCOMPARE(TrayIcon()->toolTip(), "~Quillstar Client"_s);
    }

    void answersADoubleClickOnTheTrayIcon()
    {
        m_client->Form()->hide();
        emit TrayIcon()->activated(QSystemTrayIcon::Trigger);
        QCOMPARE(TakeJournal(), QStringList());
        emit TrayIcon()->activated(QSystemTrayIcon::DoubleClick);
        QCOMPARE(TakeJournal(), QStringList {"OpenWindow com.vtr.authclient"_s});
        QVERIFY(!m_client->Form()->isVisible());
        m_client->SignIn();
        TakeJournal();
        emit TrayIcon()->activated(QSystemTrayIcon::DoubleClick);
        QCOMPARE(TakeJournal(), QStringList());
        QVERIFY(m_client->Form()->isVisible());
    }

    void buildsTheTrayMenuOnTheLoadersOwn()
    {
        for (int round = 0; round < 2; ++round)
            m_client->SignIn();
        const QList<QAction*> entries = m_client->uiLoader.trayMenu.actions();
        QCOMPARE(entries.size(), 4);
        QCOMPARE(entries.at(0)->menu(), &m_client->uiLoader.skinMenu);
        QCOMPARE(entries.at(1)->menu(), &m_client->uiLoader.languageMenu);
        QCOMPARE(QVariant(entries.at(2)->text()), m_client->settings.values.value("vtr.web/currentserver"_s));
        QTimer::singleShot(0, entries.at(3), &QAction::trigger);
        QCOMPARE(QCoreApplication::exec(), 0);
    }

private:
    QLabel* Label(const char* name) const { return m_client->Find<QLabel>(QLatin1String(name)); }
    QSystemTrayIcon* TrayIcon() const { return m_client->Window()->findChild<QSystemTrayIcon*>(); }

    QString Headers() const
    {
        QStringList headers;
        for (const char* name : tables) {
            const QTableWidget* table = m_client->Table(QLatin1String(name));
            for (int column = 0; column < table->columnCount(); ++column)
                headers.append(table->horizontalHeaderItem(column)->text());
        }
        return headers.join(","_s);
    }
};

QTEST_MAIN(TestPluginSession)
#include "tst_plugin_session.moc"
