#include "farm/rendering/frame_progress.h"
#include "farm/rendering/job_types.h"
#include "farm/rendering/render_process.h"
#include "farm/runner/confinement.h"
#include "farm/runner/hidden_paths.h"
#include "farm/runner/run_order.h"
#include "tests/farm/farm_at_work.h"

#include <QProcess>

#include <csignal>
#include <unistd.h>

using namespace farm;

namespace {

// Each attack that succeeds leaves its name in the picture. The renderer runs in jobs/ID/scene.
const char* const HostileScript = R"(
try() { if sh -c "$2" > /dev/null 2>&1; then echo $1 >> {output}; fi; }
data=$(dirname $(dirname $(dirname $PWD)))
try 'reads the database' "cat $data/farm.sqlite"
try 'reads it through the farm' "cat /proc/$PPID/root$data/farm.sqlite"
try 'reads it by another name' "ln -s $data {output_folder}/all && cat {output_folder}/all/farm.sqlite"
try 'lists the jobs' "ls $data/jobs"
try 'reads a content' "cat $data/contents/secret"
try 'reads another job' "cat $data/jobs/other/scene.txt"
try 'writes the database' "echo x >> $data/farm.sqlite"
try 'writes beside it' "echo x > $data/new"
try 'removes it' "rm -f $data/farm.sqlite && [ ! -e $data/farm.sqlite ]"
try 'moves it' "mv $data/farm.sqlite {output_folder}/taken"
try 'writes its scene' "echo x >> {scene}"
try 'replaces its scene' "rm {scene_folder}/scene.txt"
try 'reads its order' "cat {output_folder}/../order.json"
try 'forges its outcome' "echo x > {output_folder}/../outcome.json"
try 'ends its watcher' "kill -9 $PPID"
echo end >> {output}
)";

struct Setting
{
    const char* name;
    bool isConfined;
    /// Whether the renderer's program lies in a folder above the data.
    bool isAbove;
    const char* user;
};
const Setting Settings[] = {
    {"confined", true, false, ""},
    {"confined, above the data", true, true, ""},
    {"not confined", false, false, ""},
    {"another user", false, false, "nobody"},
};

struct Excess
{
    const char* name;
    const char* limit;
    const char* script;
    QString message;
};
const Excess Excesses[] = {
    {"memory", R"("memory_mib": 40)",
        "exec perl -e 'my @all; for (1..5) { fork // 0; push @all, \"x\" x 9e6 } sleep 600'",
        "the renderer exceeded its memory limit of 40 MiB"_s},
    {"processes", R"("processes": 20)",
        "for n in 1 2 3 4 5 6 7 8 9 a b c d e f g h i j k l; do sleep 600 & done; wait",
        "the renderer exceeded its limit of 20 processes"_s},
    {"file size", R"("file_size_mib": 1)", "exec head -c 2000000 /dev/zero > {output}",
        "the renderer wrote a file of more than 1 MiB"_s},
    {"shared memory", R"("memory_mib": 40)",
        "exec perl -e 'require \"syscall.ph\"; open my $zeros, \"<\", \"/dev/zero\"; "
        "my $all = syscall(&SYS_mmap, 0, 90000000, 3, 33, -1, 0); " // readable, writable, shared, anonymous
        "syscall(&SYS_read, fileno $zeros, $all, 90000000); sleep 600'",
        "the renderer exceeded its memory limit of 40 MiB"_s},
    {"output", R"("output_mib": 3)",
        "for n in 1 2 3 4; do mkdir {output_folder}/$n; head -c 1000000 /dev/zero > {output_folder}/$n/x; "
        "done; "
        "sleep 600",
        "the renderer wrote more than 3 MiB in all"_s},
};

// The processor time of a child counts once, whether or not its parent waits for it.
const std::tuple<const char*, const char*> Parents[] = {
    {"waits", "1"},
    {"does not wait", "$SIG{CHLD} = \"IGNORE\""},
};

// The places where an earlier farm process may have left the picture of a finished run.
const std::tuple<const char*, const char*, bool> Remains[] = {
    {"done", "/runs/j1-r1-f1-x/output/frame_0001.txt", false},
    {"not done", "", true},
};

