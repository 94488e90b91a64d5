#include "tests/standins/client_test.h"
#include "tests/support/waiting.h"

#include <QDesktopServices>
#include <QUrl>

#include <random>

namespace {

enum Column { Name, StartTime, Status, Progress, SceneFile, Warn };

/// Name, stage, error code, and what the row shows: status, text, status tip, what's this, icon path.
const std::tuple<const char*, int, int, QStringList> Troubles[] = {
    {"upload", 5, 0, {"upload"_s, "3 of 9"_s, {}, {}, {}}},
    {"failed upload", 5, 3, {"uploadfail"_s, {}, {}, "msg"_s, ":/teal/warning.png"_s}},
    {"textures", 4, 9, {"copysamefail"_s, {}, "Lacked of texture files:"_s, "msg"_s, ":/teal/warning.png"_s}},
    {"well", 2, 0, {"compress"_s, {}, {}, "msg"_s, {}}},
};

const QString ShortMenu = "Continue submit,Delete Tasks"_s;
const QString FullMenu = "Continue submit,Delete Tasks,Set argument"_s;
/// Name, scene file, stage, whether the account wants the entry, whether the row is checked, and the menu.
const std::tuple<const char*, QString, int, bool, bool, QString> MenuCases[]
    = {{"ma", "a.ma"_s, 3, true, true, FullMenu}, {"mb", "x.y.mb"_s, 4, true, true, FullMenu},
        {"capitals", "a.MA"_s, 3, true, true, ShortMenu}, {"early", "a.ma"_s, 2, true, true, ShortMenu},
        {"unwanted", "a.ma"_s, 3, false, true, ShortMenu}, {"nothing checked", "a.ma"_s, 3, true, false, {}}};

/// The call that answers, the signal that reports, and the question.
const std::tuple<const char*, void (VTRenderCoreInterface::*)(QString, QStringList), QString> Reports[] = {
    {"LackTextureAnswer", &VTRenderCoreInterface::lackedTexture,
        "4|b||Continue next step?\nBelow files are missing:\ny\nz|Cancel,Ok|0"_s},
    {"UploadRetryAnswer", &VTRenderCoreInterface::failFile,
        "4|b|Retry uploading?Failed to upload files:|y\nz|Cancel,Ok|1"_s},
};

const QString Notice = "2|QuillStar Client||msg|Ok,|1"_s;
const QString LackQuestion = "4|t|Lacked of texture files:|msg|Cancel,Submit|1"_s;
/// Name, error code, column, answer, calls and message.
const std::tuple<const char*, int, int, QString, QString, QString> DoubleClicks[] = {
    {"no error", 0, Warn, {}, {}, {}},
    {"other column", 9, Status, {}, {}, {}},
    {"notice", 3, Warn, MessageBoxStandIn::Consent(), "ShowMessage"_s, Notice},
    {"refused", 9, Warn, MessageBoxStandIn::Refusal(), "ShowMessage"_s, LackQuestion},
    {"agreed", 9, Warn, MessageBoxStandIn::Consent(), "ShowMessage, ContinueSubmit t.1"_s, LackQuestion},
};

QVariantMap MakeDownload(
    const QString& destination, int status = 1, int progress = 30, const QString& message = "<i>msg</i>"_s)
{
    return {{"destFile"_s, destination}, {"srcFile"_s, "farm/frame.png"_s}, {"jobId"_s, "id-1"_s},
        {"status"_s, status}, {"progress"_s, progress}, {"msg"_s, message}};
}

} // namespace

/// A render core that knows the order of its downloads, or gives a wrong id.
class OrderedRenderCore : public RenderCoreStandIn
{
    Q_OBJECT

public:
    Q_INVOKABLE QString DownloadTaskIdAt(int index)
    {
        asked.append(index);
        const QStringList ids = downloads.keys();
        return isWrong ? "none"_s : ids.value(index);
    }

    bool isWrong = false;
    QVector<int> asked;
};

/// What the desktop is asked to open.
class OpenedUrls : public QObject
{
    Q_OBJECT

public:
    QStringList urls;

public slots:
    void Open(const QUrl& url) { urls.append(url.toString()); }
};

