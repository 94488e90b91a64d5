#include "tests/standins/client_test.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QToolBox>
#include <QTranslator>

namespace {

constexpr int JobListInterval = 15000;
constexpr int UserInfoInterval = 30000;

const char* const DressedForms[] = {"qsclient", "setargument", "setparent", "search", "inputdialog"};
const QList<QSize> MainIcon {QSize(1, 1)};

struct Captions
{
    const char* form;
    QString texts;
};
const Captions Translated[] = {
    {"qsclient",
        "All,Balance,Charge,Cost,Cost,Delete,Delete the checked rows,Dest,Download,Finished,Full "
        "render,Group,"
        "Language,Local Task,Maximize,Messages,Minimize to the tray,My Render,My Render,Name,Name,Name,"
        "Next five pages,Next page,Previous five pages,Previous page,Progress,Progress,Progress,Project,"
        "QuillStar Client,Quit,RMB,Recharge,Recover,Recover,Render all frames of the checked jobs,Restart,"
        "Restart the checked jobs,Restore,Running,SceneFile,Search,Search jobs,Select all,Sequence,"
        "Service hotline,Settings,Skin,Source,Start Time,Start Time,Start "
        "Time,Status,Status,Status,Stop,Stop,"
        "Stop the checked jobs,Submit,Submit a scene,Version,Warn,credits"_s},
    {"setargument", QString("Frame range,"_s.repeated(15) + "Group,Image size,Ok,Prerender"_s)},
    {"setparent", "Cost,Name,Ok,Progress,Sequence,Start Time,Status"_s},
    {"search",
        "Business Type,End Time,Job Id,Job Name,Job Status,Job Type,Normal work,Project Name,Rendering work,"
        "Reset,Search,Start Time"_s},
    {"inputdialog", "Cancel,Group name:,Ok,Please input group name"_s},
};

const char* const Tables[] = {"twtMyRender", "twtLocalTask", "twtDownload"};

/// Marks every translated text.
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

/// A session from sign-in to sign-out, and the window around its content: account, skin, language, size, tray, quit.
class TestPluginSession : public ClientTest
{
    Q_OBJECT

private slots:
    void BeginsASessionInOrder()
    {
        const QSignalSpy login(m_client->Window(), SIGNAL(login(QString, QString, QString, QString)));
        Communication().DeliverSignIn("ann"_s, 401);
        QCOMPARE(TakeJournal(), QString());
        QCOMPARE(Label("lblUserName")->text(), QString());
        QVERIFY(!m_client->Tick(JobListInterval) && !m_client->Tick(UserInfoInterval));
        m_client->SignIn();
        QCOMPARE(TakeJournal(), "GetUserInfo, GetJobList, GetProjectList"_s);
        const QVariantHash session {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s}};
        QVariantHash page = session;
        page.insert(QVariantHash {{"page"_s, 1}, {"pageSize"_s, 18}, {"identifier"_s, 0}});
        QVector<QVariantHash> maps;
        for (const auto& request : qAsConst(Communication().requests)) {
            maps.append(request.map);
            QCOMPARE(request.status, QVariant(CommunicationStandIn::HandedOut));
        }
        QCOMPARE(maps, (QVector<QVariantHash> {session, page, session}));
        const QVariant server = Settings().value("vtr.web/currentserver"_s);
        QCOMPARE(login.value(0), (QVariantList {server, "login-ann"_s, "token-ann"_s, "ann"_s}));
        QCOMPARE(Label("lblUserName")->text(), "login-ann"_s);
        QCOMPARE(Label("lblVersionV")->text(), "4.5.6"_s);
        QVERIFY(m_client->Tick(JobListInterval));
        QCOMPARE(TakeJournal(), "GetJobList"_s);
    }

    void AsksTwiceForTheBalanceAfterASecondSignIn()
    {
        int times = 0;
        for (const char* user : {"ann", "bob"}) {
            m_client->SignIn(QLatin1String(user));
            TakeJournal();
            QVERIFY(m_client->Tick(UserInfoInterval));
            QCOMPARE(TakeJournal().count("GetUserInfo"_s), ++times);
        }
        QCOMPARE(Sent("token"), QVariant("token-bob"_s));
    }

