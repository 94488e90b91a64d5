#include "tests/standins/client_test.h"

#include <QAction>
#include <QComboBox>
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
        QCOMPARE(TakeJournal(), QStringList());
        QCOMPARE(Label("lblUserName")->text(), QString());
        QVERIFY(!m_client->Tick(JobListInterval) && !m_client->Tick(UserInfoInterval));
        m_client->SignIn();
        QCOMPARE(TakeJournal(), (QStringList {"GetUserInfo"_s, "GetJobList"_s, "GetProjectList"_s}));
        const QVariantHash session {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s}};
        QVariantHash page = session;
        page.insert(QVariantHash {{"page"_s, 1}, {"pageSize"_s, 18}, {"identifier"_s, 0}});
        const QVariantHash maps[] = {session, page, session};
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(Communication().requests.at(i).map, maps[i]);
            QCOMPARE(Communication().requests.at(i).status, QVariant(CommunicationStandIn::HandedOut));
        }
        const QVariant server = Settings().value("vtr.web/currentserver"_s);
        QCOMPARE(login.value(0), (QVariantList {server, "login-ann"_s, "token-ann"_s, "ann"_s}));
        QCOMPARE(Label("lblUserName")->text(), "login-ann"_s);
        QCOMPARE(Label("lblVersionV")->text(), "4.5.6"_s);
        QVERIFY(m_client->Tick(JobListInterval));
        QCOMPARE(TakeJournal(), QStringList {"GetJobList"_s});
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

    void ShowsABalanceAsOneCharacter()
    {
        const QPair<QVariant, int> balances[] = {{65.99, 65}, {256 + 67, 67}, {0xe9, 0xe9}, {-1, 0xff},
            {1e300, 0}, {qQNaN(), 0}, {QVariantList {1}, 0}};
        m_client->SignIn();
        for (const auto& [balance, character] : balances) {
            Communication().DeliverUserInfo({{"user_balance"_s, balance}, {"username"_s, "other"_s}}, false);
            QCOMPARE(Label("lblRmb")->text(), QString(QChar(character)));
        }
        QVERIFY(!m_client->Shows("lblCyb"_s) && !m_client->Shows("lblCybU"_s));
        QCOMPARE(Label("lblUserName")->text(), "login-ann"_s);
    }

    void ShowsBothBalancesOfABoundAccountAsSent()
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
        QCOMPARE(TakeJournal(),
            (QStringList {"SignOut"_s, "RemoveSubmitTasks b,a"_s, "SignOut"_s, "RemoveSubmitTasks c"_s}));
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
            const bool isInput = qstrcmp(name, "inputdialog") == 0;
            QVERIFY2(Form(name)->autoFillBackground() != isInput, name);
            const bool isDialog = qstrcmp(name, "qsclient") != 0;
            const bool hasIcon = isDialog && !isInput;
            QCOMPARE(Form(name)->windowFlags().testFlag(Qt::FramelessWindowHint), isDialog);
            QCOMPARE(Form(name)->windowIcon().availableSizes() == MainIcon, hasIcon);
        }
        QCOMPARE(TrayIcon()->icon().availableSizes(), MainIcon);
        for (QWidget* widget :
            {m_client->Window(), static_cast<QWidget*>(m_client->Form()->findChild<QMenu*>())})
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
            QTimer::singleShot(0, this, [this] {
                QCoreApplication::exit(StillRunning); // the client's own exit overrides this one
                m_client->Button("btnSystemClose"_s)->click();
            });
            QCOMPARE(QCoreApplication::exec(), quits ? 0 : StillRunning);
            QCOMPARE(MessageBox().messages,
                QStringList {"4|QuillStar Client||Are you sure to quit?|Cancel,Ok|0"_s});
            QCOMPARE(m_client->Form()->isVisible(), !quits);
            QCOMPARE(TakeJournal().mid(1), quits ? QStringList {"RemoveSubmitTasks c,a,b"_s} : QStringList());
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
        QCOMPARE(
            TakeJournal(), (QStringList {"SetLanguage /lang/vtr_de.qm"_s, "SetLanguage /lang/vtr_en.qm"_s}));
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
        for (const char* entry : {"~Download", "~Set parent", "~Continue submit", "~Delete Tasks",
                 "~Set argument", "~Open file path", "~Redownload"})
            QVERIFY2(m_client->Entry(entry), entry);
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
        QTimer::singleShot(0, entries.at(3), &QAction::trigger);
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
            for (int i = 0; i < object->property("count").toInt(); ++i) {
                if (const auto* list = qobject_cast<const QListWidget*>(object))
                    texts.append(list->item(i)->text());
                if (const auto* choices = qobject_cast<const QComboBox*>(object))
                    texts.append(choices->itemText(i));
            }
            const auto* table = qobject_cast<const QTableWidget*>(object);
            for (int column = 0; table && column < table->columnCount(); ++column)
                texts.append(table->model()->headerData(column, Qt::Horizontal).toString());
        }
        texts = texts.filter(QRegularExpression("^~"_s)).replaceInStrings("~"_s, QString());
        texts.sort();
        return texts;
    }
};

QTEST_MAIN(TestPluginSession)
#include "tst_plugin_session.moc"
