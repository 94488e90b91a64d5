#include "farm/accounts/account_store.h"
#include "farm/jobs/job_store.h"
#include "host/mainform/main_form.h"
#include "tests/e2e/client_windows.h"
#include "tests/e2e/running_client.h"

#include <QDirIterator>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSettings>
#include <QTableWidget>
#include <QTabWidget>
#include <QtTest>

#include <csignal>

namespace {

constexpr int Frames = 6;
constexpr int TransferTime = 120000; // ms
constexpr int NoiseSide = 2600;      // pixels; does not compress, so that sending it takes a while

// The second texture is one that the artist has forgotten and the scene can do without.
constexpr const char* Scene = R"(#version 3.7;
#include "camera.inc"
global_settings { assumed_gamma 1 }
light_source { <4, 8, -6> rgb 1 }
plane { z, 1 pigment { image_map { png "maps/noise.png" interpolate 2 } scale 3 } rotate z * clock * 90 }
#if (file_exists("maps/forgotten.png"))
    sphere { 0, 0.5 pigment { image_map { png "maps/forgotten.png" } } }
#end
)";

QImage Noise()
{
    QImage image(NoiseSide, NoiseSide, QImage::Format_RGB32);
    QRandomGenerator random(1);
    random.fillRange(reinterpret_cast<quint32*>(image.bits()), image.width() * image.height());
    return image;
}

bool WriteScene(const QString& folder)
{
    return QDir().mkpath(folder + QLatin1String("/maps"))
        && WriteFile(folder + QLatin1String("/wall.pov"), Scene)
        && WriteFile(folder + QLatin1String("/camera.inc"), "camera { location <0, 0, -3> look_at 0 }\n")
        && WriteFile(folder + QLatin1String("/wall.ini"),
            "Width=320\nHeight=180\nInitial_Frame=1\nFinal_Frame=" + QByteArray::number(Frames) + "\n")
        && Noise().save(folder + QLatin1String("/maps/noise.png"));
}

/// What somebody does who drags a file onto the window.
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

QStringList FilesIn(const QString& folder, const QStringList& names)
{
    QStringList files;
    QDirIterator found(folder, names, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (found.hasNext())
        files.append(found.next());
    files.sort();
    return files;
}

/// Ends the farm that uses this data folder as a power cut would.
bool KillFarm(const QString& dataFolder)
{
    const QStringList processes
        = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[1-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        const QByteArray command = ReadFile(QStringLiteral("/proc/%1/cmdline").arg(process));
        if (command.contains("quillstar-farmd") && command.contains(QFile::encodeName(dataFolder)))
            return ::kill(process.toInt(), SIGKILL) == 0;
    }
    return false;
}

} // namespace

class TestE2eTransfer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_client.reset(); }
    void ASceneGoesUpAndItsFramesComeDown_data();
    void ASceneGoesUpAndItsFramesComeDown();

private:
    QString Farm(const char* path) const
    {
        return m_client->Path(QStringLiteral("farm/") + QLatin1String(path));
    }
    QString Downloads() const { return m_client->Path(QStringLiteral("downloads")); }
    QStringList FinishedFrames() const { return FilesIn(Farm("jobs"), {QStringLiteral("frame_*.png")}); }
    QStringList FetchedFrames() const { return FilesIn(Downloads(), {QStringLiteral("frame_*.png")}); }
    bool IsAt(const QString& moment) const;
    void SubmitByDrop(int jobsBefore);
    int CountJobs() const;
    qint64 CountUploads() const;

    std::unique_ptr<RunningClient> m_client;
    std::unique_ptr<farm::Database> m_database;
    std::int64_t m_account = 0;
};

void TestE2eTransfer::init()
{
    m_database.reset();
    m_client = std::make_unique<RunningClient>();
    QVERIFY(QDir().mkdir(Farm("")));
    m_database = std::make_unique<farm::Database>(Farm("farm.sqlite"), farm::Schema());
    m_account = farm::AccountStore(*m_database, 3600)
                    .Add({QStringLiteral("artist"), QStringLiteral("artist@example.org"),
                        QStringLiteral("artist"), false, 50'000'000, 0});
    QSettings settings(m_client->Path(QStringLiteral("client.ini")), QSettings::IniFormat);
    settings.setValue(QStringLiteral("vtr.account.artist/autodownload"), true);
    settings.setValue(QStringLiteral("vtr.account.artist/downloadfolder"), Downloads());
}

int TestE2eTransfer::CountJobs() const
{
    return int(farm::JobStore(*m_database).List(m_account, {}, 1, 1).total);
}