    void ShowsTheBalances()
    {
        const QString zero = QString(QChar(0) + "||login-ann"_s);
        const std::tuple<QVariant, bool, QString> accounts[]
            = {{65.99, false, "A||login-ann"_s}, {256 + 67, false, "C||login-ann"_s},
                {-1, false, "ÿ||login-ann"_s}, {1e300, false, zero}, {qQNaN(), false, zero},
                {QVariantList {1}, false, zero}, {65, true, "<b>1,5</b>|007|<i>Ann</i>"_s}};
        m_client->SignIn();
        for (const auto& [balance, isBound, shown] : accounts) {
            Communication().DeliverUserInfo(
                {{"user_balance"_s, balance}, {"username"_s, "<i>Ann</i>"_s},
                    {"user_rmb_balance"_s, "<b>1,5</b>"_s}, {"user_vso_balance"_s, "007"_s}},
                isBound);
            emit Communication().UserInfoResponse(500, {});
            QStringList texts;
            for (const char* label : {"lblRmb", "lblCyb", "lblUserName"})
                texts.append(Label(label)->text());
            QCOMPARE(texts.join("|"_s), shown);
            QVERIFY(m_client->Shows("lblCyb"_s) == isBound && m_client->Shows("lblCybU"_s) == isBound);
        }
        QVERIFY(Label("lblRmb")->toolTip().contains("&lt;b&gt;1,5"_s));
        QCOMPARE(Label("lblCyb")->toolTip(), "007"_s);
        for (const char* label : {"lblRmb", "lblUserName"})
            QCOMPARE(Label(label)->textFormat(), Qt::PlainText);
    }

    void SignsOutWithTheLocalTasks()
    {
        m_client->SignIn();
        RenderCore().tasks = {{"b"_s}, {"a"_s}};
        emit RenderCore().SubmitListChanged();
        TakeJournal();
        QVERIFY(m_client->Call("SignOut"));
        QVERIFY(m_client->Form()->isVisible());
        RenderCore().tasks = {{"c"_s}};
        emit RenderCore().SubmitListChanged();
        Communication().onRequest = [this] {
            emit Communication().SignOutResponse(200, {});
            m_client->Service()->Hide(1);
        };
        QVERIFY(m_client->Call("SignOut"));
        QCOMPARE(TakeJournal(), "SignOut, RemoveSubmitTasks b,a, SignOut, RemoveSubmitTasks c"_s);
    }

    void EndsTheSessionWhateverTheFarmSays()
    {
        SignInWithJobs(MakeJobs(18), 200);
        m_client->Button("btnNextGroup"_s)->click();
        RenderCore().downloads.insert("d"_s, QVariantMap());
        m_client->Tabs()->setCurrentIndex(2);
        emit Communication().SignOutResponse(500, {});
        QVERIFY(!m_client->Form()->isVisible());
        QVERIFY(!m_client->Tick(JobListInterval) && !m_client->Tick(UserInfoInterval));
        for (const char* table : Tables)
            QCOMPARE(m_client->Table(QLatin1String(table))->rowCount(), 0);
        QCOMPARE(m_client->Button("btnPageOne"_s)->text(), "1"_s);
        QVERIFY(!m_client->Shows("btnPageTwo"_s) && !m_client->Shows("btnPreGroup"_s));
        m_client->Tabs()->setCurrentIndex(0);
        QCOMPARE(Sent("page"), QVariant(1));
    }

    void DressesAllFormsInANewSkin()
    {
        UiLoaderStandIn& loader = m_client->uiLoader;
        QCOMPARE(loader.skinSettings, QStringList {":/teal/com.vtr.qsclient.ini"_s});
        auto* pages = m_client->Find<QToolBox>(QString());
        for (const char* name : DressedForms)
            Form(name)->setAutoFillBackground(false);
        emit loader.SkinChanged("plum"_s);
        QCOMPARE(loader.skinSettings.last(), ":/plum/com.vtr.qsclient.ini"_s);
        for (const char* name : DressedForms) {
            QVERIFY2(Form(name)->styleSheet().contains("/* plum %1 */"_s.arg(QLatin1String(name))), name);
            const bool isDialog = qstrcmp(name, "qsclient") != 0;
            const bool isInput = qstrcmp(name, "inputdialog") == 0;
            QVERIFY2(Form(name)->autoFillBackground() != isInput, name);
            QCOMPARE(Form(name)->windowFlags().testFlag(Qt::FramelessWindowHint), isDialog);
            QCOMPARE(Form(name)->windowIcon().availableSizes() == MainIcon, isDialog && !isInput);
        }
        QCOMPARE(TrayIcon()->icon().availableSizes(), MainIcon);
        const QWidget* groupMenu = m_client->Form()->findChild<QMenu*>();
        for (const QWidget* widget : {static_cast<const QWidget*>(m_client->Window()), groupMenu})
            QVERIFY(widget->styleSheet().contains("/* plum menu */"_s));
        pages->setCurrentIndex(1);
        pages->setCurrentIndex(0);
        QCOMPARE(pages->itemIcon(0).availableSizes(), QList<QSize> {QSize(3, 3)});
        QCOMPARE(pages->itemIcon(1).availableSizes(), QList<QSize> {QSize(2, 2)});
        emit loader.SkinChanged("no such skin"_s);
        QCOMPARE(m_client->Form()->styleSheet() + m_client->Window()->styleSheet(), QString());

        // The skin's layout file replaces the form's own resizing.
        loader.layouts.clear();
        loader.skin = "plum"_s;
        RenderCore().seenEvents.clear();
        QResizeEvent resize(QSize(500, 400), m_client->Form()->size());
        QVERIFY(QCoreApplication::sendEvent(m_client->Form(), &resize));
        QCOMPARE(loader.layouts, QStringList {":/plum/com.vtr.qsclient.ini"_s});
        QVERIFY(!RenderCore().seenEvents.contains(QEvent::Resize));
    }

