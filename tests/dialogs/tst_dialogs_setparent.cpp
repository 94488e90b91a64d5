#include "tests/standins/client_test.h"

namespace {

QVariantMap InfoAnswer(const QString& id, int status, int identifier = 1)
{
    const QVariantMap job {{"jobStatus"_s, status}};
    return {{"jobId"_s, id}, {"identifier"_s, identifier}, {"data"_s, QVariantMap {{"jobDatas"_s, job}}}};
}

} // namespace

/// The set-parent dialog, and the dependencies that it keeps in the account's file until all parents have finished.
class TestSetParent : public ClientTest
{
    Q_OBJECT

private slots:
    void OpensOnlyForWaitingAndRunningJobs()
    {
        for (const QList<int>& states : {QList<int>(), {0, 1}, {0, 4}}) {
            QVariantList jobs {MakeJob(9, 4)};
            for (const int state : states)
                jobs.append(MakeJob(1, state));
            SignInWithJobs(jobs);
            for (int row = 1; row < jobs.size(); ++row)
                Check(Jobs(), {row});
            bool opened = false;
            OpenAnd([&] { opened = Form("setparent")->isVisible(); });
            QCOMPARE(opened, states == QList<int>({0, 1}));
            QCOMPARE(TakeJournal(), opened ? "GetJobList"_s : QString());
            if (opened)
                QCOMPARE(QVariantList({Sent("pageSize"), Sent("identifier")}), QVariantList({1000, 1}));
        }
    }

    void FillsItsRows()
    {
        m_client->SignIn();
        QVariantMap job = MakeJob(7, 2, 50);
        job.insert("job_name"_s, "<b>shot</b>"_s);
        Offer({job, "rubbish"_s});
        QCOMPARE(
            Cells(Candidates(), 0), "7|id-7, <b>shot</b>|type-7, time-7|, 50%, Pause|2, 7.5RMB|7.5RMB"_s);
        QCOMPARE(Jobs()->rowCount(), 0);
        QVERIFY(Candidates()->item(0, 1)->toolTip().contains("&lt;b&gt;"_s));
        QCOMPARE(Alignments(Candidates(), 0), "--c-cc"_s);
    }

    void GivesRowsTheirBarsInView()
    {
        m_client->SignIn();
        Form("setparent")->show();
        Offer(MakeJobs(200));
        QVERIFY(!Bar(Candidates(), 199));
        Candidates()->scrollToBottom();
        QVERIFY(Bar(Candidates(), 199) && Bar(Candidates(), 199)->value() == 10);
        Candidates()->setFixedHeight(100 * Candidates()->rowHeight(0));
        Offer(MakeJobs(70));
        QVERIFY(Bar(Candidates(), 69));
    }

    void ShowsTheNewestList()
    {
        m_client->SignIn();
        Later(this, [this] { Offer(MakeJobs(2)); });
        Offer(MakeJobs(50));
        QCOMPARE(Candidates()->rowCount(), 2);
    }

    void EndsAFill()
    {
        const std::function<void()> ends[] = {[this] { emit Communication().SignOutResponse(200, {}); },
            [this] { Form("setparent")->close(); }, [this] { m_client->Service()->Hide(1); },
            [this] { delete Form("setparent"); }};
        for (const auto& end : ends) {
            init();
            m_client->SignIn();
            Form("setparent")->show();
            Later(this, end);
            Offer(MakeJobs(50));
            QVERIFY(!Form("setparent") || Candidates()->rowCount() < 50);
        }
    }

