#include "tests/standins/client_test.h"

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

} // namespace

/// The local submission tasks and the questions about them.
class TestPluginTasks : public ClientTest
{
    Q_OBJECT

private slots:
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

private:
    void ShowTask(const RenderCoreStandIn::Task& task) const
    {
        RenderCore().tasks.append(task);
        emit RenderCore().SubmitListChanged();
        TakeJournal();
    }
};

QTEST_MAIN(TestPluginTasks)
#include "tst_plugin_tasks.moc"
