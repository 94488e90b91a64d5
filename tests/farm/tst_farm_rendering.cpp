#include "tests/farm/farm_at_work.h"

#include <csignal>

using namespace farm;

namespace {

// These scripts stand in for the renderer. This one logs each frame and waits at frame 4 until the gate is open.
const char* const GatedScript = "echo $$ > ../../pid; echo {frame}/{frames} >> ../../log; "
                                "[ {frame} -ne 4 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                                "cp {scene} {output}";

// Uses processor time, so that it costs something, and waits in each frame but the first until the gate is open.
const char* const DearScript = "echo $$ > ../../pid; i=0; while [ $i -lt 30000 ]; do i=$((i+1)); done; "
                               "[ {frame} -eq 1 ] || while [ ! -e ../../gate ]; do sleep 0.01; done; "
                               "cp {scene} {output}";

struct Failure
{
    const char* name;
    const char* script;
    QString message;
};
const QString NoPicture = "the renderer left no picture"_s;

const auto& Failures()
{
    static const Failure rows[] = {
        {"crash", "kill -SEGV $$", "the renderer crashed"_s},
        {"error code", "echo no such lamp >&2; exit 3", "the renderer ended with code 3\nno such lamp"_s},
        {"empty picture", ": > {output}", NoPicture},
        {"a link", "ln -s {scene} {output}", NoPicture},
        {"picture of an earlier attempt", "[ $(wc -l < ../../log) -gt 1 ] || { echo x > {output}; exit 3; }",
            NoPicture},
        {"endless", "sleep 600", "the renderer exceeded its time limit"_s},
        // Much output: the last 400 bytes are kept, without the incomplete first line.
        {"much output", "echo early; printf '%0395d\\n' 0; exit 3",
            "the renderer ended with code 3\n"_s + QString(395, QLatin1Char('0'))},
    };
    return rows;
}

// An action, whether the jobs are prerender jobs, the statuses that it gives to jobs in status 0 to 9, and the progress
// of a job whose first frame of five was finished.
const std::tuple<const char*, bool, const char*, int> Transitions[] = {
    {"stop", false, "2222452789", 20},
    {"recover", false, "0103456000", 20},
    {"restart", false, "0000050000", 0},
    {"delete", false, "5555555555", 20},
    {"full-render", false, "0123456789", 20},
    {"full-render", true, "6666656666", 20},
};

QJsonArray NotAllowed(const Reply& reply)
{
    return reply.Data("notAllowedJobs").toArray();
}

} // namespace

class RenderingTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_farm = std::make_unique<FarmAtWork>(); }

    void RendersAJobFrameByFrame()
    {
        NewJob job = m_farm->data.Job("job"_s, 4);
        job.width = 64;
        job.height = 36;
        const QString folder = m_farm->Path("jobs/"_s + m_farm->data.jobs.Add(job).id);
        // A crash has left an incomplete scene and a link to it.
        const QString half = folder + "/scene.unfinished"_s;
        QVERIFY(QDir().mkpath(half) && WriteFile(half + "/scene.txt"_s, "half"));
        QVERIFY(QFile::link("scene/scene.txt"_s, folder + "/main.txt"_s));
        m_farm->settings.slotCount = 2;
        m_farm->Start(ScriptedTypes(
            "cat; cat {scene} > {output}; echo ' {frame}/{frames} {clock} {width}x{height}' >> {output}"));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(m_farm->data.Only().progress, 100);
        QCOMPARE(ReadFile(folder + "/frame_0001.txt"_s), QByteArray("the farm's scene 1/4 0.000000 64x36\n"));
        QCOMPARE(ReadFile(folder + "/frame_0004.txt"_s), QByteArray("the farm's scene 4/4 0.750000 64x36\n"));
        // The frames, the link to the scene and the mark of the run.
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::System).size(), 6);
    }

    void ChargesAFrameOnce()
    {
        constexpr Micros Price = 500'000;
        const std::int64_t job = m_farm->data.jobs.Add(m_farm->data.Job("job"_s, 3)).key;
        const AccountTerms terms(Price, 0);
        RenderQueue queue(m_farm->data.database, m_farm->data.feed, terms);
        queue.Finish({job, 2}, {}, 3001, 100);
        queue.Finish({job, 2}, {}, 9999, 101);
        queue.Finish({job, 7}, {}, 9999, 102);
        queue.Finish({job, 1, 2}, {}, 9999, 102);
        QCOMPARE(m_farm->data.Only().cost, Micros(1'500'500));
        QCOMPARE(m_farm->data.Only().progress, 33);
        QCOMPARE(m_farm->data.Balance(), Micros(10'000'000 - 1'500'500));
        QCOMPARE(Charge(1, 1500), Micros(2));
    }

    void ChargesForItsOwnWorkAndNotForWaiting()
    {
        m_farm->Start(
            ScriptedTypes("i=0; if [ {frames} -eq 1 ]; then sleep 0.5; "
                          "else while [ $i -lt 200000 ]; do i=$((i+1)); done; fi; "
                          "[ {frames} -ne 3 ] || { echo $$ > ../../pid; sleep 600; }; cp {scene} {output}"));
        // The work of a renderer that is stopped is not charged to the next one.
        for (int frames : {3, 1, 2}) {
            const QString id = m_farm->Add(frames, JobStatus::Paused);
            m_farm->Apply("recover"_s, {id});
            if (frames == 3) {
                EVENTUALLY(!ReadFile(m_farm->Path("jobs/pid"_s)).isEmpty());
                m_farm->Apply("stop"_s, {id});
                EVENTUALLY(IsRendererGone());
                continue;
            }
            EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
            QCOMPARE(m_farm->data.Only().cost > Charge(100, DefaultPrice), frames == 2);
        }
    }

    void FailsAJobWhoseRendererFails_data() { AddRows(Failures()); }
    void FailsAJobWhoseRendererFails()
    {
        const auto& [name, script, message] = Row(Failures());
        const QString id = m_farm->Add(4);
        const bool endless = qstrcmp(script, "sleep 600") == 0;
        const QByteArray start = "[ {frame} -eq 2 ] || { cp {scene} {output}; exit; }; echo x >> ../../log; ";
        m_farm->Start(ScriptedTypes(start + script, endless ? 1 : 600));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Failed);
        QCOMPARE(m_farm->Log(), QByteArray("x x x"));
        QCOMPARE(m_farm->data.Only().progress, 75);
        QVERIFY(QFile::exists(m_farm->Path("jobs/%1/frame_0003.txt"_s.arg(id))));
        QCOMPARE(m_farm->data.Only().message, "1 of 4 frames failed. Frame 2: "_s + message);
    }

    void ShowsFramesToTheirAccountOnly()
    {
        m_farm->data.Add("bob", "b");
        m_farm->settings.pricePerCoreSecond = 10'000'000;
        const QString path = "/jobs/%1/frames"_s.arg(m_farm->Add(3));
        m_farm->Start(
            ScriptedTypes("printf 'step 1 of 4\\rall\\n'; i=0; while [ $i -lt 30000 ]; do i=$((i+1)); done; "
                          "[ {frame} -eq 2 ] || { cp {scene} {output}; exit; }; "
                          "while [ ! -e ../../gate ]; do sleep 0.01; done; exit 3")
                .replace("\"confined\"", "\"progress\": \"step (.) of (.)\", \"confined\""));
        EVENTUALLY_COMPARE(m_farm->data.Only().progress, 33);
        EVENTUALLY_COMPARE(m_farm->Get(path).Data("rendering")[0][0].toInt(), 2);
        EVENTUALLY_COMPARE(m_farm->Get(path).Data("rendering")[0][3], QJsonValue(25));
        const Reply first = m_farm->Get(path);
        const int cost = int(m_farm->data.Only().cost);
        QVERIFY(cost > 0);
        QCOMPARE(first.Data("frames")[0],
            QJsonValue(QJsonArray {1, 2, 1, cost / 10'000, cost, "frame_0001.txt"_s, 16}));
        QCOMPARE(first.Data("frames")[1], QJsonValue(QJsonArray {2, 0, 0, 0, 0, QString(), 0}));
        QCOMPARE(first.Data("total").toInt(), 3);
        QCOMPARE(first.Data("job")["job_status"_s].toInt(), 1);
        QCOMPARE(m_farm->Get(path + "/1/log"_s).Data("log").toString(), "all"_s);
        const QJsonArray days = m_farm->Get("/account/spending?days=7"_s).Data("days").toArray();
        QCOMPARE(days.size(), 7);
        QCOMPARE(days.last().toObject()["amount"_s].toString(), MoneyText(cost));
        QVERIFY(m_farm->OpenGate());
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Failed);
        const Reply next = m_farm->Get(path + "?since=%1"_s.arg(first.Data("time").toInt()));
        QVERIFY(next.Data("frames").toArray().contains(QJsonArray {2, 3, 3, 0, 0, QString(), 0}));
        QCOMPARE(next.Data("rendering"), QJsonValue(QJsonArray()));
        QCOMPARE(m_farm->Get(path + "?since=9000000000"_s).Data("frames"), QJsonValue(QJsonArray()));
        QCOMPARE(
            m_farm->Get(path + "/2/log"_s).Data("log").toString(), "the renderer ended with code 3\nall"_s);
        QCOMPARE(m_farm->Get(path + "/4/log"_s).status, 404);
        m_farm->SignIn("bob", "b");
        QCOMPARE(m_farm->Get(path).status, 404);
        QCOMPARE(m_farm->Get(path + "/1/log"_s).status, 404);
        QCOMPARE(m_farm->Get("/account/spending?days=1"_s).Data("days")[0]["amount"_s].toString(), "0.00"_s);
    }

    void RendersAsManyFramesAtATimeAsThereAreSlots()
    {
        m_farm->settings.slotCount = 2;
        m_farm->Add(3);
        m_farm->Start(ScriptedTypes("echo {frame} >> ../../log; : > ../../at{frame}; "
                                    "while [ ! -e ../../gate ]; do sleep 0.01; done; cp {scene} {output}"));
        EVENTUALLY(QFile::exists(m_farm->Path("jobs/at1"_s)) && QFile::exists(m_farm->Path("jobs/at2"_s)));
        QVERIFY(!QFile::exists(m_farm->Path("jobs/at3"_s)));
        QVERIFY(m_farm->OpenGate());
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(m_farm->Log().size(), 5); // each frame once
    }

    void AJobWaitsForItsRenderer()
    {
        m_farm->Add(1);
        for (const char* types : {R"({"povray":{"program":"no-such-renderer","suffix":"txt"}})",
                 R"({"other":{"program":"sh","suffix":"txt"}})"}) {
            m_farm->Start(types);
            QCOMPARE(m_farm->Status(), JobStatus::Waiting);
            QVERIFY(m_farm->data.Only().message.startsWith("The job waits: the "_s));
        }
        m_farm->Start(ScriptedTypes("cp {scene} {output}"));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
    }

    void RefusesUnusableJobTypes()
    {
        for (const char* types : {"povray", "[]", R"({"a":{"suffix":"png"}})", R"({"a":{"program":"sh"}})",
                 R"({"a":{"program":"sh","suffix":"png","frame_time_limit":0}})",
                 R"({"a":{"program":"sh","suffix":"png","frame_time_limit":10000000000}})",
                 R"({"a":{"program":"sh","suffix":"png","cores":4294967297}})",
                 R"({"a":{"program":"sh","suffix":"png","progress":"(.) "}})",
                 R"({"a":{"program":"sh","suffix":"png","progress":"+"}})",
                 R"({"a":{"program":"sh","suffix":"png","licence_missing":"*"}})",
                 R"({"a":{"program":"sh","suffix":"png","slurm":{"queue":"night"}}})",
                 R"({"a":{"program":"sh","suffix":"png","slurm":{"frames_per_task":0}}})"})
            QVERIFY_EXCEPTION_THROWN(m_farm->Start(types), std::runtime_error);
        m_farm->Start(R"({"a":{"program":"sh","suffix":"png","frame_time_limit":1}})");
    }

    void ARendererGetsALowPriorityAndLittleOfTheEnvironment()
    {
        qputenv("FARM_SECRET", "x");
        const QByteArray searchPath = qgetenv("PATH");
        const auto restore = qScopeGuard([&searchPath] { qputenv("PATH", searchPath); });
        // The renderer cannot read the farm's folder.
        qputenv("PATH", m_farm->Path("."_s).toLocal8Bit() + ":/usr/bin:/bin");
        const QString folder = m_farm->Path("jobs/"_s + m_farm->Add(1));
        m_farm->Start(
            ScriptedTypes("(env; nice) > {output}").replace("\"confined\": false", "\"confined\": true"));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        const QList<QByteArray> lines = ReadFile(folder + "/frame_0001.txt"_s).split('\n');
        QVERIFY(lines.contains("PATH=/usr/bin:/bin"));
        QVERIFY(lines.contains("10"));
        const auto folderIn = [&lines, &folder](const QByteArray& variable) {
            const QByteArray start = variable + '=' + folder.toUtf8() + "/runs/";
            return std::any_of(lines.begin(), lines.end(), [&start](const QByteArray& line) {
                return line.startsWith(start) && line.endsWith("/output");
            });
        };
        QVERIFY(folderIn("HOME") && folderIn("TMPDIR"));
        QVERIFY(!lines.contains("FARM_SECRET=x"));
    }

    void AFrameWhoseRendererCannotBeStartedWaits()
    {
        const QString program = m_farm->Path("renderer"_s);
        QVERIFY(WriteFile(program, "#!/no/such/interpreter\n"));
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
        m_farm->Add(1);
        m_farm->Start(ScriptedTypes({}).replace("/bin/sh", program.toUtf8()));
        EVENTUALLY_COMPARE(m_farm->data.Only().message,
            "Frame 1 waits: the renderer could not be started: %1: No such file or directory."_s.arg(
                program));
        QCOMPARE(m_farm->data.Count("SELECT failures FROM frames"), 0);
        m_farm->Start(ScriptedTypes("cp {scene} {output}"));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
    }

    void AppliesToJobsInCertainStates_data() { AddRows(Transitions); }
    void AppliesToJobsInCertainStates()
    {
        const auto& [name, prerender, expected, progress] = Row(Transitions);
        const QString action = QString::fromLatin1(name);
        NewJob job = m_farm->data.Job("job"_s, 5);
        job.prerender = prerender;
        QStringList ids;
        for (int status = 0; status <= 9; ++status) {
            job.status = static_cast<JobStatus>(status);
            ids.append(m_farm->data.jobs.Add(job).id);
        }
        m_farm->data.Change("UPDATE frames SET finished_at = 7 WHERE number = 1; "
                            "UPDATE jobs SET ended_at = 8, message = 'why' WHERE status = 7");
        const QString untouched = m_farm->Add(1);
        job.account = m_farm->data.Add("bob", "x", 5'000'000);
        const QString foreign = m_farm->data.jobs.Add(job).id;
        m_farm->Start();
        for (const QString& stranger : {foreign, "no-such-job"_s})
            QCOMPARE(m_farm->Apply(action, ids + QStringList {stranger}).status, 404);
        QCOMPARE(m_farm->Get("/jobs/"_s + foreign).status, 404);
        QCOMPARE(Statuses(ids), "0123456789"_s);
        for (int time = 1; time <= 2; ++time) {
            const Reply reply = m_farm->Apply(action, ids + ids);
            QCOMPARE(reply.status, 200);
            QCOMPARE(reply.Data("notAllowedJobs"), QJsonValue(QJsonArray()));
            QCOMPARE(Statuses(ids), QString::fromLatin1(expected));
            for (int status : {0, 1, 2, 3, 4, 6, 7, 8, 9}) // a deleted job stays as it is
                QCOMPARE(m_farm->Job(ids.at(status)).progress, progress);
            QCOMPARE(m_farm->Status(untouched), JobStatus::Waiting);
            // A job that will be rendered again has neither an end nor a failure message.
            const bool isOver = expected[7] == '7' || expected[7] == '5';
            QCOMPARE(m_farm->data.Count("SELECT count(*) FROM jobs WHERE ended_at = 8 AND message = 'why'"),
                isOver ? 1 : 0);
        }
        QCOMPARE(m_farm->Apply(action, {}).status, 200);
        // An account in arrears cannot send jobs to work.
        m_farm->data.SetBalance(0);
        const QString failed = m_farm->Add(1, JobStatus::Failed);
        const bool sendsToWork = action != "stop"_s && action != "delete"_s;
        QCOMPARE(
            NotAllowed(m_farm->Apply(action, {failed})), sendsToWork ? QJsonArray {failed} : QJsonArray());
        QCOMPARE(m_farm->Status(failed), action == "delete"_s ? JobStatus::Deleted : JobStatus::Failed);
    }

    // A frame that ends while the job is being stopped is kept; it may be the last one.
    void RecoveringAJobWithoutOpenFramesFinishesIt()
    {
        const QString id = m_farm->Add(1, JobStatus::Paused);
        RenderQueue(m_farm->data.database, m_farm->data.feed, m_farm->data.terms).Finish({1, 1}, {}, 1, 100);
        QCOMPARE(m_farm->Status(), JobStatus::Paused);
        m_farm->Start(ScriptedTypes(GatedScript));
        QCOMPARE(m_farm->Apply("recover"_s, {id}).status, 200);
        QCOMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(m_farm->Log(), QByteArray());
    }

    void AFailedJobGetsAllItsAttemptsAgain()
    {
        const QString id = m_farm->Add(1);
        m_farm->Start(ScriptedTypes("echo {frame} >> ../../log; [ -e ../../gate ] && cp {scene} {output}"));
        for (const QByteArray& log : {QByteArray("1 1 1"), QByteArray("1 1 1 1 1 1")}) {
            EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Failed);
            QCOMPARE(m_farm->Log(), log);
            QVERIFY(!m_farm->data.Only().message.isEmpty());
            QVERIFY(log.size() < 10 || m_farm->OpenGate());
            QCOMPARE(m_farm->Apply("recover"_s, {id}).status, 200);
        }
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
    }

    void ARestartedJobBeginsAnew()
    {
        const QString id = m_farm->Add(4);
        m_farm->Start(ScriptedTypes(GatedScript));
        EVENTUALLY_COMPARE(m_farm->Log(), QByteArray("1/4 2/4 4/4"));
        const QString left = m_farm->Path("jobs/%1/frame_0003.txt"_s.arg(id));
        const QString log = m_farm->Path("jobs/%1/logs/frame_0003.txt"_s.arg(id));
        QVERIFY(QDir().mkpath(QFileInfo(log).path()) && WriteFile(log, "of an earlier run"));
        QVERIFY(WriteFile(left, "of an earlier run"));
        QCOMPARE(m_farm->Apply("restart"_s, {id}).status, 200);
        EVENTUALLY_COMPARE(m_farm->Log(), QByteArray("1/4 2/4 4/4 1/4 2/4 4/4"));
        QVERIFY(!QFile::exists(left) && !QFile::exists(log));
        QCOMPARE(m_farm->Status(), JobStatus::Running);
        // The earlier run reports a frame late, as finished and as failed.
        RenderQueue queue(m_farm->data.database, m_farm->data.feed, m_farm->data.terms);
        queue.Finish({1, 3, 1}, {}, 1, 100);
        for (int attempt = 1; attempt <= 3; ++attempt)
            QVERIFY(!queue.Fail({1, 4, 1}, "late"_s, 100));
        EVENTUALLY_COMPARE(m_farm->Job(id).progress, 50);
        QVERIFY(m_farm->OpenGate());
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(ReadFile(left), QByteArray("the farm's scene"));
        QCOMPARE(Charges(), 2 + 4);
    }

    void RenderingStopsWhenTheMoneyRunsOut()
    {
        const QString running = m_farm->Add(3);
        const QString waiting = m_farm->Add(1);
        const QString promoted = m_farm->Add(1, JobStatus::ToFullRender);
        m_farm->data.SetBalance(1);
        m_farm->settings.pricePerCoreSecond = 100'000'000;
        m_farm->Start(ScriptedTypes(DearScript));
        EVENTUALLY_COMPARE(m_farm->Status(running), JobStatus::PausedInArrears);
        QCOMPARE(m_farm->Status(waiting), JobStatus::Arrears);
        QCOMPARE(m_farm->Status(promoted), JobStatus::Arrears);
        EVENTUALLY(IsRendererGone());
        QCOMPARE(m_farm->Job(running).progress, 33);
        QVERIFY(m_farm->data.Balance() < 0);

        const QStringList ids {running, waiting, promoted};
        QCOMPARE(NotAllowed(m_farm->Apply("recover"_s, ids)), QJsonArray::fromStringList(ids));
        QCOMPARE(m_farm->Status(running), JobStatus::PausedInArrears);
        m_farm->data.SetBalance(100'000'000'000);
        QVERIFY(m_farm->OpenGate());
        QCOMPARE(NotAllowed(m_farm->Apply("recover"_s, ids)), QJsonArray());
        for (const QString& id : ids)
            EVENTUALLY_COMPARE(m_farm->Status(id), JobStatus::Finished);
        QCOMPARE(Charges(), 5);
    }

private:
    QString Statuses(const QStringList& ids)
    {
        QString statuses;
        for (const QString& id : ids)
            statuses += QString::number(m_farm->Job(id).status);
        return statuses;
    }
    int Charges() { return m_farm->data.Count("SELECT count(*) FROM charges"); }
    bool IsRendererGone() const { return ::kill(ReadFile(m_farm->Path("jobs/pid"_s)).toInt(), 0) == -1; }

    std::unique_ptr<FarmAtWork> m_farm;
};

QTEST_GUILESS_MAIN(RenderingTest)
#include "tst_farm_rendering.moc"
