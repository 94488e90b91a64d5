#include "tests/farm/farm_at_work.h"

#include <QtTest>

using namespace farm;

/// Scripts stand in for the renderer.
class RenderingTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_farm = std::make_unique<FarmAtWork>(); }

    void ReplacesPlaceholdersOnce()
    {
        const QMap<QString, QString> values {{"scene"_s, "{output}"_s}, {"output"_s, "x y"_s}};
        const QStringList filled = FillIn({"+I{scene} {output}{output} {other} {"_s}, values);
        QCOMPARE(filled, QStringList {"+I{output} x yx y {other} {"_s});
    }

    void RefusesUnusableJobTypes()
    {
        for (const char* types : {"povray", "[]", R"({"a":{"suffix":"png"}})", R"({"a":{"program":"sh"}})",
                 R"({"a":{"program":"sh","suffix":"png","frame_time_limit":0}})"})
            QVERIFY_EXCEPTION_THROWN(m_farm->Start(types), std::runtime_error);
        QVERIFY(WriteFile(m_farm->Path("one.json"), R"({"a":{"program":"sh","suffix":"png"}})"));
        const JobType type = ReadJobTypes(m_farm->Path("one.json")).value("a"_s);
        QVERIFY(type.confined);
        QCOMPARE(type.frameTimeLimit, 3600);
    }

    void RendersAJobFrameByFrame()
    {
        NewJob job = m_farm->data.Job("job"_s, 4);
        job.width = 64;
        job.height = 36;
        const AddedJob added = m_farm->data.jobs.Add(job);
        // A crash has left an incomplete scene.
        const QString half = m_farm->Path("jobs/%1/scene.unfinished", {added.id});
        QVERIFY(QDir().mkpath(half) && WriteFile(half + "/scene.txt"_s, "half"));
        m_farm->settings.slotCount = 2;
        m_farm->Start(ScriptedTypes(
            "cat {scene} > {output}; echo ' {frame}/{frames} {clock} {width}x{height}' >> {output}; "
            "ps -o ni= -p $$ > ../../nice"));
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
        QCOMPARE(m_farm->data.Only().progress, 100);
        QCOMPARE(Frame(added.id, 1), QByteArray("the farm's scene 1/4 0.000000 64x36\n"));
        QCOMPARE(Frame(added.id, 4), QByteArray("the farm's scene 4/4 0.750000 64x36\n"));
        QCOMPARE(ReadFile(m_farm->Path("jobs/nice")).trimmed(), QByteArray("19"));
        QCOMPARE(QDir(m_farm->Path("jobs/%1", {added.id})).entryList(QDir::Files).size(), 5);
    }

    void RendersAsManyFramesAtATimeAsThereAreSlots()
    {
        m_farm->settings.slotCount = 2;
        m_farm->Add(3);
        m_farm->Start(ScriptedTypes("echo {frame} >> ../../log; : > ../../at{frame}; "
                                    "while [ ! -e ../../gate ]; do sleep 0.01; done; cp {scene} {output}"));
        for (const char* frame : {"jobs/at1", "jobs/at2"})
            QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_farm->Path(frame)), patienceMs);
        QVERIFY(!QFile::exists(m_farm->Path("jobs/at3")));
        QVERIFY(m_farm->OpenGate());
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
        QCOMPARE(m_farm->Log().size(), 5);
    }

    void ChargesAFrameOnce()
    {
        constexpr Micros Price = 500'000;
        const std::int64_t job = m_farm->data.jobs.Add(m_farm->data.Job("job"_s, 3)).key;
        RenderQueue queue(m_farm->data.database, Price);
        queue.Finish({job, 2}, {}, 3001, 100);
        queue.Finish({job, 2}, {}, 9999, 101);
        queue.Finish({job, 7}, {}, 9999, 102);
        queue.Finish({job, 1, 2}, {}, 9999, 102);
        QCOMPARE(m_farm->data.Only().cost, Micros(1'500'500));
        QCOMPARE(m_farm->data.Only().progress, 33);
        QCOMPARE(m_farm->data.Balance(), Micros(10'000'000 - 1'500'500));
        QCOMPARE(Charge(1, 1500), Micros(2));
    }

    void ChargesForWorkAndNotForWaiting()
    {
        m_farm->Start(
            ScriptedTypes("i=0; if [ {frames} -eq 1 ]; then sleep 0.5; "
                          "else while [ $i -lt 1000000 ]; do i=$((i+1)); done; fi; cp {scene} {output}"));
        for (int frames : {1, 2}) {
            const QString id = m_farm->Add(frames, JobStatus::Paused);
            m_farm->Apply("recover", {id});
            QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
            QCOMPARE(m_farm->data.Only().cost > Charge(250, DefaultPrice), frames == 2);
        }
    }

    void FailsAJobWhoseRendererFails_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* name, const char* script, const char* message) {
            QTest::newRow(name) << QByteArray(script) << QString::fromLatin1(message);
        };
        row("error code", "echo no such lamp >&2; exit 3", "the renderer ended with code 3\nno such lamp");
        row("crash", "kill -SEGV $$", "the renderer crashed");
        row("no picture", "true", "the renderer left no picture");
        row("empty picture", ": > {output}", "the renderer left no picture");
        row("a link", "ln -s {scene} {output}", "the renderer left no picture");
        row("picture of an earlier attempt",
            "[ $(wc -l < ../../log) -gt 1 ] || { echo x > {output}; exit 3; }",
            "the renderer left no picture");
        row("endless", "sleep 600", "the renderer exceeded its time limit");
        QString tail = "the renderer ended with code 3"_s;
        for (int line = 158; line <= 200; ++line)
            tail += "\nline %1"_s.arg(line);
        QTest::newRow("much output") << QByteArray(
            "i=0; while [ $i -lt 200 ]; do i=$((i+1)); echo line $i; done; echo end; exit 3")
                                     << QString(tail + "\nend"_s);
    }

    void FailsAJobWhoseRendererFails()
    {
        QFETCH(QByteArray, script);
        const QString id = m_farm->Add(4);
        const bool endless = script.startsWith("sleep");
        m_farm->Start(ScriptedTypes(
            "[ {frame} -gt 1 ] || { cp {scene} {output}; exit; }; echo x >> ../../log; " + script,
            endless ? 1 : 600));
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Failed), patienceMs);
        QCOMPARE(m_farm->Log(), QByteArray("x x x"));
        QCOMPARE(m_farm->data.Only().progress, 25);
        QCOMPARE(Frame(id, 1), QByteArray("the farm's scene"));
        QTEST(m_farm->data.Only().message, "message");
    }

    void AJobWaitsForItsRenderer()
    {
        m_farm->Add(1);
        m_farm->Start(R"({"povray":{"program":"no-such-renderer","suffix":"txt"}})");
        QCOMPARE(Status(), int(JobStatus::Waiting));
        m_farm->Start(R"({"other":{"program":"sh","suffix":"txt"}})");
        QCOMPARE(Status(), int(JobStatus::Waiting));
        m_farm->Start(ScriptedTypes("cp {scene} {output}"));
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
    }

    void LooksAtTheJobsByItself()
    {
        m_farm->settings.lookInterval = std::chrono::milliseconds(20);
        m_farm->Start(ScriptedTypes("cp {scene} {output}"));
        m_farm->Add(1);
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
    }

    void RunningJobsTakeTurns()
    {
        for (const char* scene : {"a", "b", "c"}) {
            QVERIFY(WriteFile(m_farm->Path(scene), scene));
            NewJob job = m_farm->data.Job(QString::fromLatin1(scene), 3);
            job.scene = QString::fromLatin1(scene);
            // A waiting job begins once the running ones no longer need the slot.
            job.status = *scene == 'c' ? JobStatus::Waiting : JobStatus::Running;
            m_farm->data.jobs.Add(job);
        }
        m_farm->Start(ScriptedTypes("cat {scene} >> ../../log; cp {scene} {output}"));
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
        QCOMPARE(m_farm->Log(), QByteArray("abababccc"));
    }

private:
    int Status() { return m_farm->data.Only().status; }
    QByteArray Frame(const QString& job, int number) const
    {
        return ReadFile(m_farm->Path("jobs/%1/frame_000%2.txt", {job, QString::number(number)}));
    }

    std::unique_ptr<FarmAtWork> m_farm;
};

QTEST_GUILESS_MAIN(RenderingTest)
#include "tst_farm_rendering.moc"
