// Scenes on their way to a real farm in this process.
#include "farm/farm.h"
#include "farm/jobs/job_status.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_queue.h"
#include "host/rendercore/submit/submit_text.h"
#include "tests/farm/farm_client.h"
#include "tests/support/blender_scene.h"

#include <QImage>

#include <csignal>

namespace {

/// Looks before each event of an object.
struct Watcher : QObject
{
    bool eventFilter(QObject* /*watched*/, QEvent* /*event*/) override
    {
        look();
        return false;
    }

    std::function<void()> look;
};

QByteArray Noise(int bytes)
{
    QVector<quint32> noise(bytes / 4);
    QRandomGenerator(1).fillRange(noise.data(), noise.size());
    return QByteArray(reinterpret_cast<const char*>(noise.constData()), bytes);
}

} // namespace

class SubmitPipelineTest : public QObject
{
    Q_OBJECT

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }

    void StartFarm(std::int64_t quota = 1'000'000'000)
    {
        m_farm.reset();
        farm::FarmSettings settings;
        settings.dataFolder = Path("farm"_s);
        settings.sceneFolder = m_folder->path();
        settings.jobTypesFile = QStringLiteral(JOB_TYPES);
        settings.demo = false;
        settings.quota = quota;
        m_farm = std::make_unique<farm::Farm>(settings);
        FarmClient client;
        client.SetUrl(m_farm->Url());
        m_access.apiRoot = FarmApiRoot(QUrl(m_farm->Url()));
        if (m_access.token.isEmpty())
            m_access.token = client.SignIn("ann", "secret");
    }

    void StartQueue()
    {
        m_queue.reset();
        m_queue = std::make_unique<SubmitQueue>(Path("transfer"_s));
        m_lacking = std::make_unique<QSignalSpy>(m_queue.get(), &SubmitQueue::TexturesLacking);
        QSignalSpy loaded(m_queue.get(), &SubmitQueue::Loaded);
        m_queue->SetAccess(m_access);
        QVERIFY(loaded.wait(Patience));
    }

    /// Writes the files and submits the first; returns the task's id.
    QString Submit(const QVector<QPair<QString, QByteArray>>& files)
    {
        for (const auto& [name, content] : files) {
            QDir().mkpath(QFileInfo(Path(name)).path());
            WriteFile(Path(name), content);
        }
        return Submit(files.constFirst().first);
    }

    QString Submit(const QString& scene)
    {
        QSignalSpy changed(m_queue.get(), &SubmitQueue::ListChanged);
        const bool isAccepted = m_queue->Submit(Path(scene), -7) == SubmitQueue::Answer::Accepted;
        return isAccepted && changed.wait(Patience) ? m_queue->Ids().constLast() : QString();
    }

    /// A scene with a picture that takes more than one chunk to send.
    QString SubmitLarge()
    {
        return Submit({{"large.pov"_s, "sphere{0,1 pigment{image_map{png \"large.png\"}}}"},
            {"large.png"_s, Noise(3'000'000)}});
    }

    SubmitTask Task(const QString& id) const { return m_queue->Task(id) ? *m_queue->Task(id) : SubmitTask(); }

    /// Waits until a task has become a job or has halted with an error.
    bool Await(const QString& id, SubmitError error = SubmitError::None) const
    {
        return QTest::qWaitFor(
            [&] { return error == SubmitError::None ? Task(id).isDone : Task(id).error == error; }, Patience);
    }

    int Count(const char* rows)
    {
        return m_data->Count(QByteArray("SELECT count(*) FROM " + QByteArray(rows)).constData());
    }

    QStringList Packages() const
    {
        return QDir(Path("transfer/submit"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FarmData> m_data;
    std::unique_ptr<farm::Farm> m_farm;
    std::unique_ptr<SubmitQueue> m_queue;
    QStringList m_left; ///< after the last change of the list
    std::unique_ptr<QSignalSpy> m_lacking;
    FarmAccess m_access;
    const QByteArray m_path = qgetenv("PATH");

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QDir(m_folder->path()).mkdir("farm"_s);
        m_data = std::make_unique<FarmData>(Path("farm"_s));
        m_access = {{}, {}, "test/ann"_s, {}};
        StartFarm();
        StartQueue();
    }

    void cleanup()
    {
        m_queue.reset();
        m_farm.reset();
        m_data.reset();
        qputenv("PATH", m_path);
    }

    void AsksForMissingTexturesAndBecomesARenderedJob()
    {
        const QByteArray scene = "#include \"colors.inc\"\n#include \"parts/ball.inc\"\n"
                                 "camera{location <0,0,-3> look_at 0} light_source{<9,9,-9> White}\n"
                                 "#if (0) box{0,1 pigment{image_map{png \"gone.png\"}}} #end\n";
        const QString id = Submit({{"shots/one.pov"_s, scene},
            {"shots/parts/ball.inc"_s, "sphere{0,1 pigment{image_map{ppm \"../textures/dot.ppm\"}}}"},
            {"textures/dot.ppm"_s, "P6\n1 1\n255\nabc"}});
        QCOMPARE(id, "one.1"_s);
        QVERIFY(Await(id, SubmitError::AwaitsUser));
        QTRY_COMPARE_WITH_TIMEOUT(m_lacking->size(), 1, Patience);
        QCOMPARE(Count("contents"), 0); // the farm knows nothing before the answer
        QCOMPARE(m_lacking->at(0).at(1).toStringList(),
            QStringList(
                {"gone.png"_s, TaskMessage(SubmitText::Outside, {Path("textures/dot.ppm"_s)}).Text()}));
        m_queue->AnswerUploadFailure(id, true); // another question is open
        m_queue->AnswerMissingTextures(id, false);
        QCOMPARE(Task(id).error, SubmitError::TexturesMissing);
        m_queue->SetArguments(id, MakeArguments(4, 5, 32, 16385)); // the scene's own height
        m_queue->SetArguments(id, MakeArguments(5, 4, 1, 1));      // no frames: ignored
        StartQueue();
        QCOMPARE(Task(id).error, SubmitError::TexturesMissing);
        QVERIFY(WriteFile(Path("shots/gone.png"_s), "here")); // now included
        m_queue->Continue(id);
        QVERIFY(Await(id));
        QCOMPARE(Count("contents"), 4);
        QCOMPARE(Task(id).message.Text(), "Submitted as job 1."_s);
        QTRY_VERIFY_WITH_TIMEOUT(Packages().isEmpty(), Patience);
        QCOMPARE(Count("jobs WHERE name = 'one' AND type = 'povray' AND width = 32 AND height = 480"), 1);
        QCOMPARE(Count("frames WHERE number IN (4, 5)"), Count("frames"));
        QTRY_COMPARE_WITH_TIMEOUT(m_data->Only().status, int(farm::JobStatus::Finished), Patience);
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
        QVERIFY(QTest::qWaitFor([&] { return int(Task(id).stage) >= stage; }, Patience));
        const SubmitTask before = Task(id);
        StartQueue();
        QCOMPARE(m_queue->Ids(), QStringList {id});
        // Packages that are ready are not made again.
        QVERIFY(!NeedsFarm(before.stage) || before.isDone || Task(id).next == SubmitStage::CopySame);
        QVERIFY(Await(id));
        QCOMPARE(Count("jobs WHERE priority = -7"), 1);
        StartQueue();
        QVERIFY(Task(id).isDone); // until the session ends
        m_queue->EndSession();
        m_queue->SetAccess(m_access); // by a client that has not noticed yet
        QCOMPARE(m_queue->Submit(Path("large.pov"_s)), SubmitQueue::Answer::Refused);
        StartQueue();
        QVERIFY(m_queue->Ids().isEmpty());
        QCOMPARE(Count("jobs"), 1);
    }

    void ShowsTheProgressOfTheUpload()
    {
        QString id;
        QSet<QString> shown;
        Watcher watcher;
        watcher.look = [&] { shown.insert(Task(id).uploadText.Text().section(QLatin1Char(','), 0, 0)); };
        m_queue->installEventFilter(&watcher);
        id = SubmitLarge();
        QVERIFY(Await(id));
        QVERIFY(shown.contains("0.0 of 3.0 MB"_s)); // of the scene's package
    }

    void WaitsForItsFarmAndItsSession()
    {
        FarmAccess stranger = m_access;
        stranger.token = "unknown"_s;
        m_queue->SetAccess(stranger);
        const QString id = SubmitLarge();
        QTRY_COMPARE_WITH_TIMEOUT(
            Task(id).message.Text(), "Your session has ended. Please sign in again."_s, Patience);
        QVERIFY(Task(id).IsRunnable());
        m_queue->SetAccess({{}, {}, m_access.owner, {}});
        QCOMPARE(Task(id).message.Text(), QString::fromLatin1(SubmitText::Unreachable));
        m_queue->SetAccess(m_access);
        QVERIFY(Await(id));
    }

    void AsksWhetherToRetryWhatTheFarmRefused()
    {
        StartFarm(1'000'000);
        m_queue->SetAccess(m_access);
        QSignalSpy failed(m_queue.get(), &SubmitQueue::UploadFailed);
        const QString id = SubmitLarge();
        QVERIFY(Await(id, SubmitError::UploadRefused));
        QCOMPARE(failed.size(), 1);
        QCOMPARE(failed.at(0).at(1).toStringList(), QStringList {Path("large.png"_s)});
        m_queue->AnswerMissingTextures(id, true); // another question is open
        m_queue->AnswerUploadFailure(id, true);
        QTRY_COMPARE_WITH_TIMEOUT(failed.size(), 2, Patience);
        m_queue->AnswerUploadFailure(id, false);
        QCOMPARE(Task(id).error, SubmitError::GivenUp);
        StartFarm();
        m_queue->SetAccess(m_access);
        m_queue->Continue(id);
        QVERIFY(Await(id));
    }

    void ABlenderSceneBecomesARenderedJob()
    {
        if (!HasBlender())
            QSKIP("Blender is not installed");
        QCOMPARE(MakeShot(m_folder->path()), QByteArray());
        const QString id = Submit("shots/early.blend"_s);
        // The library and its texture are beside the scene's folder.
        QVERIFY(Await(id, SubmitError::AwaitsUser));
        const SubmitWork work = Task(id).work;
        QCOMPARE(work.missing.size(), 4);
        QCOMPARE(SubmitWork::FromJson(work.ToJson()).frameStep, 5);
        QCOMPARE(work.missing.constFirst().Text(), "//gone.png"_s);
        QStringList files;
        for (const PackedFile& file : work.files)
            files.append(QDir(m_folder->path()).relativeFilePath(file.source));
        files.sort();
        QCOMPARE(files.join(QLatin1Char(' ')),
            "parts/cube.blend shots/early.blend shots/smoke_0001.png shots/smoke_0002.png "
            "shots/tile.1001.png shots/tile.1002.png textures/red.png"_s);
        m_queue->AnswerMissingTextures(id, true);
        QVERIFY(Await(id));
        QTRY_COMPARE_WITH_TIMEOUT(m_data->Only().status, int(farm::JobStatus::Finished), Patience);
        QCOMPARE(Count("frames"), 2);
        const QImage picture(Path("farm/jobs/%1/frame_0006.png"_s.arg(m_data->Only().id)));
        QCOMPARE(picture.size(), QSize(48, 36));
        const QRgb middle = picture.pixel(24, 18);
        QVERIFY2(qRed(middle) > 100 && qBlue(middle) < 50, qPrintable(QString::number(middle, 16)));
    }

    void OthersGoOnWhileBlenderReads()
    {
        QVERIFY(QDir(m_folder->path()).mkdir("bin"_s));
        qputenv("PATH", Path("bin"_s).toUtf8());
        QSignalSpy refused(m_queue.get(), &SubmitQueue::SceneRefused);
        WriteFile(Path("a.blend"_s), {});
        m_queue->Submit(Path("a.blend"_s));
        QVERIFY(refused.wait(Patience));
        QCOMPARE(refused.at(0).at(1).toString(), QString::fromLatin1(SubmitText::BlenderLacking));

        const QString blender = Path("bin/blender"_s);
        const QString note = Path("processes"_s);
        WriteFile(blender,
            "#!/bin/sh\nPATH=/bin:/usr/bin\nsh -c 'echo $PPID $$ > " + note.toUtf8() + "; sleep 600'\n");
        QFile::setPermissions(blender, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const QString id = Submit("a.blend"_s);
        QTRY_COMPARE_WITH_TIMEOUT(ReadFile(note).simplified().split(' ').size(), 2, Patience);
        QVERIFY(Await(Submit({{"b.pov"_s, "sphere{0,1}"}})));
        QCOMPARE(Task(id).message.Text(), QString::fromLatin1(SubmitText::BlenderReads));
        m_queue->Remove({id});
        const QByteArrayList processes = ReadFile(note).simplified().split(' ');
        for (const QByteArray& process : processes)
            QTRY_COMPARE_WITH_TIMEOUT(::kill(process.toInt(), 0), -1, Patience);
        // One that writes no report.
        WriteFile(blender, "#!/bin/sh\n");
        QVERIFY(Await(Submit("a.blend"_s), SubmitError::SceneUnusable));
    }

    void LeavesNothingOfADeletedTask()
    {
        const QString id = SubmitLarge();
        Submit({{"b.pov"_s, "sphere{0,1}"}});
        QVERIFY(QTest::qWaitFor([&] { return Task(id).stage >= SubmitStage::Upload; }, Patience));
        // The listener removes the other task while handling the removal.
        connect(m_queue.get(), &SubmitQueue::ListChanged, this, [this] {
            m_left = m_queue->Ids();
            if (!m_left.isEmpty())
                m_queue->Remove(m_left);
        });
        m_queue->Remove({id, "x"_s, id});
        QVERIFY(m_left.isEmpty() && m_queue->Ids().isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(Packages().isEmpty(), Patience);
        QVERIFY(QDir().mkpath(Path("transfer/submit/77"_s))); // left behind by a client that was killed
        StartQueue();
        QVERIFY(m_queue->Ids().isEmpty());
        QCOMPARE(Count("jobs"), 0);
        QTRY_VERIFY_WITH_TIMEOUT(Packages().isEmpty(), Patience);
    }

    void NeverWaitsForItsDatabase()
    {
        const QString id = Submit({{"a.pov"_s, "png \"gone.png\""}});
        QVERIFY(Await(id, SubmitError::AwaitsUser));
        StartQueue();
        QCOMPARE(m_lacking->size(), 1); // asks once more
        SQLite::Database other(Path("transfer/submissions.sqlite"_s).toStdString(), SQLite::OPEN_READWRITE);
        other.exec("BEGIN IMMEDIATE");
        constexpr int WaitForLocks = 5000; // ms
        QElapsedTimer clock;
        clock.start();
        m_queue->SetArguments(id, MakeArguments(3, 3, 1, 1));
        m_queue->AnswerMissingTextures(id, false);
        QCOMPARE(m_queue->Submit(Path("a.pov"_s)), SubmitQueue::Answer::Known);
        QVERIFY2(clock.elapsed() < WaitForLocks, qPrintable(QString::number(clock.elapsed())));
        other.exec("ROLLBACK");
        StartQueue();
        QCOMPARE(Task(id).error, SubmitError::TexturesMissing);
        QCOMPARE(Task(id).arguments, MakeArguments(3, 3, 1, 1));
    }

    void BeginsAnewWithoutAReadableDatabase()
    {
        Submit({{"a.pov"_s, "png \"gone.png\""}});
        m_queue.reset();
        QVERIFY(WriteFile(Path("transfer/submissions.sqlite"_s), "not a database"));
        StartQueue();
        QVERIFY(m_queue->Ids().isEmpty());
        QCOMPARE(QDir(Path("transfer"_s)).entryList({"submissions-unreadable-*.sqlite"_s}).size(), 1);
        QVERIFY(Await(Submit({{"b.pov"_s, "sphere{0,1}"}})));
    }

    void StopsAndWaitsForTheCheckOfArguments()
    {
        m_queue->SetArgumentsCheck([] { return true; });
        QSignalSpy refused(m_queue.get(), &SubmitQueue::SceneRefused);
        QCOMPARE(m_queue->Submit(Path("none.ma"_s)), SubmitQueue::Answer::Accepted);
        QVERIFY(refused.wait(Patience) && m_queue->Ids().isEmpty());
        QCOMPARE(m_queue->Submit(QStringLiteral(JOB_TYPES)), SubmitQueue::Answer::Refused);
        const QString id = Submit({{"a.b.ma"_s, "setAttr \".ef\" 3;"}});
        QCOMPARE(m_queue->Submit(Path("./a.b.ma"_s)), SubmitQueue::Answer::Known);
        const QString other = Submit({{"b.pov"_s, "sphere{0,1}"}});
        QCOMPARE(m_queue->Ids(), QStringList({"a.b.1"_s, "b.2"_s}));
        m_queue->StopAll();
        QCOMPARE(Task(other).error, SubmitError::Stopped);
        StartQueue();
        m_queue->SetArgumentsCheck([] { return true; });
        QCOMPARE(Task(id).error, SubmitError::Stopped);
        m_queue->ResumeAll();
        StartQueue();
        m_queue->SetArgumentsCheck([] { return true; });
        QVERIFY(Await(id, SubmitError::AwaitsUser));
        QCOMPARE(Task(id).stage, SubmitStage::Submit);
        QVERIFY(Await(other)); // other tasks go first

        // Another account sees none of these tasks.
        FarmAccess access = m_access;
        access.owner = "test/bob"_s;
        m_queue->SetAccess(access);
        QVERIFY(m_queue->Ids().isEmpty());
        m_queue->SetAccess(m_access);
        QTRY_COMPARE_WITH_TIMEOUT(m_queue->Ids(), QStringList {id}, Patience);
        m_queue->Continue(id);
        QVERIFY(Await(id));
        m_queue->SetArguments(id, MakeArguments(7, 7, 1, 1)); // too late
        QVERIFY(Task(id).arguments != MakeArguments(7, 7, 1, 1));
        QCOMPARE(Count("jobs WHERE type = 'maya' AND name = 'a.b'"), 1);
    }
};

QTEST_GUILESS_MAIN(SubmitPipelineTest)
#include "tst_submit_pipeline.moc"