qint64 TestE2eTransfer::CountUploads() const
{
    return m_database->Read([](SQLite::Database& connection) {
        return connection.execAndGet("SELECT count(*) FROM uploads").getInt64();
    });
}

/// Whether the moment at which the farm is to be killed has come and has not passed.
bool TestE2eTransfer::IsAt(const QString& moment) const
{
    if (moment == QLatin1String("upload")) {
        const QStringList uploads = FilesIn(Farm("uploads"), {});
        return std::any_of(uploads.cbegin(), uploads.cend(),
            [](const QString& file) { return QFileInfo(file).size() > 4'000'000; });
    }
    if (moment == QLatin1String("rendering"))
        return !FinishedFrames().isEmpty();
    return FilesIn(Downloads(), {QStringLiteral("*")}).size() > 0;
}

/// Drops the scene and agrees to go on without the texture that is missing, until the farm has the job.
void TestE2eTransfer::SubmitByDrop(int jobsBefore)
{
    const QString folder = m_client->Path(QStringLiteral("scenes"));
    const Soon agreed([] {
        QWidget* box = QApplication::activeModalWidget();
        if (!box)
            return false;
        const bool named = SaidBy(box).contains(QLatin1String("forgotten.png"));
        box->findChild<QPushButton*>(QStringLiteral("btnMessageBox_2"))->click();
        return named;
    });
    Drop(FindJobTable()->window(), folder + QLatin1String("/wall.pov"));
    QTRY_VERIFY_WITH_TIMEOUT(agreed.IsDone(), TransferTime);
    QTRY_COMPARE_WITH_TIMEOUT(CountJobs(), jobsBefore + 1, TransferTime);
}

void TestE2eTransfer::ASceneGoesUpAndItsFramesComeDown_data()
{
    QTest::addColumn<QString>("killedDuring");
    QTest::newRow("all goes well") << QString();
    QTest::newRow("the farm is killed during the upload") << QStringLiteral("upload");
    QTest::newRow("the farm is killed while it renders") << QStringLiteral("rendering");
    QTest::newRow("the farm is killed during the download") << QStringLiteral("download");
}

void TestE2eTransfer::ASceneGoesUpAndItsFramesComeDown()
{
    QFETCH(QString, killedDuring);
    QVERIFY(WriteScene(m_client->Path(QStringLiteral("scenes"))));
    QCOMPARE(m_client->Start(QStringLiteral("artist")), QString());
    QTRY_VERIFY_WITH_TIMEOUT(FindJobTable() && FindJobTable()->isVisible(), SignInTime);

    bool killed = false;
    bool passed = false;
    QTimer killer;
    connect(&killer, &QTimer::timeout, this, [&] {
        if (!IsAt(killedDuring))
            return;
        killer.stop();
        killed = KillFarm(m_client->Path(QStringLiteral("farm")));
        passed = killedDuring == QLatin1String("upload") ? CountJobs() > 0
            : killedDuring == QLatin1String("rendering") ? FinishedFrames().size() == Frames
                                                         : FetchedFrames().size() == Frames;
    });
    if (!killedDuring.isEmpty())
        killer.start(1);

    SubmitByDrop(0);
    if (QTest::currentTestFailed())
        return;
    // Finished jobs are noticed where they are listed; the new task has brought its own list forward.
    Find<QTabWidget>("tbwContainer")->setCurrentIndex(0);
    QTimer refresher; // sooner than the client's own
    connect(&refresher, &QTimer::timeout, this,
        [] { QMetaObject::invokeMethod(FindMainWindow(), "RefreshJobList"); });
    refresher.start(1000);
    QTRY_COMPARE_WITH_TIMEOUT(FetchedFrames().size(), Frames, RenderTime);
    QCOMPARE(killed, !killedDuring.isEmpty());
    QVERIFY2(!passed, "the farm was killed too late to show anything");

    const QStringList finished = FinishedFrames();
    QCOMPARE(finished.size(), Frames);
    const QString jobFolder = Downloads() + QLatin1String("/1_wall/");
    for (const QString& frame : finished)
        QVERIFY2(ReadFile(frame) == ReadFile(jobFolder + QFileInfo(frame).fileName()), qPrintable(frame));
    QTRY_COMPARE(FilesIn(Downloads(), {QStringLiteral("*")}).size(), Frames);

    if (killedDuring.isEmpty()) {
        const qint64 uploads = CountUploads();
        QVERIFY(uploads > 0);
        SubmitByDrop(1);
        QCOMPARE(CountUploads(), uploads);
    }
}

QTEST_MAIN(TestE2eTransfer)
#include "tst_e2e_transfer.moc"
