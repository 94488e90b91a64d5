// Frames on their way from a farm; the client is killed.
#include "bench/kill_farm.h"
#include "farm/rendering/render_queue.h"
#include "host/rendercore/download/download_queue.h"
#include "storage/checksum.h"

#include <QCoreApplication>
#include <QMap>
#include <QSocketNotifier>

#include <unistd.h>

namespace {

constexpr int Jobs = 2;
constexpr int Frames = 12; // frames per job
constexpr int FrameBytes = 60'000;

/// A farm with finished jobs, which serves all runs.
class Gallery
{
public:
    Gallery()
    {
        arguments = QStringList(PrepareFarm(m_folder.path()));
        FarmData data(m_folder.path());
        farm::RenderQueue queue(data.database, data.feed, data.terms);
        for (int job = 0; job < Jobs; ++job) {
            const farm::AddedJob added = data.jobs.Add(data.Job("shot"_s, Frames));
            const QDir folder(m_folder.filePath("jobs/"_s + added.id));
            folder.mkpath("."_s);
            for (int number = 1; number <= Frames; ++number) {
                const QString name = "frame_%1.png"_s.arg(number, 4, 10, QLatin1Char('0'));
                const QString path = folder.filePath(name);
                WriteFile(path, QByteArray(FrameBytes, char(number)) + added.id.toUtf8());
                const farm::Picture picture {name, QFileInfo(path).size(), storage::FileChecksum(path)};
                queue.Finish({added.key, number, 1}, picture, 1, 1);
                checksums.insert(added.id + "/"_s + name, picture.checksum);
            }
            arguments.append(added.id);
        }
        m_farm = StartFarm(m_folder.path());
        Require(m_farm->Await("listening on "), "the farm does not start"_s);
        arguments.prepend(QString::fromUtf8(m_farm->Line("listening on ")));
    }

    QStringList arguments; ///< the client's arguments after its folder
    QMap<QString, QString> checksums;

private:
    QTemporaryDir m_folder;
    std::unique_ptr<WorkerProcess> m_farm;
};

bool AreFinished(const QVariantMap& tasks)
{
    return tasks.size() == Jobs * Frames
        && std::all_of(tasks.cbegin(), tasks.cend(), [](const QVariant& task) {
               return task.toMap().value("status"_s).toInt() == int(DownloadState::Finished);
           });
}

} // namespace

void KillDownloads(KillRun& run)
{
    static const Gallery gallery;
    QByteArrayList notices;
    for (int part = 0; part <= run.Kills(); ++part) {
        const auto worker = StartWorker("downloads"_s, QStringList(run.Path(QString())) + gallery.arguments);
        if (part < run.Kills())
            run.KillInWork(*worker);
        else
            Finish(*worker);
        for (const QByteArray& line : worker->Lines()) {
            Require(!line.startsWith("trouble "), QString::fromUtf8(line));
            if (!line.startsWith("notice "))
                continue;
            Require(!notices.contains(line), "a second notice of a job"_s);
            notices.append(line);
        }
    }
    const QStringList files = FilesBelow(run.Path("frames"_s));
    for (const QString& file : files)
        Require(storage::FileChecksum(run.Path("frames/"_s + file)) == gallery.checksums.value(file),
            "an unknown or damaged file: "_s + file);
    Require(files.size() == gallery.checksums.size(), "a file is missing"_s);
}

/// @param arguments the client's folder, the farm's URL, the token and the ids of the jobs.
int WorkOnDownloads(const QStringList& arguments)
{
    DownloadLimits limits;
    limits.firstPause = limits.http.firstPause = 5;
    DownloadQueue queue(arguments.at(0) + "/transfer"_s, limits);
    QObject::connect(&queue, &DownloadQueue::FilesFinished, qApp, [](const QString& file) {
        Tell("notice "_s + file.section("/"_s, -2, -2)); // the name of the job's folder
    });
    QObject::connect(
        &queue, &DownloadQueue::Notice, qApp, [](const QString& text) { Tell("trouble "_s + text); });
    queue.SetAccess(
        {FarmApiRoot(QUrl(arguments.at(1))), arguments.at(2), "farm/ann"_s, arguments.at(0) + "/frames"_s});
    QVariantMap orders;
    const QStringList jobs = arguments.mid(3);
    for (const QString& job : jobs)
        orders.insert(job, QVariantMap {{"subDir"_s, job}, {"manual"_s, 0}});
    queue.Order(orders);
    Tell("begun"_s);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, qApp, [&look, &queue] {
        if (!AreFinished(*queue.Tasks()))
            return;
        look.stop();
        Tell("done"_s);
    });
    look.start(2);
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
