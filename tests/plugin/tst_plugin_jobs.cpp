#include "tests/standins/client_test.h"
#include "tests/support/pictures.h"

#include <limits>

namespace {

struct Action
{
    const char* name; ///< operation of the communication service
    QString button;
    QByteArray answer;
    QString failure;
    bool canBeRefused;
};
const Action Actions[] = {
    {"DeleteJobs", "btnDelete"_s, "DeleteJobResponse", "Delete jobs failed!"_s, false},
    {"StopJobs", "btnPause"_s, "StopJobResponse", "Stop jobs failed!"_s, false},
    {"RecoverJobs", "btnRecover"_s, "RecoverJobResponse", "Recover jobs failed!"_s, true},
    {"RestartJobs", "btnRestart"_s, "RestartJobResponse", "Restart jobs failed!"_s, true},
    {"FullRender", "btnFullRender"_s, "FullRenderResponse", "Full render jobs failed!"_s, true},
};

const QString Question = "4|QuillStar Client||Are you sure to delete these jobs?|Cancel,Ok|0"_s;

QVariantMap List(const QVariant& list, const QVariant& total = 40)
{
    return {{"list"_s, list}, {"total"_s, total}};
}

QVariantMap Order(int number, int manual)
{
    return {{"jobType"_s, "type-%1"_s.arg(number)}, {"subDir"_s, "%1_name-%1"_s.arg(number)},
        {"manual"_s, manual}};
}

const std::tuple<const char*, QString> Sheets[] = {
    {"no sheet", {}},
    {"bars and padding",
        "QTableView::item { padding: 0 10px; } QProgressBar { border-radius: 3px; background: green; }"_s},
    {"texts", "QTableView::item { color: red; } QTableView::item:selected { color: blue; }"_s},
};

} // namespace

/// The job table: filling it from answers, checking its rows, and the actions on the checked jobs.
class TestPluginJobs : public ClientTest
{
    Q_OBJECT

private slots:
    void FillsItsRows()
    {
        QVariantMap job = MakeJob(12, 4, 100);
        job.insert("job_name"_s, "<b>sh & ot</b>"_s);
        SignInWithJobs({job}, 1);
        QCOMPARE(Cells(Jobs(), 0),
            "12|id-12, <b>sh & ot</b>|type-12, time-12|time-12, 100%, Finished|4, 12.5RMB|12.5RMB"_s);
        QVERIFY(Jobs()->item(0, 1)->toolTip().contains("&lt;b&gt;sh &amp; ot"_s));
        QVariantList jobs;
        for (int status = -1; status <= 10; ++status)
            jobs.append(MakeJob(20, status));
        Communication().DeliverJobs(jobs, 12);
        QCOMPARE(Values(Jobs(), 4).join(","_s),
            "Unknown,Waiting,Running,Pause,Pending,Finished,Deleted,To full render,Failed,Arrears,"
            "Pause due to arrears,Unknown"_s);
    }

