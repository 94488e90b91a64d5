// Measures how long scenes take from the drop to the job, with a farm in this process.
#include "farm/farm.h"
#include "host/rendercore/submit/submit_queue.h"
#include "tests/farm/farm_client.h"
#include "tests/farm/farm_fixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTest>

#include <cstdio>

namespace {

constexpr int SmallFiles = 300;
constexpr int SmallBytes = 8192;
constexpr qint64 LargeBytes = 300'000'000;
constexpr int SettleTime = 2500; // ms, after which an unchanged file counts as such

void WriteSmallFiles(const QDir& folder)
{
    QByteArray scene;
    for (int number = 0; number < SmallFiles; ++number) {
        QByteArray noise(SmallBytes, Qt::Uninitialized);
        QRandomGenerator(static_cast<quint32>(number + 1))
            .fillRange(reinterpret_cast<quint32*>(noise.data()), SmallBytes / 4);
        WriteFile(folder.filePath(QString::number(number) + QLatin1String(".png")), noise);
        scene += "createNode file;\n\tsetAttr \".ftn\" -type \"string\" \"" + QByteArray::number(number)
            + ".png\";\n";
    }
    WriteFile(folder.filePath("small.ma"_s), scene);
}

/// Writes a scene of random geometry, which compresses only partly.
void WriteLargeScene(const QString& path)
{
    QFile scene(path);
    scene.open(QIODevice::WriteOnly);
    QRandomGenerator random(1);
    while (scene.size() < LargeBytes) {
        QByteArray mesh = "createNode mesh -n \"m\";\n\tsetAttr -s 5000 \".vt[0:4999]\"";
        for (int vertex = 0; vertex < 5000; ++vertex)
            mesh += " " + QByteArray::number(random.generateDouble() * 100, 'f', 6)
                + (vertex % 8 == 0 ? "\n\t\t" : "");
        scene.write(mesh + ";\n");
    }
}

class Client
{
public:
    Client(const QString& folder, const QUrl& farm, const QString& token)
        : m_queue(folder)
    {
        FarmAccess access;
        access.apiRoot = FarmApiRoot(farm);
        access.token = token;
        access.owner = "bench/ann"_s;
        m_queue.SetAccess(access);
    }

    void Measure(const char* what, const QString& scene)
    {
        QElapsedTimer clock;
        clock.start();
        const int before = m_queue.Ids().size();
        m_queue.Submit(scene);
        QString stages;
        int last = -1;
        const bool isDone = QTest::qWaitFor(
            [&] {
                const SubmitTask* task
                    = m_queue.Ids().size() > before ? m_queue.Task(m_queue.Ids().constLast()) : nullptr;
                if (task && static_cast<int>(task->stage) != last) {
                    last = static_cast<int>(task->stage);
                    stages += QStringLiteral(" %1:%2").arg(last).arg(clock.elapsed());
                }
                return task && (task->isDone || !task->IsRunnable());
            },
            600'000);
        const SubmitTask* task = m_queue.Task(m_queue.Ids().constLast());
        std::printf("%-32s %7.2f s  stages in ms:%s  %s\n", what, static_cast<double>(clock.elapsed()) / 1000,
            qUtf8Printable(stages), isDone ? qUtf8Printable(task->message) : "not done");
        std::fflush(stdout);
    }

private:
    SubmitQueue m_queue;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    const QDir root(folder.path());
    root.mkpath("farm"_s);
    root.mkpath("scenes"_s);
    const FarmData data(root.filePath("farm"_s));
    farm::FarmSettings settings;
    settings.dataFolder = root.filePath("farm"_s);
    settings.sceneFolder = root.path();
    settings.jobTypesFile = QStringLiteral(JOB_TYPES);
    settings.demo = false;
    farm::Farm farm(settings);
    FarmClient client;
    client.SetUrl(farm.Url());
    const QString token = client.SignIn("ann", "secret");

    const QDir scenes(root.filePath("scenes"_s));
    Client submitter(root.filePath("transfer"_s), QUrl(farm.Url()), token);
    WriteSmallFiles(scenes);
    QTest::qWait(SettleTime);
    submitter.Measure("300 small files", scenes.filePath("small.ma"_s));
    submitter.Measure("300 small files, unchanged", scenes.filePath("small.ma"_s));
    // Not before, as the farm would wait for all of it to reach the disk.
    WriteLargeScene(scenes.filePath("large.ma"_s));
    QTest::qWait(SettleTime);
    submitter.Measure("scene of 300 MB", scenes.filePath("large.ma"_s));
    submitter.Measure("scene of 300 MB, unchanged", scenes.filePath("large.ma"_s));
    return 0;
}
