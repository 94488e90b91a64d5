// Kills the client or the farm at random moments of their work, starts them again, and checks that nothing is lost.
#include "bench/kill_run.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDirIterator>
#include <QThread>

#include <cmath>
#include <cstdio>

namespace {

struct Kind
{
    const char* name;
    void (*run)(KillRun& run);
    int (*work)(const QStringList& arguments);
};

constexpr Kind Kinds[]
    = {{"dependencies", KillDependencies, WorkOnDependencies}, {"uploads", KillUploads, WorkOnUploads},
        {"renders", KillRenders, nullptr}, {"downloads", KillDownloads, WorkOnDownloads}};

/// @return whether the run went well.
bool Do(const Kind& kind, KillRun& run, const QString& name)
{
    try {
        kind.run(run);
        return true;
    } catch (const std::exception& failure) {
        run.KeepFolder();
        std::printf("%s: %s: %s\n  kills: %s\n  kept: %s\n", kind.name, qUtf8Printable(name), failure.what(),
            qUtf8Printable(run.moments.join(", "_s)), qUtf8Printable(run.Path(QString())));
        std::fflush(stdout);
        return false;
    }
}

bool DoSeries(const Kind& kind, int first, int last, unsigned seed)
{
    constexpr int RunsPerRehearsal = 10; // a busy machine may become idle, so the work is timed again
    std::array<int, 3> counts {};
    int failed = 0;
    double workTime = 0;
    QElapsedTimer clock;
    clock.start();
    for (int number = first; number <= last; ++number) {
        // The first rehearsal also prepares what all runs share.
        const int rehearsals = number == first ? 2 : int((number - first) % RunsPerRehearsal == 0);
        for (int count = 0; count < rehearsals; ++count) {
            const qint64 start = clock.elapsed();
            KillRun rehearsal(seed, number, 0);
            failed += int(!Do(kind, rehearsal, "the rehearsal"_s));
            workTime = double(clock.elapsed() - start);
        }
        KillRun run(seed, number, workTime);
        failed += int(!Do(kind, run, "run %1 of seed %2"_s.arg(number).arg(seed)));
        for (std::size_t phase = 0; phase < counts.size(); ++phase)
            counts.at(phase) += run.counts.at(phase);
    }
    std::printf(
        "%s: %d runs of seed %u in %.1f s; %d kills before, %d during, %d after the work; %d failed\n",
        kind.name, last - first + 1, seed, double(clock.elapsed()) / 1000, counts[0], counts[1], counts[2],
        failed);
    std::fflush(stdout);
    return failed == 0;
}

std::unique_ptr<WorkerProcess> Start(const QString& program, const QStringList& arguments)
{
    auto worker = std::make_unique<WorkerProcess>(program, arguments);
    Require(worker->waitForStarted(Patience), program + " cannot be started"_s);
    return worker;
}

} // namespace

KillRun::KillRun(unsigned seed, int number, double workTime)
    : m_workTime(workTime)
{
    std::seed_seq sequence {seed, unsigned(number)};
    m_random.seed(sequence);
    m_kills = workTime > 0 ? 1 + Below(2) : 0;
}

void KillRun::LetWork(WorkerProcess& worker)
{
    // Some kills come after the work is done. A second one comes earlier, as less is left to do.
    const double range = m_workTime * (moments.isEmpty() ? 1.1 : 0.6);
    const double moment = range * std::uniform_real_distribution<double>()(m_random);
    moments.append("%1 of %2 ms"_s.arg(moment, 0, 'f', 1).arg(m_workTime));
    QElapsedTimer clock;
    clock.start();
    while (double(clock.elapsed()) < std::floor(moment))
        worker.waitForReadyRead(1);
    QThread::usleep(static_cast<unsigned long>(1000 * (moment - std::floor(moment))));
}

void KillRun::KillInWork(WorkerProcess& worker)
{
    LetWork(worker);
    worker.Kill();
    Count(worker.Has("begun"), worker.Has("done"));
}

std::unique_ptr<WorkerProcess> StartWorker(const QString& kind, const QStringList& arguments)
{
    return Start(QCoreApplication::applicationFilePath(), QStringList {"--work"_s, kind, "--"_s} + arguments);
}

std::unique_ptr<WorkerProcess> StartFarm(const QString& folder, const QStringList& more)
{
    return Start(QCoreApplication::applicationDirPath() + "/quillstar-farmd"_s,
        QStringList {"--data"_s, folder, "--no-demo"_s, "--log-level"_s, "error"_s} + more);
}

void Finish(WorkerProcess& worker)
{
    Require(worker.Await("done"), "the work stands still"_s);
    worker.closeWriteChannel();
    Require(worker.waitForFinished(Patience), "the worker does not end"_s);
}

void Tell(const QString& line)
{
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

QStringList FilesBelow(const QString& folder)
{
    QStringList files;
    QDirIterator found(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (found.hasNext())
        files.append(QDir(folder).relativeFilePath(found.next()));
    return files;
}

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{"kind"_s, "dependencies, uploads, renders or downloads; all if absent."_s, "kind"_s},
        {"runs"_s, "The number of runs of each kind."_s, "number"_s, "3"_s},
        {"seed"_s, "Draws the moments of the kills."_s, "number"_s, "1"_s},
        {"run"_s, "Repeats only this run."_s, "number"_s}, {"work"_s, "Is a worker."_s, "kind"_s}});
    parser.process(application);
    const bool isOne = parser.isSet("run"_s);
    const int last = parser.value(isOne ? "run"_s : "runs"_s).toInt();
    int result = 0;
    for (const Kind& kind : Kinds) {
        if (parser.value("work"_s) == QLatin1String(kind.name))
            return kind.work(parser.positionalArguments());
        if (!parser.isSet("work"_s)
            && (!parser.isSet("kind"_s) || parser.value("kind"_s) == QLatin1String(kind.name)))
            result |= int(!DoSeries(kind, isOne ? last : 1, last, parser.value("seed"_s).toUInt()));
    }
    return result;
}
