// Frames being rendered; the farm or one of its renderers is killed.
#include "bench/kill_farm.h"

#include <QStandardPaths>
#include <QThread>

#include <csignal>

namespace {

constexpr int Jobs = 2;
constexpr int Frames = 4;
constexpr int PovrayFrames = 2;
constexpr int PovrayEvery = 10; // runs, on average
constexpr farm::Micros Payment = 5'000'000;
constexpr const char* PovrayScene
    = "camera{location -3*z} light_source{9,1} sphere{clock*x,1 pigment{rgb 1}}";
constexpr const char* PngEnd = "IEND\xae\x42\x60\x82";

/// Writes a frame in two parts, with some work between them.
constexpr const char* Renderer
    = "echo {frame} > {output}; i=0; while [ $i -lt 500 ]; do i=$((i+1)); done; cat {scene} >> {output}";

/// Zero when each finished frame has one charge and no other frame has any.
constexpr const char* WrongCharges = R"sql(
SELECT (SELECT count(*) FROM frames WHERE finished_at IS NOT NULL AND 1 <>
           (SELECT count(*) FROM charges WHERE charges.job = frames.job AND frame = number))
     + (SELECT count(*) FROM charges) - (SELECT count(*) FROM frames WHERE finished_at IS NOT NULL))sql";

template <typename Condition>
void Await(Condition condition, const char* otherwise)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition() && !clock.hasExpired(Patience))
        QThread::msleep(2);
    Require(condition(), QString::fromUtf8(otherwise));
}

/// A farm at work among kills.
class Rendering
{
public:
    Rendering(KillRun& run, const QString& folder, bool withPovray)
        : m_run(run)
        , m_folder(folder)
        , m_withPovray(withPovray)
        , m_data(folder)
    {
        WriteFile(run.Path("scene.txt"_s), PovrayScene);
        WriteFile(
            run.Path("types.json"_s), ScriptedTypes(Renderer).replace("@jobs@", run.Path("jobs"_s).toUtf8()));
        for (int number = 0; number < Jobs; ++number) {
            farm::NewJob job = m_data.Job("job"_s, withPovray ? PovrayFrames : Frames);
            job.width = job.height = 16;
            m_data.jobs.Add(job);
        }
        m_paid = m_data.Balance();
        Start();
    }

    void KillOne()
    {
        m_run.LetWork(*m_farm);
        const QByteArrayList renderers = Renderers();
        if (m_run.Below(2) == 0) {
            farm::Ledger(m_data.database).Pay("ann"_s, Payment, {}, 0);
            m_paid += Payment;
        }
        m_run.Count(m_farm->Has("listening on "), IsDone());
        if (!renderers.isEmpty() && m_run.Below(3) == 0) {
            m_run.moments.last() += " a renderer"_s;
            ::kill(-renderers.first().toInt(), SIGKILL);
            return;
        }
        m_farm->Kill();
        // A process that has ended, though nobody has waited for it yet, has no command line.
        for (const QByteArray& renderer : renderers)
            Await([&] { return ReadFile("/proc/%1/cmdline"_s.arg(renderer.toInt())).isEmpty(); },
                "a renderer outlives its farm");
        Check();
        Start();
    }

    void Finish()
    {
        Require(m_farm->Await("listening on "), "the farm does not start"_s);
        Await([this] { return IsDone(); }, "a job does not finish");
        m_farm.reset();
        Check();
        Require(m_data.Count("SELECT count(*) FROM frames WHERE finished_at IS NULL") == 0,
            "a frame is missing"_s);
        const QStringList files = FilesBelow(m_folder + "/jobs"_s);
        for (const QString& file : files)
            Require(!file.contains("unfinished"_s), "a part of a frame is left: "_s + file);
    }

private:
    void Start()
    {
        QStringList options {"--scenes"_s, m_run.Path(QString()), "--slots"_s, "2"_s, "--price"_s, "10"_s};
        if (!m_withPovray)
            options += {"--job-types"_s, m_run.Path("types.json"_s)};
        m_farm = StartFarm(m_folder, options);
    }

    bool IsDone()
    {
        Require(m_data.Count("SELECT count(*) FROM jobs WHERE status = 7") == 0, "a job has failed"_s);
        return m_data.Count("SELECT count(*) FROM jobs WHERE status <> 4") == 0;
    }

    QByteArrayList Renderers() const
    {
        const QByteArray children
            = ReadFile("/proc/%1/task/%1/children"_s.arg(m_farm->processId())).simplified();
        return children.isEmpty() ? QByteArrayList() : children.split(' ');
    }

    void Check()
    {
        Require(m_data.Count(WrongCharges) == 0, "a frame is not charged once"_s);
        m_data.database.Read([this](SQLite::Database& connection) {
            const auto charged
                = connection.execAndGet("SELECT coalesce(sum(amount), 0) FROM charges").getInt64();
            Require(m_data.Balance() == m_paid - charged, "the balance is not payments less charges"_s);
            SQLite::Statement frames(connection,
                "SELECT id || '/' || file, size, frames.number FROM jobs JOIN frames ON job = key "
                "WHERE finished_at IS NOT NULL");
            while (frames.executeStep()) {
                const QString file = m_folder + "/jobs/"_s + storage::Text(frames.getColumn(0));
                const QByteArray content = ReadFile(file);
                const QByteArray whole
                    = frames.getColumn(2).getString().c_str() + QByteArray("\n") + PovrayScene;
                Require(content.size() == frames.getColumn(1).getInt()
                        && (m_withPovray ? content.endsWith(PngEnd) : content == whole),
                    "a frame is not whole: "_s + file);
            }
        });
    }

    KillRun& m_run;
    QString m_folder;
    bool m_withPovray;
    FarmData m_data;
    farm::Micros m_paid = 0;
    std::unique_ptr<WorkerProcess> m_farm;
};

} // namespace

void KillRenders(KillRun& run)
{
    static const QTemporaryDir folder;
    static const bool isPrepared = !PrepareFarm(folder.path()).isEmpty();
    Require(isPrepared, "the farm's account cannot sign in"_s);
    const bool withPovray = !run.IsRehearsal() && run.Below(PovrayEvery) == 0
        && !QStandardPaths::findExecutable("povray"_s).isEmpty();
    Rendering rendering(run, CopyFarm(folder.path(), run), withPovray);
    for (int kill = 0; kill < run.Kills(); ++kill)
        rendering.KillOne();
    rendering.Finish();
}
