// Scenes on their way to a farm; the client or the farm is killed.
#include "bench/kill_farm.h"
#include "host/rendercore/submit/submit_queue.h"
#include "storage/checksum.h"

#include <QCoreApplication>
#include <QMap>
#include <QSet>
#include <QSocketNotifier>

#include <utility>

#include <unistd.h>

namespace {

constexpr int LargeBytes = 2'500'000; // more than one chunk
constexpr const char* NoRenderer
    = R"({"povray": {"program": "none", "arguments": [], "suffix": "png", "frame_time_limit": 60}})";

/// The checksums of the files of each job by their paths.
using Jobs = QMap<QString, QMap<QString, QString>>;

/// The scenes that all runs submit, and the farm that they begin with.
struct Scenes
{
    Scenes()
    {
        QDir(folder.path()).mkdir("scenes"_s);
        QByteArray textures;
        for (char number = '0'; number < '7'; ++number) {
            textures += QByteArray("sphere{0,1 pigment{image_map{png \"") + number + ".png\"}}}\n";
            Add("small"_s, QChar::fromLatin1(number) + ".png"_s, QByteArray(6000, number));
        }
        QVector<quint32> noise(LargeBytes / 4);
        QRandomGenerator(1).fillRange(noise.data(), noise.size());
        Add("small"_s, "small.pov"_s, textures);
        Add("large"_s, "large.png"_s, {reinterpret_cast<const char*>(noise.constData()), LargeBytes});
        Add("large"_s, "large.pov"_s, "sphere{0,1 pigment{image_map{png \"large.png\"}}}");
        Add("plain"_s, "plain.pov"_s, "sphere{0,1}");
    }

    void Add(const QString& job, const QString& name, const QByteArray& content)
    {
        const QString path = folder.filePath("scenes/"_s + name);
        WriteFile(path, content);
        const QString checksum = storage::FileChecksum(path);
        jobs[job][name] = checksum;
        contents.insert(checksum);
    }

    QTemporaryDir folder;
    QString token = PrepareFarm(folder.path());
    Jobs jobs;
    QSet<QString> contents;
};

/// A client and its farm among kills.
class Submission
{
public:
    Submission(KillRun& run, const QString& farm, const Scenes& scenes)
        : m_run(run)
        , m_farmFolder(farm)
        , m_arguments({run.Path("transfer"_s), scenes.folder.filePath("scenes"_s), scenes.token})
    {
        WriteFile(run.Path("types.json"_s), NoRenderer);
        StartClient();
        StartFarmAgain();
    }

    void KillOne()
    {
        m_run.LetWork(*m_client);
        const bool hitsFarm = m_run.Below(2) == 0;
        m_run.moments.last() += hitsFarm ? " the farm"_s : " the client"_s;
        m_run.Count(m_client->Has("begun"), m_client->Has("done"));
        if (hitsFarm)
            StartFarmAgain();
        else
            StartClient();
    }

    void End()
    {
        Finish(*m_client);
        m_farm.reset();
    }

private:
    /// Passes the farm's address to the client's standard input, and the scenes that have a task as arguments.
    void StartClient()
    {
        if (m_client)
            m_client->Kill();
        for (const QByteArray& line : m_client ? m_client->Lines() : QByteArrayList()) {
            if (line.startsWith("task ") && !m_arguments.contains(QString::fromUtf8(line.mid(5))))
                m_arguments.append(QString::fromUtf8(line.mid(5)));
        }
        m_client = StartWorker("uploads"_s, m_arguments);
        m_client->write(m_url + '\n');
    }

    void StartFarmAgain()
    {
        m_farm.reset();
        m_farm = StartFarm(m_farmFolder, {"--job-types"_s, m_run.Path("types.json"_s)});
        Require(m_farm->Await("listening on "), "the farm does not start"_s);
        m_url = m_farm->Line("listening on ");
        m_client->write(m_url + '\n');
    }

