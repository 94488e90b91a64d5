// Measures how long scenes take from the drop to the job, and frames from the order to the folder, with a farm in this
// process. Large files are judged by the time in which the same file is copied and its checksum computed.
#include "bench/comparison.h"
#include "farm/farm.h"
#include "farm/rendering/render_queue.h"
#include "host/rendercore/download/download_queue.h"
#include "host/rendercore/submit/submit_queue.h"
#include "storage/checksum.h"
#include "tests/farm/farm_client.h"
#include "tests/farm/farm_fixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int SmallFiles = 300;
constexpr int SmallBytes = 8192;
constexpr int LargeBytes = 300'000'000;
constexpr int SettleTime = 2500;     // ms, after which an unchanged file counts as such
constexpr int LongestWait = 600'000; // ms
constexpr int Rounds = 3;

/// Bytes that do not compress, like those of most pictures.
QByteArray Noise(int size, quint32 seed)
{
    QByteArray noise(size, Qt::Uninitialized);
    QRandomGenerator(seed).fillRange(reinterpret_cast<quint32*>(noise.data()), size / 4);
    return noise;
}

QByteArray FileNode(const QString& file)
{
    return "createNode file;\n\tsetAttr \".ftn\" -type \"string\" \"" + file.toUtf8() + "\";\n";
}

QString WriteSmallFiles(const QDir& folder)
{
    QByteArray scene;
    for (int number = 0; number < SmallFiles; ++number) {
        const QString name = QStringLiteral("%1.png").arg(number);
        WriteFile(folder.filePath(name), Noise(SmallBytes, quint32(number + 1)));
        scene += FileNode(name);
    }
    WriteFile(folder.filePath("small.ma"_s), scene);
    return folder.filePath("small.ma"_s);
}

QString WritePictureScene(const QDir& folder, int round)
{
    const QString name = QStringLiteral("large%1").arg(round);
    WriteFile(folder.filePath(name + ".png"_s), Noise(LargeBytes, quint32(1000 + round)));
    WriteFile(folder.filePath(name + ".ma"_s), FileNode(name + ".png"_s));
    return folder.filePath(name + ".ma"_s);
}

/// Writes a scene of random geometry, which compresses only partly.
QString WriteGeometry(const QDir& folder, int part)
{
    QFile scene(folder.filePath(QStringLiteral("geometry%1.ma").arg(part)));
    scene.open(QIODevice::WriteOnly);
    QRandomGenerator random(quint32(part + 1));
    while (scene.size() < LargeBytes) {
        QByteArray mesh = "createNode mesh -n \"m\";\n\tsetAttr -s 5000 \".vt[0:4999]\"";
        for (int vertex = 0; vertex < 5000; ++vertex)
            mesh += " " + QByteArray::number(random.generateDouble() * 100, 'f', 6)
                + (vertex % 8 == 0 ? "\n\t\t" : "");
        scene.write(mesh + ";\n");
    }
    return scene.fileName();
}