struct Mounted
{
    const char* name;
    const char* mounts;
    QStringList names;
};
const Mounted Mounts[] = {
    {"one disk", "1 0 8:1 / / rw - ext4 /dev/a rw", {"/srv/data"_s}},
    {"the disk again", "1 0 8:1 / / rw - e /dev/a rw\n2 1 8:1 / /mnt/my\\040disk rw - e /dev/a rw",
        {"/srv/data"_s, "/mnt/my disk/srv/data"_s}},
    {"a folder above again", "1 0 8:1 / / rw - e a rw\n2 1 8:1 /srv /b rw - e a rw",
        {"/srv/data"_s, "/b/data"_s}},
    {"a folder of it again", "1 0 8:1 / / rw - e a rw\n2 1 8:1 /srv/data/jobs /b rw - e a rw",
        {"/srv/data"_s, "/b"_s}},
    {"own disk",
        "1 0 8:1 / / rw - e a rw\n2 1 8:2 / /srv rw - e b rw\n3 1 8:1 /srv /b rw - e a rw\n"
        "4 1 8:2 / /c rw - e b rw",
        {"/srv/data"_s, "/c/data"_s}},
};

} // namespace

/// Renderers that use more than their limits allow.
class RenderersTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_farm = std::make_unique<FarmAtWork>(); }

    void ReachNothingOfTheFarm_data() { AddRows(Settings); }
    void ReachNothingOfTheFarm()
    {
        if (!Confinement::IsSupported())
            QSKIP("this kernel cannot confine a renderer");
        const Setting& setting = Row(Settings);
        m_farm->settings.rendererUser = QString::fromLatin1(setting.user);
        if (*setting.user != '\0' && ::geteuid() != 0)
            QSKIP("only root can use another user");
        const QString other = m_farm->Path("jobs/other"_s);
        QVERIFY(QDir().mkpath(other) && WriteFile(other + "/scene.txt"_s, "another scene"));
        const QString id = m_farm->Add(1);
        const QTemporaryDir folder; // beside the data
        QByteArray types = ScriptedTypes(HostileScript).replace("\"@jobs@\"", "");
        if (setting.isConfined)
            types.replace("\"confined\": false", "\"confined\": true");
        const QString shell
            = QFileInfo(folder.path()).path() + "/"_s + QFileInfo(folder.path()).fileName() + "-sh"_s;
        if (setting.isAbove) {
            QVERIFY(QFile::copy("/bin/sh"_s, shell));
            types.replace("/bin/sh", shell.toUtf8());
        }
        m_farm->Start(types);
        QVERIFY(WriteFile(m_farm->Path("contents/secret"_s), "a content"));
        EVENTUALLY(m_farm->Status() == JobStatus::Finished || m_farm->Status() == JobStatus::Failed);
        QFile::remove(shell);
        QCOMPARE(m_farm->data.Only().message, QString());
        QCOMPARE(ReadFile(m_farm->Path("jobs/%1/frame_0001.txt"_s.arg(id))), QByteArray("end\n"));
    }

    void UseWhatTheirTypeAllows()
    {
        const QTemporaryDir folder;
        QVERIFY(WriteFile(folder.filePath("licence"_s), "a licence"));
        const QString id = m_farm->Add(1);
        QByteArray types = ScriptedTypes("cat " + folder.filePath("licence"_s).toLatin1() + " > {output}");
        types.replace("\"confined\": false", "\"readable\": [\"" + folder.path().toLatin1() + "\"]");
        m_farm->Start(types);
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(ReadFile(m_farm->Path("jobs/%1/frame_0001.txt"_s.arg(id))), QByteArray("a licence"));
    }

    // When it shuts down, the farm does not wait for them for ever.
    void ReportNothingOnceTheirWatcherIsGone()
    {
        const QTemporaryDir folder;
        QVERIFY(WriteFile(folder.filePath("order.json"_s), "exec sleep 600"));
        int reports = 0;
        {
            RenderProcess process("/bin/sh"_s, "r1"_s, {folder.path()}, folder.path());
            connect(&process, &RenderProcess::Ended, this, [&reports] { ++reports; });
            process.Launch();
            QVERIFY(process.waitForStarted(Patience));
        }
        QCOMPARE(reports, 0);
    }

    void AreWaitedForWhileTheyAreMissing()
    {
        const QTemporaryDir folder;
        const QString shell = folder.filePath("sh"_s);
        m_farm->settings.lookInterval = std::chrono::milliseconds(100);
        m_farm->Add(1);
        m_farm->Start(ScriptedTypes("cp {scene} {output}").replace("/bin/sh", shell.toUtf8()));
        EVENTUALLY(m_farm->data.Only().message.startsWith(
            "The job waits: the renderer "_s + shell + " is not installed"_s));
        QVERIFY(QFile::copy("/bin/sh"_s, shell));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(m_farm->data.Count("SELECT count(*) FROM hindered_types"), 0);
    }

    void HiddenFoldersAreKnownByAllTheirNames_data() { AddRows(Mounts); }
    void HiddenFoldersAreKnownByAllTheirNames()
    {
        const auto& [name, mounts, names] = Row(Mounts);
        QCOMPARE(NamesOf("/srv/data"_s, mounts), names);
    }

    void AFarmThatStartsAgainTakesOverWhatTheyHaveDone_data() { AddRows(Remains); }
    void AFarmThatStartsAgainTakesOverWhatTheyHaveDone()
    {
        const auto& [name, picture, rendersAgain] = Row(Remains);
        const QString folder = m_farm->Path("jobs/"_s + m_farm->Add(1));
        m_farm->data.Change("INSERT INTO runs(id, job, run, frame) VALUES ('j1-r1-f1-x', 1, 1, 1)");
        const RunFiles files {folder + "/runs/j1-r1-f1-x"_s};
        QVERIFY(QDir().mkpath(files.OutputFolder()) && WriteFile(files.Order(), "{}"));
        const QString other = m_farm->Path("other"_s);
        QVERIFY(WriteFile(other, "a picture"));
        if (*picture != '\0') {
            WriteOutcome(files.Outcome(), {RunEnd::Done, {}, {}, 1234, {}});
            QCOMPARE(::link(qPrintable(other), qPrintable(folder + QLatin1String(picture))), 0);
        }
        // A run whose end was recorded, but whose hostile remains the earlier farm could not remove any more.
        const QString deep = folder + "/runs/gone/output"_s;
        QVERIFY(QDir().mkpath(deep));
        QCOMPARE(QProcess::execute("sh"_s,
                     {"-c"_s,
                         "cd $0 && ln -s /etc/hostname link && for n in $(seq 1500); do "
                         "mkdir -m 700 deep && cd -P deep || exit; done; chmod 0 ."_s,
                         deep}),
            0);
        m_farm->Start(ScriptedTypes("echo x >> ../../log; cp {scene} {output}"));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(m_farm->Log(), QByteArray(rendersAgain ? "x" : ""));
        QCOMPARE(m_farm->data.Count("SELECT count(*) FROM charges WHERE core_milliseconds = 1234"),
            int(!rendersAgain));
        EVENTUALLY(QDir(folder + "/runs"_s).isEmpty());
        // Nobody else can change the picture.
        QVERIFY(WriteFile(other, "forged"));
        QVERIFY(ReadFile(folder + "/frame_0001.txt"_s) != "forged");
    }

    void EndAtTheirLimits_data() { AddRows(Excesses); }
    void EndAtTheirLimits()
    {
        const auto& [name, limit, script, message] = Row(Excesses);
        m_farm->Add(1);
        m_farm->Start(ScriptedTypes(script).replace("\"confined\"", QByteArray(limit) + ", \"confined\""));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Failed);
        QVERIFY2(m_farm->data.Only().message.contains(message), qPrintable(m_farm->data.Only().message));
    }

    // Both end at once: the second one has waited for the first one's work.
    void AreChargedForTheirOwnWork()
    {
        m_farm->settings.slotCount = 2;
        m_farm->Add(2);
        m_farm->Start(
            ScriptedTypes("if [ {frame} -eq 1 ]; then setsid sh -c 'i=0; while [ $i -lt 400000 ]; do "
                          "i=$((i+1)); done; : > ../../gate'; "
                          "else while [ ! -e ../../gate ]; do sleep 0.01; done; fi; cp {scene} {output}"));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        const auto milliseconds = [this](const char* frame) {
            return m_farm->data.Count(
                QByteArray("SELECT core_milliseconds FROM charges WHERE frame = ").append(frame).constData());
        };
        QVERIFY2(milliseconds("1") > 2 * milliseconds("2"), qPrintable(QString::number(milliseconds("2"))));
        QVERIFY(milliseconds("1") > 100);
    }

    void ReportTheirProgress_data() { AddRows(Reports); }
    void ReportTheirProgress()
    {
        const auto& [name, type, log, percent] = Row(Reports);
        const QString path = m_farm->Path("log"_s);
        QVERIFY(WriteFile(path, QByteArray(5000, '.') + log));
        const auto found = FrameProgress {path,
            ReadJobTypes(QStringLiteral(FARM_JOB_TYPES)).value(QLatin1String(type)).progress}
                               .Percent();
        QCOMPARE(found.value_or(-1), percent);
    }

    void WaitForALicence()
    {
        m_farm->settings.lookInterval = std::chrono::milliseconds(100);
        m_farm->Add(1);
        m_farm->Start(
            ScriptedTypes("[ -e ../../gate ] || { echo 'licence 7 is taken'; exit 1; }; cp {scene} {output}")
                .replace("\"confined\"", R"("licence_missing": "licence [0-9]+ is taken", "confined")"));
        EVENTUALLY(m_farm->data.Only().message.startsWith("Frame 1 waits: the renderer got no licence"_s));
        QVERIFY(m_farm->OpenGate());
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(m_farm->data.Count("SELECT sum(failures) FROM frames"), 0);
    }

    void AreChargedOnceForTheirChildren_data() { AddRows(Parents); }
    void AreChargedOnceForTheirChildren()
    {
        m_farm->Add(1);
        m_farm->Start(ScriptedTypes(QByteArray("perl -e '") + std::get<1>(Row(Parents))
            + "; if (!fork) { do { @t = times } while $t[0] + $t[1] < 1; sleep 1; exit } wait'; cp {scene} "
              "{output}"));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        const int milliseconds = m_farm->data.Count("SELECT core_milliseconds FROM charges");
        QVERIFY2(milliseconds > 950 && milliseconds < 1800, qPrintable(QString::number(milliseconds)));
    }

    void EndWithAllThatTheyHaveStarted_data() { AddRows(Ends); }
    void EndWithAllThatTheyHaveStarted()
    {
        const QString id = m_farm->Add(1);
        const bool goesOn = qstrcmp(QTest::currentDataTag(), "by itself") != 0;
        m_farm->Start(
            ScriptedTypes(QByteArray("setsid sh -c 'trap \"\" TERM HUP; echo $$ > ../../pid; sleep 600' & "
                                     "while [ ! -s ../../pid ]; do sleep 0.01; done; cp {scene} {output}; ")
                + (goesOn ? "sleep 600" : "exit 0")));
        EVENTUALLY(!ReadFile(m_farm->Path("jobs/pid"_s)).isEmpty());
        const int process = ReadFile(m_farm->Path("jobs/pid"_s)).toInt();
        if (qstrcmp(QTest::currentDataTag(), "with the job") == 0)
            QCOMPARE(m_farm->Apply("stop"_s, {id}).status, 200);
        else if (goesOn)
            m_farm->End();
        EVENTUALLY_COMPARE(::kill(process, 0), -1);
        if (!goesOn)
            EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
    }

private:
    static constexpr std::tuple<const char*, const char*, const char*, int> Reports[] = {
        {"Blender", "blender", "| Scene, ViewLayer | Sample 1/128\n| Sample 32/128\n", 25},
        {"tiles", "blender", "| Rendered 1/4 Tiles, Sample 64/128\n", 37},
        {"the last sample", "blender", "| Sample 49/49\n", 100},
        {"nothing begun", "blender", "| Rendered 0/0 Tiles, Sample 0/128\n| Updating Lights", 0},
        {"POV-Ray", "povray", "Rendered 512 of 1024 pixels (50%)\rRendered 576 of 1024 pixels (56%)\r", 56},
        {"no report", "povray", "POV-Ray finished\n", -1},
        {"a type without reports", "maya", "Sample 32/128\n", -1},
    };
    static constexpr std::tuple<const char*> Ends[] = {"by itself", "with the job", "with the farm"};

    std::unique_ptr<FarmAtWork> m_farm;
};

QTEST_GUILESS_MAIN(RenderersTest)
#include "tst_farm_renderers.moc"
