#include "tests/standins/client_test.h"

namespace {

constexpr int JobListInterval = 15000;
constexpr int UserInfoInterval = 30000;

/// The forms, and how many captions, tool tips, headers and choices each translates.
const QPair<const char*, int> Translated[]
    = {{"qsclient", 64}, {"setargument", 19}, {"setparent", 7}, {"search", 12}, {"inputdialog", 4}};

/// Modal dialogs, and the menu entries that open them.
const std::tuple<const char*, const char*> Dialogs[]
    = {{"setargument", "Set argument"}, {"inputdialog", "Add"}};

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
            = {{65.99, false, "A||login-ann"_s}, {256 + 67, false, "C||login-ann"_s}, {1e300, false, zero},
                {qQNaN(), false, zero}, {65, true, "<b>1,5</b>|007|<i>Ann</i>"_s}};
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
        emit loader.SkinChanged("plum"_s);
        for (const auto& [name, captions] : Translated) {
            QVERIFY2(Form(name)->styleSheet().contains("/* plum %1 */"_s.arg(QLatin1String(name))), name);
            QCOMPARE(
                Form(name)->windowFlags().testFlag(Qt::FramelessWindowHint), qstrcmp(name, "qsclient") != 0);
        }
        QCOMPARE(TrayIcon()->icon().availableSizes(), QList<QSize> {QSize(1, 1)});
        const QWidget* groupMenu = m_client->Form()->findChild<QMenu*>();
        for (const QWidget* widget : {static_cast<const QWidget*>(m_client->Window()), groupMenu})
            QVERIFY(widget->styleSheet().contains("/* plum menu */"_s));
        emit loader.SkinChanged("no such skin"_s);
        QCOMPARE(m_client->Form()->styleSheet() + m_client->Window()->styleSheet(), QString());
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

    void ClearsASessionBeforeTheNextBeginsInsideItsEnd()
    {
        m_client->SignIn();
        RenderCore().tasks.append({"t1"_s, "/scene.ma"_s});
        m_client->Tabs()->setCurrentIndex(1);
        QCOMPARE(Tasks()->rowCount(), 1);
        m_client->Form()->show();
        RenderCore().awaitedEvent = QEvent::Hide;
        RenderCore().onEvent = [this] { SignInWithJobs(MakeJobs(2), 2); };
        emit Communication().SignOutResponse(200, {});
        QCOMPARE(Tasks()->rowCount(), 0);
        QCOMPARE(Jobs()->rowCount(), 2);
    }

    void ClosesItsDialogs_data() { AddRows(Dialogs); }
    void ClosesItsDialogs()
    {
        const auto& [form, action] = Row(Dialogs);
        m_client->SignIn();
        RenderCore().tasks.append({"t1"_s, "/scene.ma"_s});
        emit RenderCore().SubmitListChanged();
        Tasks()->setCurrentCell(0, 0);
        bool isOpen = false;
        bool isClosed = false;
        WhileOpen(form, [&, key = form] {
            isOpen = Form(key)->isVisible();
            emit Communication().SignOutResponse(200, {});
            isClosed = !Form(key)->isVisible();
        });
        const auto menus = m_client->Form()->findChildren<QMenu*>();
        QAction* entry = m_client->Entry(action);
        (entry ? entry : menus.at(0)->actions().at(0))->trigger();
        QVERIFY(isOpen && isClosed);
    }

    void TogglesBetweenTheLanguages()
    {
        for (const char* language : {"de", "en"}) {
            m_client->Button("btnLang"_s)->click();
            QVERIFY(m_client->Button("btnLang"_s)
                        ->styleSheet()
                        .contains(":/default/%1_normal.png"_s.arg(QLatin1String(language))));
        }
        QCOMPARE(TakeJournal(), "SetLanguage /lang/vtr_de.qm, SetLanguage /lang/vtr_en.qm"_s);
    }

    void TranslatesEveryFormAgain()
    {
        MarkingTranslator translator;
        SignInWithJobs(MakeJobs(1));
        RenderCore().tasks = {{"a"_s}};
        RenderCore().downloads = {{"b"_s, QVariantMap()}};
        emit RenderCore().SubmitListChanged();
        m_client->Tabs()->setCurrentIndex(2);
        QCoreApplication::installTranslator(&translator);
        emit m_client->uiLoader.LanguageChanged("vtr_de.qm"_s);
        QCoreApplication::removeTranslator(&translator);
        for (const auto& [form, captions] : Translated)
            QCOMPARE(Marked(Form(form)), captions);
        for (const auto& [table, column] : {std::pair(Jobs(), 4), {Tasks(), 2}, {Downloads(), 4}})
            QVERIFY(Values(table, column).value(0).startsWith("~"_s));
        QVERIFY(m_client->Entry("~Download") && m_client->Entry("~Continue submit"));
        const QList<QAction*> entries = m_client->uiLoader.trayMenu.actions();
        QCOMPARE(entries.at(3)->text(), "~Quit"_s);
        QVERIFY(entries.at(2)->text().startsWith("~stand-in"_s));
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
    /// The number of marked texts in a form.
    static int Marked(const QWidget* form)
    {
        QStringList texts {form->windowTitle()};
        const auto objects = form->findChildren<QObject*>();
        for (const QObject* object : objects) {
            texts << object->property("text").toString() << object->property("toolTip").toString();
            const auto* tabs = qobject_cast<const QTabWidget*>(object);
            for (int tab = 0; tabs && tab < tabs->count(); ++tab)
                texts.append(tabs->tabText(tab));
            const auto* model = qobject_cast<const QAbstractItemModel*>(object);
            for (int row = 0; model && row < model->rowCount(); ++row)
                texts.append(model->index(row, 0).data().toString());
            for (int column = 0; model && column < model->columnCount(); ++column)
                texts.append(model->headerData(column, Qt::Horizontal).toString());
        }
        return texts.filter(QRegularExpression("^~"_s)).size();
    }

    QSystemTrayIcon* TrayIcon() const { return m_client->Window()->findChild<QSystemTrayIcon*>(); }
};

QTEST_MAIN(TestPluginSession)
#include "tst_plugin_session.moc"