    void AsksBeforeItQuits()
    {
        constexpr int StillRunning = 7;
        for (const QString& answer :
            {MessageBoxStandIn::Refusal(), QString(), MessageBoxStandIn::Consent()}) {
            init();
            const bool quits = answer == MessageBoxStandIn::Consent();
            RenderCore().tasks = {{"c"_s}, {"a"_s}, {"b"_s}};
            emit RenderCore().SubmitListChanged();
            MessageBox().answer = answer;
            const auto close = [this] {
                QCoreApplication::exit(StillRunning); // the client's own exit overrides this one
                m_client->Button("btnSystemClose"_s)->click();
            };
            Later(this, close);
            QCOMPARE(QCoreApplication::exec(), quits ? 0 : StillRunning);
            QCOMPARE(MessageBox().messages,
                QStringList {"4|QuillStar Client||Are you sure to quit?|Cancel,Ok|0"_s});
            QCOMPARE(m_client->Form()->isVisible(), !quits);
            QCOMPARE(TakeJournal(), quits ? "ShowMessage, RemoveSubmitTasks c,a,b"_s : "ShowMessage"_s);
        }
    }

    void ComesForwardUnderItsOwnKeyOnly()
    {
        m_client->Form()->hide();
        for (const char* key : {"com.vtr.search", "COM.VTR.QSCLIENT", "", "com.vtr.qsclient"}) {
            QVERIFY(!m_client->Form()->isVisible());
            emit m_client->uiLoader.ShowWindow(QLatin1String(key));
        }
        QVERIFY(m_client->Form()->isVisible());
    }

    void MaximisesAndRestoresExactly()
    {
        SignInWithJobs(MakeJobs(18), 40);
        const QSignalSpy resized(m_client->Window(), SIGNAL(windowSizeChanged()));
        const QSize before = m_client->Tabs()->size();
        const QSize delta = QGuiApplication::primaryScreen()->availableSize() - m_client->Form()->size();
        QPushButton* page = m_client->Button("btnPageOne"_s);
        const QPoint place = page->pos();
        page->move(0, 0);
        Jobs()->setColumnWidth(5, 1);
        m_client->Button("btnSystemMaxnormal"_s)->click();
        QVERIFY(m_client->Shows("btnSystemMaxmax"_s) && !m_client->Shows("btnSystemMaxnormal"_s));
        QCOMPARE(m_client->Tabs()->minimumSize(), before + delta);
        QVERIFY(m_client->Form()->isMaximized());
        QTRY_COMPARE_WITH_TIMEOUT(resized.size(), 1, Patience);
        for (const int column : {0, 5})
            QCOMPARE(Jobs()->columnWidth(column), Jobs()->width() / 6);
        QCOMPARE(page->pos(), QPoint(place.x(), 0));

        m_client->Button("btnSystemMaxmax"_s)->click();
        QVERIFY(!m_client->Shows("btnSystemMaxmax"_s) && m_client->Shows("btnSystemMaxnormal"_s));
        QCOMPARE(m_client->Tabs()->maximumSize(), before);
        QVERIFY(!m_client->Form()->isMaximized());
        QTRY_COMPARE_WITH_TIMEOUT(resized.size(), 2, Patience);
    }