double Seconds(const QElapsedTimer& clock)
{
    return double(clock.elapsed()) / 1000;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// @return the seconds that copying a file and computing the copy's checksum take.
double CopyTime(const QString& file)
{
    QElapsedTimer clock;
    clock.start();
    const QString copy = file + ".copy"_s;
    QProcess::execute("cp"_s, {file, copy});
    QProcess sum;
    sum.start("sha256sum"_s, {copy});
    sum.waitForFinished(LongestWait);
    const double seconds = Seconds(clock);
    QFile::remove(copy);
    return seconds;
}

/// A farm with the account ann, and ann's client.
class Bench
{
public:
    Bench()
    {
        for (const char* folder : {"farm", "scenes", "frames"})
            m_root.mkpath(QLatin1String(folder));
        m_data = std::make_unique<FarmData>(m_root.filePath("farm"_s));
        farm::FarmSettings settings;
        settings.dataFolder = m_root.filePath("farm"_s);
        settings.sceneFolder = m_root.path();
        settings.jobTypesFile = QStringLiteral(JOB_TYPES);
        settings.demo = false;
        m_farm = std::make_unique<farm::Farm>(settings);
        FarmClient client;
        client.SetUrl(m_farm->Url());
        m_access.apiRoot = FarmApiRoot(QUrl(m_farm->Url()));
        m_access.token = client.SignIn("ann", "secret");
        m_access.owner = "bench/ann"_s;
        m_access.folder = m_root.filePath("frames"_s);
        m_downloads.SetAccess(m_access);
    }

    QDir Scenes() const { return QDir(m_root.filePath("scenes"_s)); }

    /// @return the seconds from the drop of the scene to the job.
    double Submit(const QString& scene, bool isFarmOnThisComputer)
    {
        m_access.isOnThisComputer = isFarmOnThisComputer;
        m_submissions.SetAccess(m_access);
        QElapsedTimer clock;
        clock.start();
        const int before = m_submissions.Ids().size();
        m_submissions.Submit(scene);
        const auto task = [&] {
            const QStringList ids = m_submissions.Ids();
            return ids.size() > before ? m_submissions.Task(ids.constLast()) : nullptr;
        };
        const auto hasEnded = [&] { return task() && (task()->isDone || !task()->IsRunnable()); };
        if (!QTest::qWaitFor(hasEnded, LongestWait) || !task()->isDone)
            qFatal(
                "the scene was not submitted: %s", task() ? qPrintable(task()->message.Text()) : "no task");
        return Seconds(clock);
    }

    /// @param picture becomes the frame of a new job.
    /// @return the seconds from the order to the finished file.
    double Download(const QString& picture)
    {
        const farm::AddedJob job = m_data->jobs.Add(m_data->Job("shot"_s));
        const QString name = "frame_0001.png"_s;
        const QDir folder(m_root.filePath("farm/jobs/"_s + job.id));
        folder.mkpath("."_s);
        QFile::copy(picture, folder.filePath(name));
        farm::RenderQueue queue(m_data->database, m_data->feed, m_data->terms);
        queue.Finish({job.key, 1, 1},
            {name, QFileInfo(picture).size(), storage::FileChecksum(folder.filePath(name))}, 1, 1);

        QElapsedTimer clock;
        clock.start();
        const QVariantMap order {{"subDir"_s, job.id}, {"manual"_s, 1}};
        m_downloads.Order({{job.id, order}});
        const auto isFinished = [this] {
            const QVariantMap& tasks = *m_downloads.Tasks();
            return !tasks.isEmpty()
                && tasks.last().toMap().value("status"_s).toInt() == int(DownloadState::Finished);
        };
        const int before = m_downloads.Tasks()->size();
        if (!QTest::qWaitFor(
                [&] { return m_downloads.Tasks()->size() > before && isFinished(); }, LongestWait))
            qFatal("the frame was not downloaded");
        return Seconds(clock);
    }

private:
    QTemporaryDir m_folder;
    QDir m_root {m_folder.path()};
    FarmAccess m_access;
    std::unique_ptr<FarmData> m_data;
    std::unique_ptr<farm::Farm> m_farm;
    SubmitQueue m_submissions {m_root.filePath("transfer"_s)};
    DownloadQueue m_downloads {m_root.filePath("transfer"_s)};
};

void MeasureLargeFiles(Bench& bench, CostTable& table)
{
    std::vector<double> up;
    std::vector<double> down;
    for (int round = 0; round < Rounds; ++round) {
        const QString scene = WritePictureScene(bench.Scenes(), round);
        const QString picture = bench.Scenes().filePath(QFileInfo(scene).completeBaseName() + ".png"_s);
        up.push_back(bench.Submit(scene, true) / CopyTime(picture));
        down.push_back(bench.Download(picture) / CopyTime(picture));
        QFile::remove(picture);
    }
    table.Note("300 MB of pictures up"_s, 3, Median(up), "x"_s);
    table.Note("300 MB down"_s, 1.3, Median(down), "x"_s);
    for (const int part : {0, 1}) {
        const QString scene = WriteGeometry(bench.Scenes(), part);
        table.Note(part == 0 ? "300 MB of geometry up"_s
                             : "300 MB of geometry up, compressed for a farm elsewhere"_s,
            part == 0 ? std::optional(3.0) : std::nullopt, bench.Submit(scene, part == 0) / CopyTime(scene),
            "x"_s);
    }
}

void MeasureSmallFiles(Bench& bench, CostTable& table)
{
    const QString scene = WriteSmallFiles(bench.Scenes());
    QTest::qWait(SettleTime);
    table.Note("300 small files up"_s, std::nullopt, bench.Submit(scene, true), "s"_s);
    table.Note("300 small files up, unchanged"_s, std::nullopt, bench.Submit(scene, true), "s"_s);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    CostTable table;
    Bench bench;
    MeasureSmallFiles(bench, table);
    MeasureLargeFiles(bench, table);
    return table.Conclude(QCoreApplication::arguments());
}