    void StopsTheSonsOnceTheFileHoldsThem()
    {
        SignInWithJobs({MakeJob(4, 0), MakeJob(5, 1), MakeJob(6, 0)});
        Poll();
        QVERIFY(!PollTimer()->isActive());
        Check(Jobs(), {0, 2});
        QByteArray remembered;
        Confirm({11}, [&] { remembered = Dependencies(); });
        QCOMPARE(remembered, QByteArray("[parent]\nid-4%26id-6=id-11&type-11\n"));
        QCOMPARE(LastOf("StopJobs"), Sons({4, 6}));
        QVERIFY(PollTimer()->isActive());
        Confirm({12, 13});
        QCOMPARE(Dependencies(), QByteArray("[parent]\nid-4%26id-6=id-12&type-12, id-13&type-13\n"));
        QCOMPARE(TakeJournal().count("StopJobs"_s), 2);
    }

    void LetsNoJobWaitForItself()
    {
        SignInWithJobs({MakeJob(4, 0)});
        Check(Jobs(), {0});
        OpenAnd([this] {
            for (const QList<int>& parents : {QList<int> {45}, {}}) {
                Choose(parents);
                QCOMPARE(Form("setparent")->isVisible(), !parents.isEmpty());
            }
        });
        QVERIFY(!TakeJournal().contains("StopJobs"_s));
        QVERIFY(Dependencies().isEmpty());
    }

    void ReportsAFailedWriteAndHoldsMeanwhile()
    {
        QVERIFY(QDir().mkpath(m_client->AccountFile("data"_s)));
        SignInWithJobs({MakeJob(4, 0)});
        Check(Jobs(), {0});
        Confirm({11});
        QCOMPARE(MessageBox().messages.size(), 1);
        Answer(InfoAnswer("id-11"_s, 4));
        QCOMPARE(LastOf("RecoverJobs"), Sons({4}));
    }

    void PollsTheSonGroupsInTurn()
    {
        WriteAccountFile("data"_s, "[parent]\na=p1&maya, odd\nb=p2&povray\n");
        m_client->SignIn();
        Poll(4);
        Answer(InfoAnswer("p2"_s, 4));
        Poll(3);
        QStringList asked;
        for (const auto& request : qAsConst(Communication().requests))
            asked << request.map.value("jobId"_s).toString() + request.map.value("jobtype"_s).toString();
        asked.removeAll({});
        // Both groups, a tick that reloads the list, group a, a tick for the removed group b, a reload, group a.
        QCOMPARE(asked.join(" "_s), "p1maya odd p2povray p1maya odd p1maya odd"_s);
        QCOMPARE(LastOf("GetJobInfo"),
            (QVariantHash {{"id"_s, "odd"_s}, {"jobId"_s, "odd"_s}, {"jobtype"_s, QString()},
                {"identifier"_s, 1}, {"token"_s, "token-ann"_s}, {"username"_s, "ann"_s}}));
    }

    void RecoversSonsWhenAllParentsHaveFinished()
    {
        WriteAccountFile(
            "data"_s, "[parent]\nid-1%26id-2=p1&maya, p2&maya\nid-3=p1&maya, p3&maya\nid-4=p3&maya\n");
        m_client->SignIn();
        Answer(InfoAnswer("p1"_s, 4), 500);
        for (const QVariantMap& answer : {InfoAnswer("p1"_s, 4, 0), InfoAnswer("p1"_s, 1), QVariantMap(),
                 InfoAnswer("p"_s, 4), InfoAnswer("p2"_s, 4)})
            Answer(answer);
        QVERIFY(!TakeJournal().contains("RecoverJobs"_s));
        Answer(InfoAnswer("p1"_s, 4));
        QCOMPARE(TakeJournal().count("RecoverJobs"_s), 1);
        QCOMPARE(LastOf("RecoverJobs"), Sons({1, 2}));
        QCOMPARE(Dependencies(), QByteArray("[parent]\nid-3=p1&maya, p3&maya\nid-4=p3&maya\n"));
        // A finished parent counts for every group, even after another sign-in, and may release several groups.
        m_client->SignIn();
        TakeJournal();
        Answer(InfoAnswer("p3"_s, 4));
        QCOMPARE(TakeJournal().count("RecoverJobs"_s), 2);
        QCOMPARE(LastOf("RecoverJobs"), Sons({4}));
        QVERIFY(Dependencies().isEmpty());
    }

