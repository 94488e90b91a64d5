#include "tests/farm/farm_at_work.h"

#include <QtTest>

#include <csignal>

using namespace farm;

namespace {

// These scripts stand in for the renderer. This one logs each frame and waits at frame 3 until the gate is open.
const char* const GatedScript = "echo $$ > ../../pid; echo {frame}/{frames} >> ../../log; "
                                "[ {frame} -ne 3 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                                "cp {scene} {output}";

// Uses processor time, so that it costs something, and waits in each frame but the first until the gate is open.
const char* const DearScript = "echo $$ > ../../pid; i=0; while [ $i -lt 30000 ]; do i=$((i+1)); done; "
                               "[ {frame} -eq 1 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                               "cp {scene} {output}";

constexpr const char* Actions[] = {"stop", "recover", "restart", "delete", "full-render"};

QJsonArray NotAllowed(const Reply& reply)
{
    return reply.Data("notAllowedJobs").toArray();
}

} // namespace

class ActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_farm = std::make_unique<FarmAtWork>(); }

    void AppliesToJobsInCertainStates_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<bool>("prerender");
        QTest::addColumn<QString>("statuses");
        QTest::addColumn<int>("progress");
        const auto row
            = [](const char* name, const char* action, bool prerender, const char* statuses, int progress) {
                  QTest::newRow(name)
                      << QByteArray(action) << prerender << QString::fromLatin1(statuses) << progress;
              };
        // Expected status and progress of jobs that started in status 0 to 9.
        row("stop", "stop", false, "2222452789", 20);
        row("recover", "recover", false, "0103456000", 20);
        row("restart", "restart", false, "0000050000", 0);
        row("delete", "delete", false, "5555555555", 20);
        row("full render", "full-render", false, "0123456789", 20);
        row("full render of prerender jobs", "full-render", true, "6666656666", 20);
        row("restart of prerender jobs", "restart", true, "0000050000", 0);
    }

    void AppliesToJobsInCertainStates()
    {
        QFETCH(QByteArray, action);
        QFETCH(bool, prerender);
        QStringList ids;
        for (int status = 0; status <= 9; ++status) {
            NewJob job = m_farm->data.Job("job"_s, 5);
            job.prerender = prerender;
            job.status = static_cast<JobStatus>(status);
            ids.append(m_farm->data.jobs.Add(job).id);
        }
        m_farm->data.Change("UPDATE frames SET finished_at = 7 WHERE number = 1; "
                            "UPDATE jobs SET ended_at = 8, message = 'why' WHERE status = 7");
        const QString untouched = m_farm->Add(1);
        m_farm->Start();
        for (int time = 1; time <= 2; ++time) {
            const Reply reply = m_farm->Apply(action, ids + ids);
            QCOMPARE(reply.status, 200);
            QVERIFY(reply.Data("notAllowedJobs").isArray());
            QCOMPARE(NotAllowed(reply), QJsonArray());
            QString statuses;
            for (const QString& id : qAsConst(ids)) {
                const QJsonValue job = m_farm->Get("/jobs/%1", {id}).Data("jobDatas");
                statuses += QString::number(job["jobStatus"_s].toInt(-1));
                if (statuses.size() != 6) // a deleted job stays as it is
                    QTEST(job["jobProgress"_s].toInt(-1), "progress");
            }
            QTEST(statuses, "statuses");
            QCOMPARE(m_farm->Status(untouched), 0);
            // A job that will be rendered again has neither an end nor a failure message.
            const bool isOver = statuses.at(7) == QLatin1Char('7') || action == "delete";
            QCOMPARE(m_farm->data.Count("SELECT count(*) FROM jobs WHERE ended_at = 8 AND message = 'why'"),
                isOver ? 1 : 0);
        }
        QCOMPARE(m_farm->Apply(action, {}).status, 200);
    }

    void RefusesJobsOfOthers()
    {
        const std::int64_t bobs
            = m_farm->data.accounts.Add({"bob"_s, "bob@example.org"_s, "x"_s, false, 5000000, 0});
        NewJob job = m_farm->data.Job("job"_s, 5);
        job.prerender = true;
        m_farm->Start();
        for (const char* action : Actions) {
            job.status = qstrcmp(action, "recover") == 0 ? JobStatus::Paused : JobStatus::Pending;
            job.account = m_farm->data.account;
            const QString own = m_farm->data.jobs.Add(job).id;
            job.account = bobs;
            const QString foreign = m_farm->data.jobs.Add(job).id;
            for (const QString& stranger : {foreign, "no-such-job"_s, QString()}) {
                const Reply reply = m_farm->Apply(action, {own, stranger});
                QCOMPARE(reply.status, 404);
                QCOMPARE(reply.Error(), "not_found"_s);
            }
            QCOMPARE(m_farm->Status(own), int(job.status));
            QCOMPARE(m_farm->data.jobs.Find(bobs, foreign).status, int(job.status));
            QCOMPARE(m_farm->Get("/jobs/%1", {foreign}).status, 404);
        }
    }

    void StoppingEndsTheRendererAtOnce()
    {
        const QString id = m_farm->Add(4);
        m_farm->Start(ScriptedTypes(GatedScript));
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Log(), QByteArray("1/4 2/4 3/4"), patienceMs);
        QVERIFY(!IsRendererGone());
        QCOMPARE(m_farm->Apply("delete", {id}).status, 200);
        QTRY_VERIFY_WITH_TIMEOUT(IsRendererGone(), patienceMs);
        QCOMPARE(m_farm->Status(id), int(JobStatus::Deleted));
        QCOMPARE(m_farm->Progress(id), 50);
    }

    // A frame that ends while the job is being stopped is kept; it may be the last one.
    void RecoveringAJobWithoutOpenFramesFinishesIt()
    {
        const QString id = m_farm->Add(1, JobStatus::Paused);
        RenderQueue(m_farm->data.database, DefaultPrice).Finish({1, 1}, {}, 1, 100);
        QCOMPARE(m_farm->Status(id), int(JobStatus::Paused));
        m_farm->Start(ScriptedTypes(GatedScript));
        QCOMPARE(m_farm->Apply("recover", {id}).status, 200);
        QCOMPARE(m_farm->Status(id), int(JobStatus::Finished));
        QCOMPARE(m_farm->Log(), QByteArray());
    }

    void AFailedJobGetsAllItsAttemptsAgain()
    {
        const QString id = m_farm->Add(1);
        m_farm->Start(ScriptedTypes("echo {frame} >> ../../log; [ -e ../../gate ] && cp {scene} {output}"));
        for (const char* log : {"1 1 1", "1 1 1 1 1 1"}) {
            QTRY_COMPARE_WITH_TIMEOUT(m_farm->Status(id), int(JobStatus::Failed), patienceMs);
            QCOMPARE(m_farm->Log(), QByteArray(log));
            QVERIFY(!m_farm->data.Only().message.isEmpty());
            QVERIFY(qstrcmp(log, "1 1 1") == 0 || m_farm->OpenGate());
            QCOMPARE(m_farm->Apply("recover", {id}).status, 200);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Status(id), int(JobStatus::Finished), patienceMs);
        QCOMPARE(m_farm->data.Only().message, QString());
    }

    void ARestartedJobBeginsAnew()
    {
        const QString id = m_farm->Add(4);
        m_farm->Start(ScriptedTypes(GatedScript));
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Log(), QByteArray("1/4 2/4 3/4"), patienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Progress(id), 50, patienceMs);
        const QString left = m_farm->Path("jobs/%1/frame_0004.txt", {id});
        QVERIFY(WriteFile(left, "of an earlier run"));
        QCOMPARE(m_farm->Apply("restart", {id}).status, 200);
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Log(), QByteArray("1/4 2/4 3/4 1/4 2/4 3/4"), patienceMs);
        QVERIFY(!QFile::exists(left));
        QCOMPARE(m_farm->Status(id), int(JobStatus::Running));
        // The earlier run reports a frame late, as finished and as failed.
        RenderQueue queue(m_farm->data.database, DefaultPrice);
        queue.Finish({1, 4, 1}, {}, 1, 100);
        for (int attempt = 1; attempt <= 3; ++attempt)
            QVERIFY(!queue.Fail({1, 3, 1}, "late"_s, 100));
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Progress(id), 50, patienceMs);
        QVERIFY(m_farm->OpenGate());
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Status(id), int(JobStatus::Finished), patienceMs);
        QCOMPARE(ReadFile(left), QByteArray("the farm's scene"));
        QCOMPARE(Charges(), 2 + 4);
    }

    void RenderingStopsWhenTheMoneyRunsOut()
    {
        const QString running = m_farm->Add(3);
        const QString waiting = m_farm->Add(1);
        const QString promoted = m_farm->Add(1, JobStatus::ToFullRender);
        m_farm->data.Change("UPDATE accounts SET balance = 1");
        m_farm->settings.pricePerCoreSecond = 100'000'000;
        m_farm->Start(ScriptedTypes(DearScript));
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Status(running), int(JobStatus::PausedInArrears), patienceMs);
        QCOMPARE(m_farm->Status(waiting), int(JobStatus::Arrears));
        QCOMPARE(m_farm->Status(promoted), int(JobStatus::Arrears));
        QTRY_VERIFY_WITH_TIMEOUT(IsRendererGone(), patienceMs);
        QCOMPARE(m_farm->Progress(running), 33);
        QVERIFY(m_farm->data.Balance() < 0);

        const QStringList ids {running, waiting, promoted};
        const Reply refused = m_farm->Apply("recover", ids);
        QCOMPARE(refused.status, 200);
        QCOMPARE(NotAllowed(refused), QJsonArray::fromStringList(ids));
        QCOMPARE(m_farm->Status(running), int(JobStatus::PausedInArrears));

        m_farm->data.accounts.Credit("Ann"_s, 100'000'000'000);
        QVERIFY(m_farm->OpenGate());
        QCOMPARE(NotAllowed(m_farm->Apply("recover", ids)), QJsonArray());
        for (const QString& id : ids)
            QTRY_COMPARE_WITH_TIMEOUT(m_farm->Status(id), int(JobStatus::Finished), patienceMs);
        QCOMPARE(Charges(), 5);
    }

    void AnAccountInArrearsCannotRender()
    {
        NewJob job = m_farm->data.Job("job"_s, 5);
        job.prerender = true;
        job.status = JobStatus::Failed;
        m_farm->data.Change("UPDATE accounts SET balance = 0");
        m_farm->Start(ScriptedTypes(GatedScript));
        for (const QByteArray action : Actions) {
            const QString id = m_farm->data.jobs.Add(job).id;
            const Reply reply = m_farm->Apply(action, {id});
            QCOMPARE(reply.status, 200);
            const bool refused = action != "stop" && action != "delete";
            QCOMPARE(NotAllowed(reply), refused ? QJsonArray {id} : QJsonArray());
            QCOMPARE(m_farm->Status(id), int(action == "delete" ? JobStatus::Deleted : JobStatus::Failed));
        }
        QCOMPARE(m_farm->Log(), QByteArray());
    }

private:
    int Charges() { return m_farm->data.Count("SELECT count(*) FROM charges"); }
    bool IsRendererGone() const { return ::kill(ReadFile(m_farm->Path("jobs/pid")).toInt(), 0) == -1; }

    std::unique_ptr<FarmAtWork> m_farm;
};

QTEST_GUILESS_MAIN(ActionsTest)
#include "tst_farm_actions.moc"
