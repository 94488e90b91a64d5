#include "tests/farm/farm_at_work.h"

#include <QtTest>

#include <csignal>

using namespace farm;

namespace {

// Stands in for the renderer: notes each frame that it begins in ../../log and waits at frame 3 for ../../gate.
const char* const gatedScript = "echo $$ > ../../pid; echo {frame}/{frames} >> ../../log; "
                                "[ {frame} -ne 3 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                                "cp {scene} {output}";

// Takes processor time, so that it costs something, and waits in each frame but the first for ../../gate.
const char* const dearScript = "echo $$ > ../../pid; i=0; while [ $i -lt 30000 ]; do i=$((i+1)); done; "
                               "echo {frame} >> ../../log; "
                               "[ {frame} -eq 1 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                               "cp {scene} {output}";

constexpr Micros dear = 100'000'000;

QJsonArray NotAllowed(const Reply& reply)
{
    return reply.Data("notAllowedJobs").toArray();
}

constexpr const char* actions[] = {"stop", "recover", "restart", "delete", "full-render"};

} // namespace

/// A farm at work, steered over HTTP by ann.
class ActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_farm = std::make_unique<FarmAtWork>(); }

    void AnActionAppliesToItsStates_data()
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
        // What becomes of jobs that are in the states 0 to 9, and how far they are then.
        row("stop", "stop", false, "2222452789", 20);
        row("recover", "recover", false, "0103456000", 20);
        row("restart", "restart", false, "0000050000", 0);
        row("delete", "delete", false, "5555555555", 20);
        row("full render", "full-render", false, "0123456789", 20);
        row("full render of prerender jobs", "full-render", true, "6666656666", 20);
        row("restart of prerender jobs", "restart", true, "0000050000", 0);
    }

    void AnActionAppliesToItsStates()
    {
        QFETCH(QByteArray, action);
        QFETCH(bool, prerender);
        QStringList ids;
        for (int status = 0; status <= 9; ++status) {
            NewJob job = m_farm->data.Job(QStringLiteral("job"), 5);
            job.prerender = prerender;
            job.status = static_cast<JobStatus>(status);
            ids.append(m_farm->data.jobs.Add(job).id);
        }
        m_farm->Change("UPDATE frames SET finished_at = 7 WHERE number = 1");
        const QString untouched = Add("other", 1);
        m_farm->Start();
        for (int time = 1; time <= 2; ++time) {
            const Reply reply = Do(action, ids + ids);
            QCOMPARE(reply.status, 200);
            QVERIFY(reply.Data("notAllowedJobs").isArray());
            QCOMPARE(NotAllowed(reply), QJsonArray());
            QString statuses;
            for (const QString& id : qAsConst(ids)) {
                const QJsonValue job = m_farm->Get("/jobs/%1", {id}).Data("jobDatas");
                statuses += QString::number(job[QLatin1String("jobStatus")].toInt(-1));
                if (statuses.size() != 6) // a deleted job is left alone
                    QTEST(job[QLatin1String("jobProgress")].toInt(-1), "progress");
            }
            QTEST(statuses, "statuses");
            QCOMPARE(Status(untouched), 0);
        }
        QCOMPARE(Do(action, {}).status, 200);
    }

    void JobsOfOthersAreRefused()
    {
        const std::int64_t bobs = m_farm->data.accounts.Add({QStringLiteral("bob"),
            QStringLiteral("bob@example.org"), QStringLiteral("x"), false, 5000000, 0});
        NewJob job = m_farm->data.Job(QStringLiteral("job"), 5);
        job.prerender = true;
        m_farm->Start();
        for (const char* action : actions) {
            job.status = qstrcmp(action, "recover") == 0 ? JobStatus::Paused : JobStatus::Pending;
            job.account = m_farm->data.account;
            const QString own = m_farm->data.jobs.Add(job).id;
            job.account = bobs;
            const QString foreign = m_farm->data.jobs.Add(job).id;
            for (const QString& stranger : {foreign, QStringLiteral("no-such-job"), QString()}) {
                const Reply reply = Do(action, {own, stranger});
                QCOMPARE(reply.status, 404);
                QCOMPARE(reply.Error(), QStringLiteral("not_found"));
            }
            QCOMPARE(Status(own), int(job.status));
            QCOMPARE(m_farm->data.jobs.Find(bobs, foreign)->status, int(job.status));
            QCOMPARE(m_farm->Get("/jobs/%1", {foreign}).status, 404);
        }
    }

    void StoppingEndsTheRendererAtOnce_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<int>("status");
        QTest::newRow("stop") << QByteArray("stop") << int(JobStatus::Paused);
        QTest::newRow("delete") << QByteArray("delete") << int(JobStatus::Deleted);
    }

    void StoppingEndsTheRendererAtOnce()
    {
        QFETCH(QByteArray, action);
        const QString id = Add("job", 4);
        m_farm->Start(ScriptedTypes(QLatin1String(gatedScript)));
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Log(), QByteArray("1/4 2/4 3/4"), patienceMs);
        QVERIFY(!IsRendererGone());
        QCOMPARE(Do(action, {id}).status, 200);
        // Sooner than the look that the scheduler takes by itself every five seconds.
        QTRY_VERIFY_WITH_TIMEOUT(IsRendererGone(), 2000);
        QTEST(Status(id), "status");
        QCOMPARE(Progress(id), 50);
    }

    // A frame that ends while the job is being stopped is kept, also when it is the last one.
    void ARecoveredJobMayBeFinishedAlready()
    {
        const QString id = Add("job", 1, JobStatus::Paused);
        RenderQueue(m_farm->data.database, DefaultPrice).Finish({1, 1}, {}, 1, 100);
        QCOMPARE(Status(id), int(JobStatus::Paused));
        m_farm->Start(ScriptedTypes(QLatin1String(gatedScript)));
        QCOMPARE(Do("recover", {id}).status, 200);
        QCOMPARE(Status(id), int(JobStatus::Finished));
        QCOMPARE(m_farm->Log(), QByteArray());
    }

    void AFailedJobGetsAllItsAttemptsAgain()
    {
        const QString id = Add("job", 1);
        m_farm->Start(ScriptedTypes(
            QStringLiteral("echo {frame} >> ../../log; [ -e ../../gate ] && cp {scene} {output}")));
        for (const char* log : {"1 1 1", "1 1 1 1 1 1"}) {
            QTRY_COMPARE_WITH_TIMEOUT(Status(id), int(JobStatus::Failed), patienceMs);
            QCOMPARE(m_farm->Log(), QByteArray(log));
            QVERIFY(!m_farm->data.Only().message.isEmpty());
            QVERIFY(qstrcmp(log, "1 1 1") == 0 || OpenGate());
            QCOMPARE(Do("recover", {id}).status, 200);
        }
        QTRY_COMPARE_WITH_TIMEOUT(Status(id), int(JobStatus::Finished), patienceMs);
        QCOMPARE(m_farm->data.Only().message, QString());
    }

    void ARestartedJobBeginsAnew()
    {
        const QString id = Add("job", 4);
        m_farm->Start(ScriptedTypes(QLatin1String(gatedScript)));
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Log(), QByteArray("1/4 2/4 3/4"), patienceMs);
        QTRY_COMPARE_WITH_TIMEOUT(Progress(id), 50, patienceMs);
        const QString left = m_farm->Path("jobs/%1/frame_0004.txt", {id});
        QVERIFY(WriteFile(left, "of an earlier run"));
        QCOMPARE(Do("restart", {id}).status, 200);
        QTRY_COMPARE_WITH_TIMEOUT(m_farm->Log(), QByteArray("1/4 2/4 3/4 1/4 2/4 3/4"), patienceMs);
        QVERIFY(!QFile::exists(left));
        QCOMPARE(Status(id), int(JobStatus::Running));
        // What the earlier run reports late is not counted.
        RenderQueue(m_farm->data.database, DefaultPrice).Finish({1, 4, 1}, {}, 1, 100);
        QTRY_COMPARE_WITH_TIMEOUT(Progress(id), 50, patienceMs);
        QVERIFY(OpenGate());
        QTRY_COMPARE_WITH_TIMEOUT(Status(id), int(JobStatus::Finished), patienceMs);
        QCOMPARE(ReadFile(left), QByteArray("the farm's scene"));
        QCOMPARE(Charges(), 2 + 4);
    }

    void RenderingStopsWhenTheMoneyRunsOut()
    {
        const QString running = Add("running", 3);
        const QString waiting = Add("waiting", 1);
        const QString promoted = Add("promoted", 1, JobStatus::ToFullRender);
        m_farm->Change("UPDATE accounts SET balance = 1");
        m_farm->Start(ScriptedTypes(QLatin1String(dearScript)), FarmSettings().quota, dear);
        QTRY_COMPARE_WITH_TIMEOUT(Status(running), int(JobStatus::PausedInArrears), patienceMs);
        QCOMPARE(Status(waiting), int(JobStatus::Arrears));
        QCOMPARE(Status(promoted), int(JobStatus::Arrears));
        QTRY_VERIFY_WITH_TIMEOUT(IsRendererGone(), patienceMs);
        QCOMPARE(Progress(running), 33);
        QVERIFY(m_farm->data.accounts.Info(m_farm->data.account).balance < 0);

        const QStringList ids {running, waiting, promoted};
        const Reply refused = Do("recover", ids);
        QCOMPARE(refused.status, 200);
        QCOMPARE(NotAllowed(refused), QJsonArray::fromStringList(ids));
        QCOMPARE(Status(running), int(JobStatus::PausedInArrears));

        QVERIFY(m_farm->data.accounts.Credit(QStringLiteral("Ann"), 100000000000));
        QVERIFY(OpenGate());
        QCOMPARE(NotAllowed(Do("recover", ids)), QJsonArray());
        for (const QString& id : ids)
            QTRY_COMPARE_WITH_TIMEOUT(Status(id), int(JobStatus::Finished), patienceMs);
        QCOMPARE(Charges(), 5);
    }

    void AnAccountInArrearsCannotRender()
    {
        NewJob job = m_farm->data.Job(QStringLiteral("job"), 5);
        job.prerender = true;
        job.status = JobStatus::Failed;
        m_farm->Change("UPDATE accounts SET balance = 0");
        m_farm->Start(ScriptedTypes(QLatin1String(gatedScript)));
        for (const QByteArray action : actions) {
            const QString id = m_farm->data.jobs.Add(job).id;
            const Reply reply = Do(action, {id});
            QCOMPARE(reply.status, 200);
            const bool refused = action != "stop" && action != "delete";
            QCOMPARE(NotAllowed(reply), refused ? QJsonArray {id} : QJsonArray());
            QCOMPARE(Status(id), int(action == "delete" ? JobStatus::Deleted : JobStatus::Failed));
        }
        QCOMPARE(m_farm->Log(), QByteArray());
    }

private:
    QString Add(const char* name, int frames, JobStatus status = JobStatus::Waiting)
    {
        NewJob job = m_farm->data.Job(QString::fromLatin1(name), frames);
        job.status = status;
        return m_farm->data.jobs.Add(job).id;
    }

    Reply Do(const char* action, const QStringList& ids) { return m_farm->Do(action, ids); }
    int Status(const QString& id) { return m_farm->Status(id); }
    int Progress(const QString& id) { return m_farm->data.jobs.Find(m_farm->data.account, id)->progress; }

    int Charges()
    {
        return m_farm->data.database.Read([](SQLite::Database& connection) {
            return connection.execAndGet("SELECT count(*) FROM charges").getInt();
        });
    }

    bool OpenGate() { return WriteFile(m_farm->Path("jobs/gate"), {}); }
    bool IsRendererGone() const { return ::kill(ReadFile(m_farm->Path("jobs/pid")).toInt(), 0) == -1; }

    std::unique_ptr<FarmAtWork> m_farm;
};

QTEST_GUILESS_MAIN(ActionsTest)
#include "tst_farm_actions.moc"