    KillRun& m_run;
    QString m_farmFolder;
    QStringList m_arguments;
    QByteArray m_url;
    std::unique_ptr<WorkerProcess> m_client;
    std::unique_ptr<WorkerProcess> m_farm;
};

void Check(const QString& farm, const Scenes& scenes)
{
    FarmData data(farm);
    Require(data.Count("SELECT count(*) FROM jobs") == scenes.jobs.size(), "a job is missing or double"_s);
    const Jobs jobs = data.database.Read([](SQLite::Database& connection) {
        SQLite::Statement rows(
            connection, "SELECT name, path, checksum FROM jobs JOIN job_files ON job = key");
        Jobs found;
        while (rows.executeStep())
            found[storage::Text(rows.getColumn(0))][storage::Text(rows.getColumn(1))]
                = storage::Text(rows.getColumn(2));
        return found;
    });
    Require(jobs == scenes.jobs, "a job has other files"_s);
    Require(data.Count("SELECT count(*) FROM uploads WHERE unpacked IS NULL") == 0
            && FilesBelow(farm + "/uploads"_s).isEmpty(),
        "a part of a package is left"_s);
    QSet<QString> contents;
    const QStringList files = FilesBelow(farm + "/contents"_s);
    for (const QString& file : files) {
        contents.insert(QFileInfo(file).fileName());
        Require(storage::FileChecksum(farm + "/contents/"_s + file) == QFileInfo(file).fileName(),
            "a content is damaged: "_s + file);
    }
    Require(contents == scenes.contents, "a content is missing or left over"_s);
}

/// The client: submits every scene of a folder that has no task.
class Submitter : public QObject
{
public:
    explicit Submitter(const QStringList& arguments)
        : m_scenes(QDir(arguments.at(1)).entryInfoList({"*.pov"_s}))
        , m_known(arguments.mid(3))
        , m_queue(arguments.at(0))
    {
        m_access = {{}, arguments.at(2), "farm/ann"_s, {}};
        connect(&m_queue, &SubmitQueue::Loaded, this, &Submitter::SubmitMissing);
        connect(&m_queue, &SubmitQueue::ListChanged, this, [this] {
            for (const QString& id : m_queue.Ids())
                Tell("task "_s + m_queue.Task(id)->scene);
        });
        connect(&m_input, &QSocketNotifier::activated, this, &Submitter::ReadUrl);
        connect(&m_look, &QTimer::timeout, this, &Submitter::Look);
        m_look.start(2);
    }

private:
    void ReadUrl()
    {
        char byte = 0;
        if (::read(STDIN_FILENO, &byte, 1) != 1)
            return QCoreApplication::quit();
        m_url += byte;
        if (byte != '\n')
            return;
        m_access.apiRoot = FarmApiRoot(QUrl(QString::fromUtf8(m_url.trimmed())));
        m_url.clear();
        m_queue.SetAccess(m_access);
    }

    void SubmitMissing()
    {
        Tell("begun"_s);
        const QStringList& ids = m_queue.Ids();
        for (const QString& id : ids)
            m_known.append(m_queue.Task(id)->scene);
        for (const QFileInfo& scene : std::as_const(m_scenes)) {
            if (!m_known.contains(scene.filePath()))
                m_queue.Submit(scene.filePath());
        }
    }

    void Look()
    {
        int done = 0;
        for (const QString& id : m_queue.Ids()) {
            const SubmitTask& task = *m_queue.Task(id);
            done += int(task.isDone);
            if (task.error != SubmitError::None)
                qFatal("%s has halted: %s", qUtf8Printable(id), qUtf8Printable(task.message.Text()));
        }
        if (done < m_scenes.size())
            return;
        m_look.stop();
        Tell("done"_s);
    }

    QFileInfoList m_scenes;
    QStringList m_known;
    SubmitQueue m_queue;
    FarmAccess m_access;
    QSocketNotifier m_input {STDIN_FILENO, QSocketNotifier::Read};
    QByteArray m_url;
    QTimer m_look;
};

} // namespace

void KillUploads(KillRun& run)
{
    static const Scenes scenes;
    const QString farm = CopyFarm(scenes.folder.path(), run);
    Submission submission(run, farm, scenes);
    for (int kill = 0; kill < run.Kills(); ++kill)
        submission.KillOne();
    submission.End();
    Check(farm, scenes);
    Require(FilesBelow(run.Path("transfer/submit"_s)).isEmpty(), "the client keeps a package"_s);
}

/// @param arguments the queue's folder, the scenes' folder, the token, and the scenes that have been submitted.
int WorkOnUploads(const QStringList& arguments)
{
    const Submitter submitter(arguments);
    return QCoreApplication::exec();
}
