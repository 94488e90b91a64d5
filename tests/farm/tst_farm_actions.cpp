#include "farm.h"
#include "farm_client.h"
#include "farm_fixture.h"

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
    return reply.body[QLatin1String("data")][QLatin1String("notAllowedJobs")].toArray();
}

constexpr const char* actions[] = {"stop", "recover", "restart", "delete", "full-render"};

} // namespace

/// A farm at work, steered over HTTP by ann.
class ActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void AnActionAppliesToItsStates_data();
    void AnActionAppliesToItsStates();
    void JobsOfOthersAreRefused_data();
    void JobsOfOthersAreRefused();
    void StoppingEndsTheRendererAtOnce_data();
    void StoppingEndsTheRendererAtOnce();
    void ARecoveredJobMayBeFinishedAlready();
    void AFailedJobGetsAllItsAttemptsAgain();
    void ARestartedJobBeginsAnew();
    void RenderingStopsWhenTheMoneyRunsOut();
    void AnAccountInArrearsCannotRender_data();
    void AnAccountInArrearsCannotRender();

private:
    void StartFarm(const char* script, Micros price = usualPrice);
    AddedJob Add(const NewJob& job) { return m_data->jobs.Add(job); }
    Reply Do(const char* action, const QStringList& ids);
    int Status(const QString& id) { return m_data->jobs.Find(m_data->account, id)->status; }
    int Progress(const QString& id) { return m_data->jobs.Find(m_data->account, id)->progress; }
    int Charges();
    void SetBalance(Micros balance);
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    QByteArray Log() const { return ReadFile(Path("jobs/log")).replace('\n', ' ').trimmed(); }
    bool IsRendererGone() const { return ::kill(ReadFile(Path("jobs/pid")).toInt(), 0) == -1; }

    // The farm ends before its folder goes.
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FarmData> m_data;
    std::unique_ptr<Farm> m_farm;
    FarmClient m_client;
    QString m_token;
};

void ActionsTest::init()
{
    m_farm.reset();
    m_data.reset();
    m_folder = std::make_unique<QTemporaryDir>();
    m_data = std::make_unique<FarmData>(m_folder->path());
}

/// Without a script nothing is rendered.
void ActionsTest::StartFarm(const char* script, Micros price)
{
    FarmSettings settings;
    settings.dataFolder = m_folder->path();
    settings.sceneFolder = m_folder->path();
    settings.jobTypesFile = Path("types.json");
    settings.pricePerCoreSecond = price;
    settings.demo = false;
    WriteFile(Path("scene.txt"), "a scene");
    WriteFile(Path("types.json"), script ? ScriptedTypes(QLatin1String(script)) : QByteArray("{}"));
    m_farm = std::make_unique<Farm>(settings);
    m_client.SetUrl(m_farm->Url());
    m_token = m_client.SignIn("ann", "secret");
}

Reply ActionsTest::Do(const char* action, const QStringList& ids)
{
    const QJsonObject body {{QStringLiteral("ids"), QJsonArray::fromStringList(ids)}};
    return m_client.Send(
        "POST", QStringLiteral("/jobs/") + QLatin1String(action), QJsonDocument(body).toJson(), m_token);
}

int ActionsTest::Charges()
{
    return m_data->database.Read([](SQLite::Database& connection) {
        return connection.execAndGet("SELECT count(*) FROM charges").getInt();
    });
}

void ActionsTest::SetBalance(Micros balance)
{
    m_data->database.Write([&](SQLite::Database& connection) {
        Execute(connection, "UPDATE accounts SET balance = ?2 WHERE key = ?1", m_data->account, balance);
    });
}