    void LeavesTheSonGroupsToTheNextSession()
    {
        WriteAccountFile("data"_s, "[parent]\nid-1=p1&maya\n");
        m_client->SignIn();
        emit Communication().SignOutResponse(200, {});
        TakeJournal();
        QVERIFY(!PollTimer()->isActive());
        Poll();
        Answer(InfoAnswer("p1"_s, 4));
        QCOMPARE(TakeJournal(), QString());
        m_client->SignIn();
        Answer(InfoAnswer("p1"_s, 4));
        QCOMPARE(LastOf("RecoverJobs"), Sons({1}));
    }

    void EndsWithItsSession()
    {
        SignInWithJobs(MakeJobs(3));
        Check(Jobs(), {0});
        OpenAnd([this] {
            Click("setparent", "btnCloseSetParent");
            QVERIFY(!Form("setparent")->isVisible());
        });
        OpenAnd([this] {
            Offer({MakeJob(9)});
            Check(Candidates(), {0});
        });
        // This time the list has not arrived.
        OpenAnd([this] { QCOMPARE(Candidates()->rowCount(), 0); });
        OpenAnd([this] {
            Offer({MakeJob(9)});
            Check(Candidates(), {0});
            emit Communication().SignOutResponse(200, {});
            QVERIFY(!Form("setparent")->isVisible());
            TakeJournal();
            Click("setparent", "btnOkSetParent");
            QCOMPARE(TakeJournal(), QString());
        });
    }

private:
    QTableWidget* Candidates() const { return Find<QTableWidget>("setparent", "twtJobList"); }
    QTimer* PollTimer() const { return m_client->controllers.Find("VTSetParent")->findChild<QTimer*>(); }
    void Poll(int times = 1) const
    {
        while (times-- > 0)
            QVERIFY(QMetaObject::invokeMethod(PollTimer(), "timeout"));
    }
    void Offer(const QVariantList& jobs) const { Communication().DeliverJobs(jobs, jobs.size(), 1); }
    void Answer(const QVariantMap& data, int result = 200) const
    {
        emit Communication().JobInfoResponse(result, data);
    }

    /// Opens the dialog for the checked jobs and does something while it is open.
    template <class Action>
    void OpenAnd(Action action) const
    {
        WhileOpen("setparent", action);
        m_client->Entry("Set parent")->trigger();
        QCoreApplication::processEvents(); // runs the action even if the dialog does not open
    }

    /// Offers candidates, checks all but the first, and presses "Ok".
    void Choose(const QList<int>& parents) const
    {
        QVariantList jobs {MakeJob(99)};
        for (const int parent : parents)
            jobs.append(MakeJob(parent));
        Offer(jobs);
        for (int row = 1; row < jobs.size(); ++row)
            Check(Candidates(), {row});
        Click("setparent", "btnOkSetParent");
    }

    /// Chooses parents for the checked jobs. The action runs inside the request that stops those jobs.
    void Confirm(const QList<int>& parents, const std::function<void()>& whileStopping = {}) const
    {
        OpenAnd([&] {
            Communication().onRequest = whileStopping;
            Choose(parents);
            QVERIFY(!Form("setparent")->isVisible());
        });
    }

    QVariantHash LastOf(const char* operation) const
    {
        return Communication().Last(QLatin1String(operation)).map;
    }
    static QVariantHash Sons(const QList<int>& numbers)
    {
        QVariantHash request {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s}};
        for (int i = 0; i < numbers.size(); ++i)
            request.insert("id[%1]"_s.arg(i), "id-%1"_s.arg(numbers.at(i)));
        return request;
    }

    /// The content of the account's file, as other programs see it.
    QByteArray Dependencies() const { return ReadFile(m_client->AccountFile("data"_s)); }
};

QTEST_MAIN(TestSetParent)
#include "tst_dialogs_setparent.moc"