    void TogglesBetweenTheLanguages()
    {
        QPushButton* button = m_client->Button("btnLang"_s);
        button->click();
        for (const char* state : {"normal", "hover", "pressed"})
            QVERIFY(button->styleSheet().contains(":/default/de_%1.png"_s.arg(QLatin1String(state))));
        button->click();
        QVERIFY(button->styleSheet().contains(":/default/en_normal.png"_s));
        QCOMPARE(TakeJournal(), "SetLanguage /lang/vtr_de.qm, SetLanguage /lang/vtr_en.qm"_s);
    }

    void TranslatesEveryFormAgain()
    {
        MarkingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        m_client->SignIn();
        RenderCore().tasks = {{"t"_s}};
        emit m_client->uiLoader.LanguageChanged("vtr_de.qm"_s);
        QCoreApplication::removeTranslator(&translator);
        for (const Captions& captions : Translated)
            QCOMPARE(Marked(Form(captions.form)).join(","_s), captions.texts);
        QCOMPARE(Marked(m_client->Window()).join(","_s),
            "Continue submit,Delete Tasks,Download,Open file path,Redownload,Set argument,Set parent"_s);
        QCOMPARE(m_client->uiLoader.trayMenu.actions().last()->text(), "~Quit"_s);
        QCOMPARE(TrayIcon()->toolTip(), "~Quillstar Client"_s);

        // The status filter sends the status code in any language.
        auto* filters = m_client->Form()->findChildren<QListWidget*>().at(0);
        for (const int row : {0, 1, 2}) {
            emit filters->itemClicked(filters->item(row));
            QCOMPARE(Conditions().value("status"_s).toInt(), QVector<int>({1, 4, 0}).at(row));
        }
    }

    void AnswersADoubleClickOnTheTrayIcon()
    {
        m_client->Form()->hide();
        emit TrayIcon()->activated(QSystemTrayIcon::Trigger);
        QCOMPARE(TakeJournal(), QString());
        emit TrayIcon()->activated(QSystemTrayIcon::DoubleClick);
        QCOMPARE(TakeJournal(), "OpenWindow com.vtr.authclient"_s);
        QVERIFY(!m_client->Form()->isVisible());
        m_client->SignIn();
        TakeJournal();
        emit TrayIcon()->activated(QSystemTrayIcon::DoubleClick);
        QCOMPARE(TakeJournal(), QString());
        QVERIFY(m_client->Form()->isVisible());
    }

    void BuildsTheTrayMenuOnTheLoadersOwn()
    {
        for (int round = 0; round < 2; ++round)
            m_client->SignIn();
        const QList<QAction*> entries = m_client->uiLoader.trayMenu.actions();
        QCOMPARE(TrayIcon()->contextMenu(), &m_client->uiLoader.trayMenu);
        QCOMPARE(entries.size(), 4);
        QCOMPARE(entries.at(0)->menu(), &m_client->uiLoader.skinMenu);
        QCOMPARE(entries.at(1)->menu(), &m_client->uiLoader.languageMenu);
        QCOMPARE(QVariant(entries.at(2)->text()), Settings().value("vtr.web/currentserver"_s));
        Later(entries.at(3), [&] { entries.at(3)->trigger(); });
        QCOMPARE(QCoreApplication::exec(), 0);
    }

private:
    QLabel* Label(const char* name) const { return m_client->Find<QLabel>(QLatin1String(name)); }
    QSystemTrayIcon* TrayIcon() const { return m_client->Window()->findChild<QSystemTrayIcon*>(); }

    /// All texts of a form that the translator marked, sorted.
    static QStringList Marked(const QWidget* form)
    {
        QStringList texts {form->windowTitle()};
        for (const QObject* object : form->findChildren<QObject*>()) {
            texts.append(object->property("text").toString());
            if (object->isWidgetType())
                texts.append(object->property("toolTip").toString());
            if (const auto* tabs = qobject_cast<const QTabWidget*>(object))
                texts << tabs->tabText(0) << tabs->tabText(1) << tabs->tabText(2);
            const auto* model = qobject_cast<const QAbstractItemModel*>(object);
            for (int row = 0; model && row < model->rowCount(); ++row)
                texts.append(model->index(row, 0).data().toString());
            for (int column = 0; model && column < model->columnCount(); ++column)
                texts.append(model->headerData(column, Qt::Horizontal).toString());
        }
        texts = texts.filter(QRegularExpression("^~"_s)).replaceInStrings("~"_s, QString());
        texts.sort();
        return texts;
    }
};

QTEST_MAIN(TestPluginSession)
#include "tst_plugin_session.moc"