void ActionsTest::AnActionAppliesToItsStates_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<bool>("prerender");
    QTest::addColumn<QString>("statuses");
    QTest::addColumn<int>("progress");
    const auto row = [](const char* name, const char* action, bool prerender, const char* statuses,
                         int progress) {
        QTest::newRow(name) << QByteArray(action) << prerender << QString::fromLatin1(statuses) << progress;
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

void ActionsTest::AnActionAppliesToItsStates()
{
    QFETCH(QByteArray, action);
    QFETCH(bool, prerender);
    QStringList ids;
    for (int status = 0; status <= 9; ++status) {
        NewJob job = m_data->Job(QStringLiteral("job"), 5);
        job.prerender = prerender;
        job.status = static_cast<JobStatus>(status);
        const AddedJob added = Add(job);
        m_data->database.Write([&added](SQLite::Database& connection) {
            Execute(connection, "UPDATE frames SET finished_at = 7 WHERE job = ? AND number = 1", added.key);
        });
        ids.append(added.id);
    }
    const QString untouched = Add(m_data->Job(QStringLiteral("other"))).id;
    StartFarm(nullptr);
    for (int time = 1; time <= 2; ++time) {
        const Reply reply = Do(action, ids + ids);
        QCOMPARE(reply.status, 200);
        QVERIFY(reply.body[QLatin1String("data")][QLatin1String("notAllowedJobs")].isArray());
        QCOMPARE(NotAllowed(reply), QJsonArray());
        QString statuses;
        for (const QString& id : qAsConst(ids)) {
            const Reply info = m_client.Send("GET", QStringLiteral("/jobs/") + id, {}, m_token);
            const QJsonValue job = info.body[QLatin1String("data")][QLatin1String("jobDatas")];
            statuses += QString::number(job[QLatin1String("jobStatus")].toInt(-1));
            if (statuses.size() != 6) // a deleted job is left alone
                QTEST(job[QLatin1String("jobProgress")].toInt(-1), "progress");
        }
        QTEST(statuses, "statuses");
        QCOMPARE(Status(untouched), 0);
    }
    QCOMPARE(Do(action, {}).status, 200);
}

void ActionsTest::JobsOfOthersAreRefused_data()
{
    QTest::addColumn<QByteArray>("action");
    for (const char* action : actions)
        QTest::newRow(action) << QByteArray(action);
}

void ActionsTest::JobsOfOthersAreRefused()
{
    QFETCH(QByteArray, action);
    NewJob job = m_data->Job(QStringLiteral("job"), 5);
    job.prerender = true;
    job.status = action == "recover" ? JobStatus::Paused : JobStatus::Pending;
    const QString own = Add(job).id;
    job.account = m_data->accounts.Add(
        {QStringLiteral("bob"), QStringLiteral("bob@example.org"), QStringLiteral("x"), false, 5'000'000, 0});
    const QString foreign = Add(job).id;
    StartFarm(nullptr);
    const QStringList strangers {foreign, QStringLiteral("no-such-job"), QString()};
    for (const QString& stranger : strangers) {
        const Reply reply = Do(action, {own, stranger});
        QCOMPARE(reply.status, 404);
        QCOMPARE(reply.body[QLatin1String("error")].toString(), QStringLiteral("not_found"));
    }
    QCOMPARE(Status(own), int(job.status));
    QCOMPARE(m_data->jobs.Find(job.account, foreign)->status, int(job.status));
    QCOMPARE(m_client.Send("GET", QStringLiteral("/jobs/") + foreign, {}, m_token).status, 404);
}

void ActionsTest::StoppingEndsTheRendererAtOnce_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<int>("status");
    QTest::newRow("stop") << QByteArray("stop") << int(JobStatus::Paused);
    QTest::newRow("delete") << QByteArray("delete") << int(JobStatus::Deleted);
}

void ActionsTest::StoppingEndsTheRendererAtOnce()
{
    QFETCH(QByteArray, action);
    QFETCH(int, status);
    const QString id = Add(m_data->Job(QStringLiteral("job"), 4)).id;
    StartFarm(gatedScript);
    QTRY_COMPARE_WITH_TIMEOUT(Log(), QByteArray("1/4 2/4 3/4"), patienceMs);
    QVERIFY(!IsRendererGone());
    QCOMPARE(Do(action, {id}).status, 200);
    // Sooner than the look that the scheduler takes by itself every five seconds.
    QTRY_VERIFY_WITH_TIMEOUT(IsRendererGone(), 2000);
    QCOMPARE(Status(id), status);
    QCOMPARE(Progress(id), 50);
}

// A frame that ends while the job is being stopped is kept, also when it is the last one.
void ActionsTest::ARecoveredJobMayBeFinishedAlready()
{
    NewJob job = m_data->Job(QStringLiteral("job"));
    job.status = JobStatus::Paused;
    const AddedJob added = Add(job);
    RenderQueue(m_data->database, usualPrice).Finish({added.key, 1}, {}, 1, 100);
    QCOMPARE(Status(added.id), int(JobStatus::Paused));
    StartFarm(gatedScript);
    QCOMPARE(Do("recover", {added.id}).status, 200);
    QCOMPARE(Status(added.id), int(JobStatus::Finished));
    QCOMPARE(Log(), QByteArray());
}

void ActionsTest::AFailedJobGetsAllItsAttemptsAgain()
{
    const QString id = Add(m_data->Job(QStringLiteral("job"))).id;
    StartFarm("echo {frame} >> ../../log; [ -e ../../gate ] && cp {scene} {output}");
    QTRY_COMPARE_WITH_TIMEOUT(Status(id), int(JobStatus::Failed), patienceMs);
    QCOMPARE(Log(), QByteArray("1 1 1"));
    QCOMPARE(Do("recover", {id}).status, 200);
    QTRY_COMPARE_WITH_TIMEOUT(Status(id), int(JobStatus::Failed), patienceMs);
    QCOMPARE(Log(), QByteArray("1 1 1 1 1 1"));
    QVERIFY(!m_data->Only().message.isEmpty());
    QVERIFY(WriteFile(Path("jobs/gate"), {}));
    QCOMPARE(Do("recover", {id}).status, 200);
    QTRY_COMPARE_WITH_TIMEOUT(Status(id), int(JobStatus::Finished), patienceMs);
    QCOMPARE(m_data->Only().message, QString());
}

