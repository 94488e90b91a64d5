#include "client_test.h"

#include <QAction>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTranslator>

namespace {

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

struct Answer
{
    const char* name;
    QString button;
    bool quits;
};
const Answer answers[] = {{"cancel", MessageBoxStandIn::Refusal(), false}, {"closed", QString(), false},
    {"ok", MessageBoxStandIn::Consent(), true}};

} // namespace

/// What surrounds the content: skins, languages, size, tray and the way out.
class TestPluginChrome : public ClientTest
{
    Q_OBJECT

private slots:
    void takesItsStyleSheetsFromTheSkin()
    {
        QCOMPARE(m_client->uiLoader.skinSettings, QStringList {":/teal/com.vtr.qsclient.ini"_s});
        m_client->Form()->setAutoFillBackground(false);
        emit m_client->uiLoader.SkinChanged("plum"_s);
        QVERIFY(m_client->Form()->autoFillBackground());
        QVERIFY(m_client->Form()->styleSheet().contains("/* plum form */"_s));
        QVERIFY(m_client->Window()->styleSheet().contains("/* plum menu */"_s));
        QVERIFY(m_client->uiLoader.Form("com.vtr.search"_s)->styleSheet().contains("/* plum search */"_s));
        emit m_client->uiLoader.SkinChanged("no such skin"_s);
        QCOMPARE(m_client->Form()->styleSheet() + m_client->Window()->styleSheet(), QString());
        QCOMPARE(m_client->uiLoader.skinSettings.last(), ":/no such skin/com.vtr.qsclient.ini"_s);
    }

    void laysTheFormOutInsteadOfResizingIt()
    {
        m_client->uiLoader.layouts.clear();
        m_client->uiLoader.skin = "plum"_s;
        QResizeEvent resize(QSize(500, 400), m_client->Form()->size());
        QVERIFY(QCoreApplication::sendEvent(m_client->Form(), &resize));
        QEvent move(QEvent::Move);
        QCoreApplication::sendEvent(m_client->Form(), &move);
        QCOMPARE(m_client->uiLoader.layouts, QStringList {":/plum/com.vtr.qsclient.ini"_s});
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
        for (const char* key : {"com.vtr.search", "COM.VTR.QSCLIENT", ""}) {
            emit m_client->uiLoader.ShowWindow(QLatin1String(key));
            QVERIFY(!m_client->Form()->isVisible());
        }
        emit m_client->uiLoader.ShowWindow("com.vtr.qsclient"_s);
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
        const QPushButton* button = m_client->Button("btnLang"_s);
        m_client->Button("btnLang"_s)->click();
        for (const char* state : {"normal", "hover", "pressed"})
            QVERIFY(button->styleSheet().contains(":/default/de_%1.png"_s.arg(QLatin1String(state))));
        m_client->Button("btnLang"_s)->click();
        QCOMPARE(
            TakeJournal(), (QStringList {"SetLanguage /lang/vtr_de.qm"_s, "SetLanguage /lang/vtr_en.qm"_s}));
        QVERIFY(button->styleSheet().contains(":/default/en_normal.png"_s));
    }

    void translatesEverythingAgain()
    {
        QCOMPARE(Headers(),
            "Sequence,Name,Start Time,Progress,Status,Cost,"
            "Name,Start Time,Status,Progress,SceneFile,Warn,"
            "Name,Source,Dest,Progress,Status,Start Time"_s.split(","_s));
        MarkingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        emit m_client->uiLoader.LanguageChanged("vtr_de.qm"_s);
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(Headers().filter(QRegularExpression("^~"_s)).size(), 18);
        QCOMPARE(m_client->Form()->windowTitle(), "~QuillStar Client"_s);
        QCOMPARE(m_client->Button("btnRecover"_s)->toolTip(), "~Recover"_s);
        for (const char* entry : {"~Download", "~Set parent", "~Continue submit", "~Delete Tasks",
                 "~Set argument", "~Open file path", "~Redownload"})
            QVERIFY2(m_client->Entry(entry), entry);
        QCOMPARE(m_client->uiLoader.trayMenu.actions().last()->text(), "~Quit"_s);
        QCOMPARE(m_client->Window()->findChild<QSystemTrayIcon*>()->toolTip(), "~Quillstar Client"_s);
    }

    void answersADoubleClickOnTheTrayIcon()
    {
        auto* icon = m_client->Window()->findChild<QSystemTrayIcon*>();
        m_client->Form()->hide();
        emit icon->activated(QSystemTrayIcon::Trigger);
        QCOMPARE(TakeJournal(), QStringList());
        emit icon->activated(QSystemTrayIcon::DoubleClick);
        QCOMPARE(TakeJournal(), QStringList {"OpenWindow com.vtr.authclient"_s});
        QVERIFY(!m_client->Form()->isVisible());
        m_client->SignIn();
        TakeJournal();
        emit icon->activated(QSystemTrayIcon::DoubleClick);
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
    QStringList Headers() const
    {
        QStringList headers;
        for (const char* name : {"twtMyRender", "twtLocalTask", "twtDownload"}) {
            const QTableWidget* table = m_client->Table(QLatin1String(name));
            for (int column = 0; column < table->columnCount(); ++column)
                headers.append(table->horizontalHeaderItem(column)->text());
        }
        return headers;
    }
};

QTEST_MAIN(TestPluginChrome)
#include "tst_plugin_chrome.moc"
