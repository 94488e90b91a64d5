// Scenes on their way to a real farm in this process.
#include "farm/farm.h"
#include "farm/jobs/job_status.h"
#include "host/farmclient/http_transport.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_queue.h"
#include "tests/farm/farm_client.h"
#include "tests/farm/farm_fixture.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace {

const QString kOwner = QStringLiteral("test/ann");
constexpr int kMegabyte = 1000 * 1000;

QByteArray Noise(int bytes)
{
    QVector<quint32> noise(bytes / 4);
    QRandomGenerator(1).fillRange(noise.data(), noise.size());
    return QByteArray(reinterpret_cast<const char*>(noise.constData()), bytes);
}

QVariantList Arguments(int first, int last, const QString& width, const QString& height)
{
    QVariantList arguments = MakeArguments(first, last, 1, 1);
    QVariantMap range = arguments.constFirst().toMap();
    range[QStringLiteral("width")] = width;
    range[QStringLiteral("height")] = height;
    return {range};
}

} // namespace

class TestSubmitPipeline : public QObject
{
    Q_OBJECT

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }

    void StartFarm(std::int64_t quota = 1'000'000'000)
    {
        m_farm.reset();
        farm::FarmSettings settings;
        settings.dataFolder = Path(QStringLiteral("farm"));
        settings.sceneFolder = m_folder->path();
        settings.jobTypesFile = QStringLiteral(JOB_TYPES);
        settings.demo = false;
        settings.quota = quota;
        m_farm = std::make_unique<farm::Farm>(settings);
        if (!m_token.isEmpty())
            return;
        FarmClient client;
        client.SetUrl(m_farm->Url());
        m_token = client.SignIn("ann", "secret");
    }

    FarmAccess Access() const
    {
        FarmAccess access;
        access.apiRoot = m_farm ? FarmApiRoot(QUrl(m_farm->Url())) : QUrl();
        access.token = m_token;
        access.owner = kOwner;
        return access;
    }

    void StartQueue()
    {
        m_queue.reset();
        m_queue = std::make_unique<SubmitQueue>(Path(QStringLiteral("transfer")));
        m_queue->SetAccess(Access());
    }

    /// Writes the files and submits the first; returns the task's id.
    QString Submit(const QVector<QPair<QString, QByteArray>>& files)
    {
        for (const auto& [name, content] : files) {
            QDir().mkpath(QFileInfo(Path(name)).path());
            if (!WriteFile(Path(name), content))
                return {};
        }
        return m_queue->Submit(Path(files.constFirst().first)) ? m_queue->Ids().constLast() : QString();
    }

    /// Submits a scene with a texture that takes a while to send.
    QString SubmitLarge(int megabytes = 8)
    {
        return Submit({{QStringLiteral("large.pov"), "sphere{0,1 pigment{image_map{png \"large.png\"}}}"},
            {QStringLiteral("large.png"), Noise(megabytes * kMegabyte)}});
    }

    const SubmitTask& Task(const QString& id) const
    {
        static const SubmitTask none;
        const SubmitTask* task = m_queue->Task(id);
        return task ? *task : none;
    }

    /// Returns as soon as the task is seen in the stage or beyond it.
    void Await(const QString& id, SubmitStage stage, int progress = 0)
    {
        while (Task(id).stage < stage || (Task(id).stage == stage && Task(id).progress < progress))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    int Count(const char* table)
    {
        return m_data->database.Read([table](SQLite::Database& connection) {
            return connection.execAndGet(std::string("SELECT count(*) FROM ") + table).getInt();
        });
    }

    QStringList Packages() const
    {
        return QDir(Path(QStringLiteral("transfer/submit")))
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FarmData> m_data;
    std::unique_ptr<farm::Farm> m_farm;
    std::unique_ptr<SubmitQueue> m_queue;
    QString m_token;

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QDir(m_folder->path()).mkdir(QStringLiteral("farm"));
        m_data = std::make_unique<FarmData>(Path(QStringLiteral("farm")));
        m_token.clear();
        StartFarm();
        QVERIFY(!m_token.isEmpty());
        StartQueue();
    }

    void cleanup()
    {
        m_queue.reset();
        m_farm.reset();
        m_data.reset();
    }

    void AsksForMissingTexturesAndBecomesARenderedJob()
    {
        QSignalSpy lacking(m_queue.get(), &SubmitQueue::TexturesLacking);
        const QByteArray scene = "#include \"colors.inc\"\n#include \"parts/ball.inc\"\n"
                                 "camera{location <0,0,-3> look_at 0} light_source{<9,9,-9> White}\n"
                                 "#if (0) box{0,1 pigment{image_map{png \"gone.png\"}}} #end\n";
        const QString id = Submit({{QStringLiteral("shots/one.pov"), scene},
            {QStringLiteral("shots/parts/ball.inc"),
                "sphere{0,1 pigment{image_map{ppm \"../textures/dot.ppm\"}}}"},
            {QStringLiteral("textures/dot.ppm"), "P6\n1 1\n255\nabc"}});
        QCOMPARE(id, QStringLiteral("one.1"));
        QTRY_COMPARE_WITH_TIMEOUT(Task(id).error, SubmitError::AwaitsUser, patienceMs);
        QCOMPARE(Task(id).stage, SubmitStage::CopySame);
        QCOMPARE(Task(id).message, QStringLiteral("gone.png"));
        QCOMPARE(lacking.size(), 1);

        // The question is asked again by the next client, with what was decided meanwhile.
        m_queue->AnswerMissingTextures(id, false);
        QCOMPARE(Task(id).error, SubmitError::TexturesMissing);
        m_queue->SetArguments(id, Arguments(4, 5, QStringLiteral("32"), {}));
        m_queue->SetArguments(id, Arguments(5, 4, {}, {}));
        StartQueue();
        QCOMPARE(Task(id).error, SubmitError::TexturesMissing);
        // What is in its place by then goes along; a side that pictures cannot have is the scene's own.
        m_queue->SetArguments(id, Arguments(4, 5, QStringLiteral("32"), QStringLiteral("16385")));
        QVERIFY(WriteFile(Path(QStringLiteral("shots/gone.png")), "here"));
        m_queue->Continue(id);
        QTRY_VERIFY_WITH_TIMEOUT(Task(id).isDone, patienceMs);
        QCOMPARE(Count("contents"), 4);
        QVERIFY(QFile::remove(Path(QStringLiteral("shots/gone.png"))));
        QCOMPARE(Task(id).message, QStringLiteral("Submitted as job 1."));
        QTRY_VERIFY(Packages().isEmpty());
        const QStringList job = m_data->database.Read([](SQLite::Database& connection) {
            SQLite::Statement row(connection,
                "SELECT name || ' ' || type || ' ' || width || 'x' || height || ' ' || "
                "group_concat(frames.number) "
                "FROM jobs JOIN frames ON frames.job = jobs.key");
            row.executeStep();
            return QStringList(storage::Text(row.getColumn(0)));
        });
        QCOMPARE(job.constFirst(), QStringLiteral("one povray 32x480 4,5"));
        QTRY_COMPARE_WITH_TIMEOUT(
            m_data->Only().status, static_cast<int>(farm::JobStatus::Finished), patienceMs);

        // What the farm has is not sent again.
        const int uploads = Count("uploads");
        QVERIFY(m_queue->Submit(Path(QStringLiteral("shots/one.pov"))));
        const QString again = m_queue->Ids().constLast();
        QTRY_COMPARE_WITH_TIMEOUT(Task(again).error, SubmitError::AwaitsUser, patienceMs);
        m_queue->AnswerMissingTextures(again, true);
        QTRY_VERIFY_WITH_TIMEOUT(Task(again).isDone, patienceMs);
        QCOMPARE(Count("uploads"), uploads);
        QCOMPARE(Count("jobs"), 2);
    }

    void GoesOnWhereverTheClientEnded_data()
    {
        QTest::addColumn<int>("stage");
        for (int stage = 0; stage <= 7; ++stage)
            QTest::addRow("stage %d", stage) << stage;
    }

    void GoesOnWhereverTheClientEnded()
    {
        QFETCH(int, stage);
        const QString id = SubmitLarge();
        Await(id, static_cast<SubmitStage>(stage));
        StartQueue();
        QCOMPARE(m_queue->Ids(), QStringList(id));
        QTRY_VERIFY_WITH_TIMEOUT(Task(id).isDone, patienceMs);
        QVERIFY(AreArguments(Task(id).arguments));
        QCOMPARE(Count("jobs"), 1);
        // A job that was made is known to be made also by the next client, until the session ends.
        StartQueue();
        QVERIFY(Task(id).isDone);
        m_queue->EndSession();
        StartQueue();
        QVERIFY(m_queue->Ids().isEmpty());
        QCOMPARE(Count("jobs"), 1);
    }

    void WaitsForAFarmThatIsAway()
    {
        const QString id = SubmitLarge(80);
        Await(id, SubmitStage::Upload, 1);
        QVERIFY2(
            Task(id).uploadText.contains(QStringLiteral(" of 80.0 MB, ")), qPrintable(Task(id).uploadText));
        m_farm.reset();
        QTRY_COMPARE_WITH_TIMEOUT(
            Task(id).message, QStringLiteral("The farm cannot be reached. Trying again."), patienceMs);
        QCOMPARE(Task(id).error, SubmitError::None);
        QCOMPARE(Task(id).stage, SubmitStage::Upload);
        m_queue->SetAccess(Access());
        StartFarm();
        m_queue->SetAccess(Access());
        QTRY_VERIFY_WITH_TIMEOUT(Task(id).isDone, patienceMs);
        QCOMPARE(Count("contents"), 2);
    }

    void LetsOthersPassWhatTheFarmCannotTakeNow()
    {
        const QString known = Submit({{QStringLiteral("known.pov"), "sphere{0,1}"}});
        QTRY_VERIFY_WITH_TIMEOUT(Task(known).isDone, patienceMs);
        // Its folder for uploads is gone, so that each one fails, yet jobs can be made.
        QDir farm(Path(QStringLiteral("farm")));
        QVERIFY(farm.rename(QStringLiteral("uploads"), QStringLiteral("away")));
        const QString stuck = SubmitLarge(1);
        QTRY_COMPARE_WITH_TIMEOUT(
            Task(stuck).message, QStringLiteral("The farm is busy. Trying again."), patienceMs);
        QVERIFY(m_queue->Submit(Path(QStringLiteral("known.pov"))));
        const QString other = m_queue->Ids().constLast();
        QTRY_VERIFY_WITH_TIMEOUT(Task(other).isDone, patienceMs);
        QVERIFY(Task(stuck).IsRunnable());
        QVERIFY(farm.rename(QStringLiteral("away"), QStringLiteral("uploads")));
        QTRY_VERIFY_WITH_TIMEOUT(Task(stuck).isDone, patienceMs);

        // Whom the farm does not know waits for another access.
        FarmAccess stranger = Access();
        stranger.token = QStringLiteral("unknown");
        m_queue->SetAccess(stranger);
        QVERIFY(m_queue->Submit(Path(QStringLiteral("known.pov"))));
        const QString last = m_queue->Ids().constLast();
        QTRY_COMPARE_WITH_TIMEOUT(
            Task(last).message, QStringLiteral("Your session has ended. Please sign in again."), patienceMs);
        m_queue->SetAccess(Access());
        QTRY_VERIFY_WITH_TIMEOUT(Task(last).isDone, patienceMs);
    }

    void AsksWhetherToRetryWhatTheFarmRefused()
    {
        StartFarm(1'000'000);
        m_queue->SetAccess(Access());
        QSignalSpy failed(m_queue.get(), &SubmitQueue::UploadFailed);
        const QString id = SubmitLarge();
        QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 1, patienceMs);
        QCOMPARE(failed.at(0).at(1).toStringList(), QStringList(Path(QStringLiteral("large.png"))));
        QCOMPARE(Task(id).stage, SubmitStage::Upload);
        m_queue->AnswerUploadFailure(id, true);
        QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 2, patienceMs);
        m_queue->AnswerUploadFailure(id, false);
        QCOMPARE(Task(id).error, SubmitError::GivenUp);
        StartFarm();
        m_queue->SetAccess(Access());
        m_queue->Continue(id);
        QTRY_VERIFY_WITH_TIMEOUT(Task(id).isDone, patienceMs);
    }

    void LeavesNothingOfADeletedTask()
    {
        const QString id = SubmitLarge();
        QSignalSpy changes(m_queue.get(), &SubmitQueue::ListChanged);
        Await(id, SubmitStage::Upload);
        QVERIFY(!Packages().isEmpty());
        m_queue->Remove({id});
        QCOMPARE(changes.size(), 1);
        QVERIFY(m_queue->Ids().isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(Packages().isEmpty(), patienceMs);
        StartQueue();
        QVERIFY(m_queue->Ids().isEmpty());
        QCOMPARE(Count("jobs"), 0);
    }

    void StopsAndWaitsForTheCheckOfArguments()
    {
        m_queue->SetArgumentsCheck([] { return true; });
        QVERIFY(!m_queue->Submit(Path(QStringLiteral("none.ma"))));
        QVERIFY(!m_queue->Submit(QStringLiteral(JOB_TYPES)));
        const QString id = Submit({{QStringLiteral("a.b.ma"), "setAttr \".ef\" 3;"}});
        const QString other = Submit({{QStringLiteral("b.pov"), "sphere{0,1}"}});
        QCOMPARE(m_queue->Ids(), QStringList({QStringLiteral("a.b.1"), QStringLiteral("b.2")}));
        m_queue->StopAll();
        QCOMPARE(Task(other).error, SubmitError::Stopped);
        StartQueue();
        m_queue->SetArgumentsCheck([] { return true; });
        QCOMPARE(Task(id).error, SubmitError::Stopped);
        m_queue->ResumeAll();
        QTRY_COMPARE_WITH_TIMEOUT(Task(id).error, SubmitError::AwaitsUser, patienceMs);
        QCOMPARE(Task(id).stage, SubmitStage::Submit);
        QTRY_VERIFY_WITH_TIMEOUT(Task(other).isDone, patienceMs);

        // Somebody else sees none of it.
        FarmAccess access = Access();
        access.owner = QStringLiteral("test/bob");
        m_queue->SetAccess(access);
        QVERIFY(m_queue->Ids().isEmpty());
        m_queue->SetAccess(Access());
        QCOMPARE(m_queue->Ids(), QStringList(id));
        m_queue->Continue(id);
        QTRY_VERIFY_WITH_TIMEOUT(Task(id).isDone, patienceMs);
        QCOMPARE(Count("jobs WHERE type = 'maya' AND name = 'a.b'"), 1);
    }
};

QTEST_GUILESS_MAIN(TestSubmitPipeline)
#include "tst_submit_pipeline.moc"