    void PaintsItsRowsAsPlainQtDoes_data() { AddRows(Sheets); }
    void PaintsItsRowsAsPlainQtDoes()
    {
        QVariantList jobs;
        for (int number = 1; number <= 6; ++number)
            jobs.append(MakeJob(number, number, number * 20));
        SignInWithJobs(jobs, 6);
        Jobs()->item(0, 1)->setText("too long to be shown in one line of a narrow cell"_s);
        Jobs()->item(1, 1)->setText("two\nlines"_s);
        Jobs()->item(0, 2)->setText("  "_s);
        Jobs()->item(4, 1)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        Jobs()->setCurrentCell(2, 1);
        Check(Jobs(), {3});
        const auto picture = [this] {
            QCoreApplication::processEvents();
            return Jobs()->viewport()->grab().toImage();
        };
        picture();
        m_client->Form()->setStyleSheet(std::get<1>(Row(Sheets)));
        picture();
        const QImage ours = picture();
        Jobs()->setItemDelegate(new QStyledItemDelegate(Jobs()));
        for (int row = 0; row < Jobs()->rowCount(); ++row) {
            auto* bar = new QProgressBar;
            bar->setValue(Bar(Jobs(), row)->value());
            bar->setStyleSheet(Bar(Jobs(), row)->styleSheet());
            Jobs()->setCellWidget(row, 3, bar);
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the bars before
        QVERIFY(LookAlike(ours, picture()));
    }

    void KeepsTheCurrentRowWithItsJob()
    {
        SignInWithJobs(MakeJobs(5), 5);
        Jobs()->setCurrentCell(1, 2);
        QVariantList jobs = MakeJobs(5);
        for (const auto& [from, to] : {std::pair(1, 0), {0, 4}}) {
            jobs.move(from, to);
            Communication().DeliverJobs(jobs, 5);
            QCOMPARE(Jobs()->currentRow(), to);
            QCOMPARE(Jobs()->currentColumn(), 2);
        }
        jobs.removeLast();
        Communication().DeliverJobs(jobs, 4);
        QCOMPARE(Jobs()->currentRow(), -1);
    }

    void HandsFinishedJobsOverOnce()
    {
        Settings().insert("vtr.account.ann/autodownload"_s, true);
        const QVariantList jobs {MakeJob(1, 4), MakeJob(2, 1), MakeJob(3, 4), MakeJob(4, 4)};
        SignInWithJobs(jobs, 4);
        QCOMPARE(RenderCore().orders.value(0).value("id-3"_s), QVariant(Order(3, 0)));
        Communication().DeliverJobs(QVariantList {MakeJob(2, 4)} + jobs, 5);
        emit Communication().SignOutResponse(200, {});
        SignInWithJobs(jobs, 4);
        Settings().insert("vtr.account.ann/autodownload"_s, false);
        emit m_client->settings.SettingsUpdated();
        Communication().DeliverJobs({MakeJob(9, 4)}, 1);
        QStringList ordered;
        for (const QVariantMap& order : qAsConst(RenderCore().orders)) {
            const QStringList ids = order.keys();
            ordered.append(ids.join(","_s));
        }
        QCOMPARE(ordered.join(" "_s), "id-1,id-3,id-4 id-2 id-1,id-3,id-4"_s);
    }

    void GoesBackAPageWhenItIsEmpty()
    {
        SignInWithJobs(MakeJobs(18), 40);
        m_client->Button("btnPageThree"_s)->click();
        Communication().DeliverJobs(MakeJobs(4), 40);
        TakeJournal();
        Communication().DeliverJobs({}, 36);
        QCOMPARE(TakeJournal(), "GetJobList"_s);
        QCOMPARE(Sent("page"), QVariant(2));
        QCOMPARE(Jobs()->rowCount(), 0);
        // This time the service answers from inside the request.
        Communication().onRequest = [this] { Communication().DeliverJobs(MakeJobs(18), 18); };
        Communication().DeliverJobs({}, 18);
        QCOMPARE(Jobs()->rowCount(), 18);
    }

    void SurvivesMalformedAnswers()
    {
        SignInWithJobs(MakeJobs(3), 40);
        emit Communication().JobListResponse(500, {{"data"_s, List(MakeJobs(2))}});
        QCOMPARE(Jobs()->rowCount(), 3);
        const QVariantList strangers {QVariant(), 5, "job"_s, QVariantList()};
        QVector<QPair<QVariant, int>> answers {
            {QVariant(), 0}, {"list"_s, 0}, {List(5), 0}, {List(strangers), 4}};
        constexpr int most = std::numeric_limits<int>::max();
        for (const QVariant& value : {QVariant(), QVariant("many"_s), QVariant(1e300), QVariant(strangers),
                 QVariant(most), QVariant(-most - 1)}) {
            answers.append({List(MakeJobs(2), value), 2});
            for (const char* key : {"job_progress", "job_status", "job_id"}) {
                QVariantMap job = MakeJob(1);
                job.insert(QLatin1String(key), value);
                answers.append({List(QVariantList {job}), 1});
            }
        }
        for (const auto& [data, rows] : qAsConst(answers)) {
            emit Communication().JobListResponse(200, {{"data"_s, data}});
            QCOMPARE(Jobs()->rowCount(), rows);
            m_client->Button("btnNextPage"_s)->click();
            m_client->Form()->grab();
            Communication().DeliverJobs(MakeJobs(3), 40);
            QCOMPARE(Values(Jobs(), 1).join(","_s), "name-1,name-2,name-3"_s);
        }
    }

    void ChecksRowsByPressing()
    {
        SignInWithJobs(MakeJobs(3), 3);
        Press(1, Qt::LeftButton);
        QCOMPARE(Checks(Jobs()), "-x-"_s);
        QCOMPARE(MenuDuring([this] { Press(2, Qt::RightButton); }), "Download,Set parent"_s);
        QCOMPARE(MenuOf(Jobs()), QString());
        MenuDuring([this] { Press(1, Qt::RightButton); });
        QCOMPARE(Checks(Jobs()), "-xx"_s);
        Press(1, Qt::LeftButton);
        QCOMPARE(Checks(Jobs()), "--x"_s);
        auto* all = m_client->Find<QCheckBox>("chkAll"_s);
        all->setChecked(true);
        QCOMPARE(Checks(Jobs()), "xxx"_s);
        all->setChecked(false);
        QCOMPARE(Checks(Jobs()), "---"_s);
    }

    void SendsTheCheckedJobs_data() { AddRows(Actions); }
    void SendsTheCheckedJobs()
    {
        const Action& action = Row(Actions);
        SignInWithJobs(MakeJobs(3));
        auto* all = m_client->Find<QCheckBox>("chkAll"_s);
        all->setChecked(true);
        Check(Jobs(), {1}, Qt::Unchecked);
        const bool isAsked = action.button == "btnDelete"_s;
        for (const QString& answer :
            {MessageBoxStandIn::Refusal(), QString(), MessageBoxStandIn::Consent()}) {
            QVERIFY(!isAsked || Communication().Last().operation == "GetProjectList"_s);
            QVERIFY(all->isChecked());
            MessageBox().answer = answer;
            m_client->Button(action.button)->click();
        }
        QCOMPARE(MessageBox().messages.value(2), isAsked ? Question : QString());
        const QVariantHash request {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s},
            {"id[0]"_s, "id-1"_s}, {"id[1]"_s, "id-3"_s}};
        QCOMPARE(Communication().Last().operation, QString::fromLatin1(action.name));
        QCOMPARE(Communication().Last().map, request);
        QCOMPARE(all->isChecked(), !isAsked);
    }