/// The local submission tasks with their questions, and the downloads with the account's switches for them.
class TestPluginTransfers : public ClientTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // The file manager of whoever runs the test is not asked.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    }

    void AsksWhereAPageOfDownloadsBegins_data()
    {
        QTest::addColumn<bool>("isWrong");
        QTest::newRow("known") << false;
        QTest::newRow("wrong id") << true;
    }
    void AsksWhereAPageOfDownloadsBegins()
    {
        OrderedRenderCore core;
        QFETCH(bool, isWrong);
        core.isWrong = isWrong;
        for (int number = 1; number <= 40; ++number)
            core.downloads.insert(Numbered("d"_s, number), MakeDownload("f"_s));
        m_client.reset();
        m_client = std::make_unique<Client>();
        m_client->leftOut = QStringList {"VTRenderCoreInterface"_s};
        m_client->Start();
        m_client->Context()->registerService({"VTRenderCoreInterface"_s}, &core);
        QVERIFY(m_client->Open());
        m_client->Tabs()->setCurrentIndex(2);
        emit core.DownloadListChanged();
        m_client->Button("btnNextPage"_s)->click();
        QCOMPARE(core.asked.value(core.asked.size() - 1), 18);
        QCOMPARE(Downloads()->item(0, Name)->data(Qt::UserRole).toString(), "d19"_s);
        m_client.reset();
    }

    void ShowsTheTasksWhenTheirListChanges()
    {
        ShowTask({"t2"_s, "/scenes/a.b/scene.v2.ma"_s, "10:00"_s, "<b>message</b>"_s, "up"_s, 1, 55});
        ShowTask({"t1"_s, "other.max"_s, {}, {}, {}, 8});
        QCOMPARE(m_client->Tabs()->currentIndex(), 1);
        QCOMPARE(m_client->RunningTimers(1000).size(), 1);
        QCOMPARE(Cells(Tasks(), 0),
            "scene.v2|t2, 10:00|false, analyze|1, 55%, /scenes/a.b/scene.v2.ma|, <b>message</b>|"_s);
        QCOMPARE(Checks(Tasks()), "--"_s);
        QCOMPARE(Tasks()->item(1, Status)->text(), "Unknown"_s);
    }

    void RefreshesItsRowsInPlace()
    {
        for (const char* id : {"t3", "t1", "t2"})
            ShowTask({QLatin1String(id), "a.ma"_s});
        const QTableWidgetItem* kept = Tasks()->item(2, Name);
        RenderCore().tasks = {{"t3"_s, "a.ma"_s}, {"t2"_s, "a.ma"_s, "11:00"_s, {}, {}, 8, -5}};
        QSignalSpy changes(Tasks(), &QTableWidget::itemChanged);
        for (int round = 0; round < 2; ++round) {
            changes.clear();
            QVERIFY(m_client->Tick(1000));
            QCOMPARE(Tasks()->rowCount(), 2);
            QCOMPARE(Tasks()->item(1, Name), kept);
            QCOMPARE(Cells(Tasks(), 1), "a|t2, 11:00|true, |8, 0%, a.ma|, |"_s);
            QCOMPARE(changes.isEmpty(), round > 0);
        }
    }

    void ShowsTroubleInTheWarnColumn_data() { AddRows(Troubles); }
    void ShowsTroubleInTheWarnColumn()
    {
        const auto& [name, stage, error, shown] = Row(Troubles);
        ShowTask({"t1"_s, "a.ma"_s});
        RenderCore().tasks = {{"t1"_s, "a.ma"_s, {}, "msg"_s, "3 of 9"_s, stage, 0, error}};
        QVERIFY(m_client->Tick(1000));
        const QTableWidgetItem* warn = Tasks()->item(0, Warn);
        QCOMPARE((QStringList {Tasks()->item(0, Status)->text(), warn->text(), warn->statusTip(),
                     warn->whatsThis(), warn->data(Qt::UserRole).toString()}),
            shown);
        QCOMPARE(warn->icon().isNull(), shown.last().isEmpty());
        RenderCore().tasks = {{"t1"_s, "a.ma"_s, {}, "<b>new</b>"_s, {}, 6}};
        QVERIFY(m_client->Tick(1000));
        QVERIFY(warn->icon().isNull());
        QVERIFY(warn->toolTip().contains("&lt;b&gt;new"_s));
    }

    void FetchesArgumentsOnceAfterTheAnalysis()
    {
        const QVariantList arguments {QVariantMap {{"width"_s, 640}}};
        ShowTask({"t1"_s, "a.ma"_s, {}, {}, {}, 2, 0, 0, arguments});
        int reads = 0;
        for (const int stage : {2, 3, 3}) {
            RenderCore().onArguments = [&reads] { ++reads; };
            RenderCore().tasks[0].stage = stage;
            QVERIFY(m_client->Tick(1000));
        }
        QCOMPARE(reads, 1);
        QCOMPARE(Tasks()->item(0, SceneFile)->data(Qt::UserRole).toList(), arguments);
    }

    void KeepsTheRowsOfAPageWhileTasksMove()
    {
        std::mt19937 random(5);
        QVector<RenderCoreStandIn::Task>& tasks = RenderCore().tasks;
        for (int i = 0; i < 60; ++i)
            tasks.append({Numbered("t"_s, i), Numbered("scene"_s, i)});
        emit RenderCore().SubmitListChanged();
        m_client->Button("btnPageTwo"_s)->click();
        for (int round = 0; round < 20; ++round) {
            std::shuffle(tasks.begin(), tasks.end(), random);
            tasks.remove(int(random() % tasks.size()));
            QStringList expected;
            for (RenderCoreStandIn::Task& task : tasks)
                task.startTime = "%1 of %2"_s.arg(round).arg(task.id);
            const QStringList ids = Values(Tasks(), Name, Qt::UserRole);
            for (const QString& id : ids) {
                if (RenderCore().GetSubmitTaskIds().contains(id))
                    expected.append("%1 of %2"_s.arg(round).arg(id));
            }
            QVERIFY(m_client->Tick(1000));
            QCOMPARE(Values(Tasks(), StartTime), expected);
        }
    }

    void TurnsBackAPageWhenTasksGo()
    {
        for (int i = 37; i > 0; --i)
            RenderCore().tasks.append({Numbered("t"_s, i)});
        emit RenderCore().SubmitListChanged();
        m_client->Button("btnPageThree"_s)->click();
        Check(Tasks(), {0});
        MessageBox().answer = MessageBoxStandIn::Consent();
        m_client->Entry("Delete Tasks")->trigger();
        QCOMPARE(TakeJournal(), "ShowMessage, RemoveSubmitTasks by user t01"_s);
        QCOMPARE(Tasks()->rowCount(), 18);
        QCOMPARE(Tasks()->item(17, Name)->data(Qt::UserRole).toString(), "t02"_s);

        // A tick empties the page; the next list change turns it back and then keeps its rows.
        RenderCore().tasks.resize(18);
        QVERIFY(m_client->Tick(1000));
        QCOMPARE(Tasks()->rowCount(), 0);
        emit RenderCore().SubmitListChanged();
        const QTableWidgetItem* kept = Tasks()->item(0, Name);
        emit RenderCore().SubmitListChanged();
        QCOMPARE(Tasks()->item(0, Name), kept);
        QCOMPARE(kept->data(Qt::UserRole).toString(), "t37"_s);
        QVERIFY(m_client->Call("StopJobs"));
        QVERIFY(m_client->Call("RecoverJobs"));
        QCOMPARE(TakeJournal(), "StopSubmitTasks"_s);
    }

    void OffersItsMenu_data() { AddRows(MenuCases); }
    void OffersItsMenu()
    {
        const auto& [name, sceneFile, stage, wanted, checked, menu] = Row(MenuCases);
        Settings().insert("vtr.account.ann/setargument"_s, wanted);
        m_client->SignIn();
        ShowTask({"t1"_s, sceneFile, {}, {}, {}, stage});
        QVERIFY(m_client->Tick(1000));
        QVERIFY(m_client->Call("ClickedCell", 0, 0));
        Tasks()->item(0, Name)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
        QCOMPARE(MenuOf(Tasks()), menu);
        QCOMPARE(MenuOf(Tasks()), QString());
        m_client->Entry("Continue submit")->trigger();
        Tasks()->setCurrentCell(0, 0);
        m_client->Entry("Continue submit")->trigger();
        QCOMPARE(TakeJournal(), "ContinueSubmit t1"_s);
    }

    void ExplainsTroubleOnADoubleClick_data() { AddRows(DoubleClicks); }
    void ExplainsTroubleOnADoubleClick()
    {
        const auto& [name, error, column, answer, effect, message] = Row(DoubleClicks);
        ShowTask({"t.1"_s, "a.ma"_s, {}, "msg"_s, {}, 4, 0, error});
        QVERIFY(m_client->Tick(1000));
        MessageBox().answer = answer;
        emit Tasks()->cellDoubleClicked(0, column);
        QVERIFY(m_client->Call("CellDoubleClicked", -1, int(Warn)));
        QCOMPARE(TakeJournal(), effect);
        QCOMPARE(MessageBox().messages.join("\n"_s), message);
    }

    void AsksAboutReportsOneByOne_data() { AddRows(Reports); }
    void AsksAboutReportsOneByOne()
    {
        const auto& [answer, report, question] = Row(Reports);
        const auto Report = [this, signal = report](const QString& id, const QStringList& files) {
            emit(RenderCore().*signal)(id, files);
        };
        Report("b.2"_s, {"old"_s});
        Report("a.1"_s, {"x"_s});
        Report("b.2"_s, {"y"_s, "z"_s});
        QVERIFY(MessageBox().messages.isEmpty());
        MessageBox().answer = MessageBoxStandIn::Consent();
        MessageBox().whileOpen = [this, Report] {
            Report("0"_s, {"w"_s});
            QVERIFY(m_client->Tick(1000));
            QCOMPARE(MessageBox().messages.size(), 1);
        };
        QVERIFY(m_client->Tick(1000));
        for (const QString& refusal : {MessageBoxStandIn::Refusal(), QString(), QString()}) {
            MessageBox().answer = refusal;
            QVERIFY(m_client->Tick(1000));
        }
        QVERIFY(m_client->RunningTimers(1000).isEmpty());
        QCOMPARE(TakeJournal(),
            "ShowMessage, %1 yes a.1, ShowMessage, %1 no 0, ShowMessage"_s.arg(QLatin1String(answer)));
        QCOMPARE(MessageBox().messages.last(), question);
    }

    void ShowsTheLiveMapOfDownloads()
    {
        RenderCore().downloads = {{"d1"_s, MakeDownload("/out//shot/frame.1.png"_s)}, {"d2"_s, "no map"_s},
            {"d3"_s, MakeDownload(QString(), 17, 150)}, {"d4"_s, MakeDownload("b"_s)}};
        m_client->Tabs()->setCurrentIndex(2);
        QCOMPARE(Cells(Downloads(), 0),
            "frame.1.png|d1, farm/frame.png|id-1, /out//shot/frame.1.png|, 30%, Downloading|1, |"_s);
        QCOMPARE(Checks(Downloads()), "----"_s);
        QVERIFY(Downloads()->item(0, 4)->toolTip().contains("&lt;i&gt;msg"_s));
        RenderCore().downloads.remove("d4"_s);
        RenderCore().downloads["d1"_s] = MakeDownload("a"_s, 2, 100, "new"_s);
        QVERIFY(m_client->Tick(1000));
        QCOMPARE(Values(Downloads(), 4).join(","_s), "Finished,Waiting,Unkown,Downloading"_s);
        QCOMPARE(Downloads()->item(0, 4)->toolTip(), "new"_s);
        QVERIFY(Bar(Downloads(), 0)->styleSheet().contains("rgb(125,180,75)"_s));
    }

    void FindsItsPlaceAgainWhenTasksComeAndGo()
    {
        for (const bool isTold : {true, false}) {
            init();
            AddDownloads(60);
            m_client->Tabs()->setCurrentIndex(2);
            m_client->Button("btnPageTwo"_s)->click();
            RenderCore().downloads.remove("d20"_s);
            RenderCore().downloads.insert("d00a"_s, MakeDownload("a"_s));
            if (isTold)
                emit RenderCore().DownloadListChanged();
            else
                QVERIFY(m_client->Tick(1000));
            m_client->Button("btnPageThree"_s)->click();
            QCOMPARE(Downloads()->item(0, 0)->data(Qt::UserRole).toString(), "d36"_s);
        }
    }

    void CountsInTheBackground()
    {
        SignInWithJobs(MakeJobs(1), 1);
        AddDownloads(37);
        QCOMPARE(m_client->Tabs()->currentIndex(), 0);
        QVERIFY(!m_client->Shows("btnPageTwo"_s));
        m_client->Tabs()->setCurrentIndex(2);
        QVERIFY(m_client->Shows("btnPageThree"_s));
    }

    void DeletesAndRedownloadsWhatIsChecked()
    {
        AddDownloads(20);
        m_client->Tabs()->setCurrentIndex(2);
        m_client->Button("btnPageTwo"_s)->click();
        m_client->Entry("Redownload")->trigger();
        Check(Downloads(), {0, 1});
        m_client->Entry("Redownload")->trigger();
        MessageBox().answer = MessageBoxStandIn::Consent();
        for (const char* button : {"btnDelete", "btnPause", "btnRecover"})
            m_client->Button(QLatin1String(button))->click();
        QCOMPARE(TakeJournal(),
            "RedownloadTasks , RedownloadTasks d18,d19, ShowMessage, RemoveDownloadTasks d18,d19"_s);
        QCOMPARE(Downloads()->rowCount(), 18);
        QVERIFY(m_client->Call("ClickedCell", 0, 1));
        QCOMPARE(MenuOf(Downloads()), "Open file path,Redownload"_s);
    }

    void OpensTheFolderOfTheCurrentFile()
    {
        OpenedUrls opened;
        QDesktopServices::setUrlHandler("file"_s, &opened, "Open");
        RenderCore().downloads
            = {{"d1"_s, MakeDownload("/out//shot/frame.png"_s)}, {"d2"_s, MakeDownload(QString())}};
        m_client->Tabs()->setCurrentIndex(2);
        for (const int row : {-1, 1, 0}) {
            Downloads()->setCurrentCell(row, 0);
            m_client->Entry("Open file path")->trigger();
        }
        EVENTUALLY(!opened.urls.isEmpty());
        QDesktopServices::unsetUrlHandler("file"_s);
        QCOMPARE(opened.urls, QStringList("file:///out/shot"_s));
    }

    void FollowsTheSwitchesOfTheAccount()
    {
        const char* const finish = SIGNAL(DownloadFinish(QString));
        for (const char* name : {"popupfinish", "soundfinish", "autodownload"}) {
            init();
            const QString key = "vtr.account.ann/%1"_s.arg(QLatin1String(name));
            Settings().insert(key, true);
            emit m_client->settings.SettingsUpdated();
            m_client->SignIn();
            QCOMPARE(RenderCore().receivers(finish), key.endsWith("finish"_s) ? 1 : 0);
            TakeJournal();
            emit RenderCore().DownloadFinish("frame.png"_s);
            QCOMPARE(TakeJournal(), key.endsWith("soundfinish"_s) ? "Finish frame.png"_s : QString());
            Settings().insert(key, false);
            emit m_client->settings.SettingsUpdated();
            QCOMPARE(RenderCore().receivers(finish), 0);
        }
    }

private:
    void ShowTask(const RenderCoreStandIn::Task& task) const
    {
        RenderCore().tasks.append(task);
        emit RenderCore().SubmitListChanged();
        TakeJournal();
    }

    void AddDownloads(int count) const
    {
        for (int i = 0; i < count; ++i)
            RenderCore().downloads.insert(Numbered("d"_s, i), MakeDownload("a"_s));
        emit RenderCore().DownloadListChanged();
    }
};

QTEST_MAIN(TestPluginTransfers)
#include "tst_plugin_transfers.moc"