void ActionsTest::ARestartedJobBeginsAnew()
{
    const AddedJob job = Add(m_data->Job(QStringLiteral("job"), 4));
    StartFarm(gatedScript);
    QTRY_COMPARE_WITH_TIMEOUT(Log(), QByteArray("1/4 2/4 3/4"), patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(Progress(job.id), 50, patienceMs);
    const QString left = m_folder->filePath(QStringLiteral("jobs/%1/frame_0004.txt").arg(job.id));
    QVERIFY(WriteFile(left, "of an earlier run"));
    QCOMPARE(Do("restart", {job.id}).status, 200);
    QTRY_COMPARE_WITH_TIMEOUT(Log(), QByteArray("1/4 2/4 3/4 1/4 2/4 3/4"), patienceMs);
    QVERIFY(!QFile::exists(left));
    QCOMPARE(Status(job.id), int(JobStatus::Running));
    // What the earlier run reports late is not counted.
    RenderQueue(m_data->database, usualPrice).Finish({job.key, 4, 1}, {}, 1, 100);
    QTRY_COMPARE_WITH_TIMEOUT(Progress(job.id), 50, patienceMs);
    QVERIFY(WriteFile(Path("jobs/gate"), {}));
    QTRY_COMPARE_WITH_TIMEOUT(Status(job.id), int(JobStatus::Finished), patienceMs);
    QCOMPARE(ReadFile(left), QByteArray("a scene"));
    QCOMPARE(Charges(), 2 + 4);
}

void ActionsTest::RenderingStopsWhenTheMoneyRunsOut()
{
    const QString running = Add(m_data->Job(QStringLiteral("running"), 3)).id;
    const QString waiting = Add(m_data->Job(QStringLiteral("waiting"), 1)).id;
    NewJob job = m_data->Job(QStringLiteral("promoted"), 1);
    job.status = JobStatus::ToFullRender;
    const QString promoted = Add(job).id;
    SetBalance(1);
    StartFarm(dearScript, dear);
    QTRY_COMPARE_WITH_TIMEOUT(Status(running), int(JobStatus::PausedInArrears), patienceMs);
    QCOMPARE(Status(waiting), int(JobStatus::Arrears));
    QCOMPARE(Status(promoted), int(JobStatus::Arrears));
    QTRY_VERIFY_WITH_TIMEOUT(IsRendererGone(), patienceMs);
    QCOMPARE(Progress(running), 33);
    QVERIFY(m_data->accounts.Info(m_data->account).balance < 0);

    const QStringList ids {running, waiting, promoted};
    const Reply refused = Do("recover", ids);
    QCOMPARE(refused.status, 200);
    QCOMPARE(NotAllowed(refused), QJsonArray::fromStringList(ids));
    QCOMPARE(Status(running), int(JobStatus::PausedInArrears));

    QVERIFY(m_data->accounts.Credit(QStringLiteral("Ann"), 100'000'000'000));
    QVERIFY(WriteFile(Path("jobs/gate"), {}));
    QCOMPARE(NotAllowed(Do("recover", ids)), QJsonArray());
    for (const QString& id : ids)
        QTRY_COMPARE_WITH_TIMEOUT(Status(id), int(JobStatus::Finished), patienceMs);
    QCOMPARE(Charges(), 5);
}

void ActionsTest::AnAccountInArrearsCannotRender_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<bool>("refused");
    for (const char* action : actions)
        QTest::newRow(action) << QByteArray(action)
                              << (qstrcmp(action, "stop") != 0 && qstrcmp(action, "delete") != 0);
}

void ActionsTest::AnAccountInArrearsCannotRender()
{
    QFETCH(QByteArray, action);
    QFETCH(bool, refused);
    NewJob job = m_data->Job(QStringLiteral("job"), 5);
    job.prerender = true;
    job.status = JobStatus::Failed;
    const QString id = Add(job).id;
    SetBalance(0);
    StartFarm(gatedScript);
    const Reply reply = Do(action, {id});
    QCOMPARE(reply.status, 200);
    QCOMPARE(NotAllowed(reply), refused ? QJsonArray {id} : QJsonArray());
    QCOMPARE(Status(id), int(action == "delete" ? JobStatus::Deleted : JobStatus::Failed));
    QCOMPARE(Log(), QByteArray());
}

QTEST_GUILESS_MAIN(ActionsTest)
#include "tst_farm_actions.moc"
