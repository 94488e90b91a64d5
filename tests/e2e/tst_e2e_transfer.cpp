#include "host/mainform/main_form.h"
#include "tests/e2e/running_client.h"

#include <QDirIterator>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QRandomGenerator>
#include <QSettings>
#include <QTableWidget>
#include <QTabWidget>

#include <csignal>

namespace {

constexpr int Frames = 6;
constexpr int NoiseSide = 2600; // pixels; noise does not compress, so that sending it takes a while

// The scene can do without the second texture, which is missing.
constexpr const char* Scene = R"(#version 3.7;
#include "camera.inc"
global_settings { assumed_gamma 1 }
light_source { <4, 8, -6> rgb 1 }
plane { z, 1 pigment { image_map { png "maps/noise.png" interpolate 2 } scale 3 } rotate z * clock * 90 }
#if (file_exists("maps/forgotten.png"))
    sphere { 0, 0.5 pigment { image_map { png "maps/forgotten.png" } } }
#end
)";

bool WriteScene(const QString& folder)
{
    QImage noise(NoiseSide, NoiseSide, QImage::Format_RGB32);
    QRandomGenerator random(1);
    random.fillRange(reinterpret_cast<quint32*>(noise.bits()), noise.width() * noise.height());
    return QDir().mkpath(folder + "/maps"_s) && noise.save(folder + "/maps/noise.png"_s)
        && WriteFile(folder + "/wall.pov"_s, Scene)
        && WriteFile(folder + "/camera.inc"_s, "camera { location <0, 0, -3> look_at 0 }\n")
        && WriteFile(folder + "/wall.ini"_s,
            "Width=320\nHeight=180\nInitial_Frame=1\nFinal_Frame=" + QByteArray::number(Frames) + "\n");
}

void Drop(QWidget* form, const QString& file)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    const QPoint place = form->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(form, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(form, &drop);
}

QStringList FilesIn(const QString& folder, const QString& pattern)
{
    QStringList files;
    QDirIterator found(folder, {pattern}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (found.hasNext())
        files.append(found.next());
    return files;
}

/// Ends the farm that uses this data folder as a power cut would.
bool KillFarm(const QString& dataFolder)
{
    const QStringList processes = QDir("/proc"_s).entryList({"[1-9]*"_s}, QDir::Dirs);
    for (const QString& process : processes) {
        const QByteArray command = ReadFile("/proc/%1/cmdline"_s.arg(process));
        if (command.contains("quillstar-farmd") && command.contains(QFile::encodeName(dataFolder)))
            return ::kill(process.toInt(), SIGKILL) == 0;
    }
    return false;
}

const std::tuple<const char*, const char*> Kills[] = {
    {"all goes well", ""},
    {"the farm is killed during the upload", "upload"},
    {"the farm is killed while it renders", "rendering"},
    {"the farm is killed during the download", "download"},
};

} // namespace

/// A scene on its way to the farm and its frames on their way back, with the whole client.
class TestE2eTransfer : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_client = std::make_unique<RunningClient>();
        m_farm = m_client->PrepareFarm("artist");
        QSettings settings(m_client->Path("client.ini"_s), QSettings::IniFormat);
        settings.setValue("vtr.account.artist/autodownload"_s, true);
        settings.setValue("vtr.account.artist/downloadfolder"_s, Downloads());
    }

    void cleanup()
    {
        m_client.reset();
        m_farm.reset();
    }

    void ASceneGoesUpAndItsFramesComeDown_data() { AddRows(Kills); }
    void ASceneGoesUpAndItsFramesComeDown()
    {
        const QString killedDuring = QString::fromLatin1(std::get<1>(Row(Kills)));
        QVERIFY(WriteScene(m_client->Path("scenes"_s)));
        QCOMPARE(m_client->Start("artist"_s), QString());
        EVENTUALLY(FindJobTable()->isVisible());
        bool killed = false;
        const Soon kill([&] {
            if (!HasBegun(killedDuring))
                return false;
            killed = KillFarm(m_client->Path("farm"_s)) && !HasEnded(killedDuring);
            return true;
        });

        SubmitByDrop(0);
        if (QTest::currentTestFailed())
            return;
        // The client orders downloads of the finished jobs that it lists, and the new task has shown its own list.
        Find<QTabWidget>("tbwContainer")->setCurrentIndex(0);
        QTimer refresher; // asks for the list more often than the client does
        connect(&refresher, &QTimer::timeout, this,
            [] { QMetaObject::invokeMethod(FindMainWindow(), "RefreshJobList"); });
        refresher.start(1000);
        // Renderers run at a low priority, so a busy machine takes longer.
        QTRY_COMPARE_WITH_TIMEOUT(FetchedFrames().size(), Frames, 5 * Patience);
        QVERIFY2(killed || killedDuring.isEmpty(), "the farm was not killed at the right moment");

        const QStringList finished = FinishedFrames();
        QCOMPARE(finished.size(), Frames);
        const QString jobFolder = Downloads() + "/1_wall/"_s;
        for (const QString& frame : finished)
            QVERIFY2(ReadFile(frame) == ReadFile(jobFolder + QFileInfo(frame).fileName()), qPrintable(frame));
        EVENTUALLY_COMPARE(FilesIn(Downloads(), "*"_s).size(), Frames);

        if (killedDuring.isEmpty()) {
            const int uploads = CountUploads();
            QVERIFY(uploads > 0);
            SubmitByDrop(1);
            QCOMPARE(CountUploads(), uploads);
        }
    }

private:
    QString Downloads() const { return m_client->Path("downloads"_s); }
    QStringList FinishedFrames() const { return FilesIn(m_client->Path("farm/jobs"_s), "frame_*.png"_s); }
    QStringList FetchedFrames() const { return FilesIn(Downloads(), "frame_*.png"_s); }

    int CountJobs() const { return m_farm->Count("SELECT count(*) FROM jobs"); }
    int CountUploads() const { return m_farm->Count("SELECT count(*) FROM uploads"); }

    /// Whether a phase of the transfer has begun.
    bool HasBegun(const QString& phase) const
    {
        if (phase == "rendering"_s)
            return !FinishedFrames().isEmpty();
        if (phase == "download"_s)
            return !FilesIn(Downloads(), "*"_s).isEmpty();
        const QStringList uploads = FilesIn(m_client->Path("farm/uploads"_s), "*"_s);
        return phase == "upload"_s && std::any_of(uploads.cbegin(), uploads.cend(), [](const QString& file) {
            return QFileInfo(file).size() > 4'000'000;
        });
    }

    bool HasEnded(const QString& phase) const
    {
        if (phase == "rendering"_s)
            return FinishedFrames().size() == Frames;
        return phase == "download"_s ? FetchedFrames().size() == Frames : CountJobs() > 0;
    }

    /// Drops the scene, agrees to go on without the missing texture and waits until the farm has the job.
    void SubmitByDrop(int jobsBefore)
    {
        const Soon agreed([] { return Answer("forgotten.png"_s, "btnMessageBox_2"); });
        Drop(FindJobTable()->window(), m_client->Path("scenes/wall.pov"_s));
        EVENTUALLY(agreed.IsDone());
        EVENTUALLY_COMPARE(CountJobs(), jobsBefore + 1);
    }

    std::unique_ptr<RunningClient> m_client;
    std::unique_ptr<FarmData> m_farm;
};

QTEST_MAIN(TestE2eTransfer)
#include "tst_e2e_transfer.moc"