    void ReportsFailuresAndRefusals_data() { AddRows(Actions); }
    void ReportsFailuresAndRefusals()
    {
        const Action& action = Row(Actions);
        SignInWithJobs(MakeJobs(18), 40);
        m_client->Button("btnPageTwo"_s)->click();
        const auto Judgement = [this, &action](int result, const QVariantList& refused) {
            const QVariantMap data {{"data"_s, QVariantMap {{"notAllowedJobs"_s, refused}}}};
            MessageBox().messages.clear();
            TakeJournal();
            QMetaObject::invokeMethod(
                &Communication(), action.answer, Q_ARG(int, result), Q_ARG(QVariantMap, data));
            const QString page = Sent("page").toString();
            return TakeJournal() == "GetJobList"_s ? page : MessageBox().messages.join("\n"_s);
        };
        const QString notice = "2|QuillStar Client||%1|Ok,|1"_s;
        const QString overdue = notice.arg("Amount Overdue!"_s);
        QCOMPARE(Judgement(200, {}), "2"_s);
        QCOMPARE(Judgement(500, {}), notice.arg(action.failure));
        QCOMPARE(Judgement(200, {"id-1"_s}), action.canBeRefused ? overdue : "2"_s);
    }

    void DownloadsByHand()
    {
        SignInWithJobs(MakeJobs(3));
        auto* all = m_client->Find<QCheckBox>("chkAll"_s);
        Jobs()->setCurrentCell(2, 0);
        m_client->Entry("Download")->trigger();
        QCOMPARE(RenderCore().orders.value(0), (QVariantMap {{"id-3"_s, Order(3, 1)}}));
        all->setChecked(true);
        Check(Jobs(), {2}, Qt::Unchecked);
        m_client->Entry("Download")->trigger();
        QCOMPARE(
            RenderCore().orders.value(1), (QVariantMap {{"id-1"_s, Order(1, 1)}, {"id-2"_s, Order(2, 1)}}));
        QCOMPARE(MessageBox().messages.value(1),
            "2|QuillStar Client||The checked items are already added to download list|Ok,|1"_s);
        QVERIFY(!all->isChecked());
    }

    void DeletesNothingAfterTheSession()
    {
        SignInWithJobs(MakeJobs(3));
        Check(Jobs(), {0});
        MessageBox().answer = MessageBoxStandIn::Consent();
        MessageBox().whileOpen = [this] { emit Communication().SignOutResponse(200, {}); };
        m_client->Button("btnDelete"_s)->click();
        QCOMPARE(TakeJournal(), "ShowMessage"_s);
    }

    void SurvivesTheEndOfItsWindowBehindAQuestion()
    {
        for (const char* slot :
            {"Close", "DeleteJobs", "ManualDownload", "UploadRetryOption", "LackTextureOption"}) {
            for (const bool stops : {false, true}) {
                init();
                SignInWithJobs(MakeJobs(3));
                Jobs()->setCurrentCell(0, 0);
                emit RenderCore().failFile("a"_s, {});
                emit RenderCore().lackedTexture("a"_s, {});
                MessageBox().answer = MessageBoxStandIn::Consent();
                MessageBox().whileOpen = [this, stops] {
                    if (stops)
                        m_client->Stop();
                    else
                        m_client->Service()->Hide(1);
                    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
                };
                QVERIFY(m_client->Call(slot));
                QVERIFY(!m_client->Window());
                QCOMPARE(TakeJournal(), "ShowMessage"_s);
            }
        }
    }

private:
    /// Presses and releases on the check box of a row, as the window system would report it.
    void Press(int row, Qt::MouseButton button) const
    {
        const QPoint cell = Jobs()->visualItemRect(Jobs()->item(row, 0)).center();
        const QPoint place = Jobs()->viewport()->mapTo(m_client->Form(), cell);
        QTest::mouseClick(m_client->Form()->windowHandle(), button, Qt::NoModifier, place);
    }
};

QTEST_MAIN(TestPluginJobs)
#include "tst_plugin_jobs.moc"
