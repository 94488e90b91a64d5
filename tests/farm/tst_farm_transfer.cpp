#include "tests/farm/farm_at_work.h"
#include "tests/farm/package_fixture.h"

#include <QBuffer>
#include <QImage>
#include <QStandardPaths>
#include <QtTest>

using namespace farm;

namespace {

// Stands in for the renderer and logs each frame.
const char* const NotingScript = "echo {frame} {frames} {clock} >> ../../log; cat {scene} > {output}";

QJsonArray List(const char* text)
{
    return QJsonDocument::fromJson(text).array();
}

} // namespace

/// Submitting scenes and downloading frames, as ann does over HTTP.
class TransferTest : public QObject
{
    Q_OBJECT

private slots:
    // All rows of a test share a farm.
    void init()
    {
        if (m_function == QTest::currentTestFunction())
            return;
        m_function = QTest::currentTestFunction();
        m_farm = std::make_unique<FarmAtWork>();
        m_farm->Start(ScriptedTypes(NotingScript));
    }

    void ASubmissionMakesOneJob()
    {
        m_farm->data.accounts.AddProject(m_farm->data.account, {"P"_s, "p"_s});
        QJsonObject body = SubmissionOf(PlainFiles);
        body.insert("pool"_s, "p"_s);
        QCOMPARE(Submit(body).status, 409);
        const QString id = Rendered(PlainFiles, body);
        m_farm->Start(ScriptedTypes(NotingScript));
        QCOMPARE(Submit(body).Data("job_id").toString(), id);
        QCOMPARE(Submit(body).Data("job_increasement").toString(), "1"_s);
        QCOMPARE(m_farm->Get("/jobs?conditions=%7B%22pool_id%22:%22p%22%7D").Data("total").toInt(), 1);
        const QString leaf = m_farm->Path("jobs/%1/scene/maps/leaf.txt", {id});
        QCOMPARE(ReadFile(leaf), QByteArray("a leaf"));
        // A renderer that changes its copy of the scene does not change the contents.
        QVERIFY(WriteFile(leaf, "a lens"));
        m_farm->data.Change("UPDATE accounts SET balance = 0");
        body.insert("submission"_s, "second"_s);
        const QString second = Submit(body).Data("job_id").toString();
        QCOMPARE(Status(), int(JobStatus::Arrears));
        m_farm->data.accounts.Credit("ann"_s, 1'000'000);
        m_farm->Apply("recover", {second});
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
        QCOMPARE(ReadFile(m_farm->Path("jobs/%1/scene/maps/leaf.txt", {second})), QByteArray("a leaf"));
    }

    void ADamagedContentFailsTheJobAndIsSentAgain()
    {
        QCOMPARE(m_farm->Deliver(Package(PlainFiles)).status, 200);
        const QString checksum = Sha256("a leaf");
        QVERIFY(WriteFile(m_farm->Path("contents/%1/%2", {checksum.left(2), checksum}), "a lens"));
        Submit(SubmissionOf(PlainFiles));
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Failed), patienceMs);
        QCOMPARE(m_farm->Known({checksum}), QJsonArray());
        QVERIFY(!Rendered(PlainFiles, SubmissionOf(PlainFiles, "second")).isEmpty());
        QCOMPARE(Status(), int(JobStatus::Finished));
    }

    void RefusesBadSubmissions_data()
    {
        QTest::addColumn<QByteArray>("change");
        const char* const changes[] = {R"({"submission":""})", R"({"submission":7})", R"({"type":"clay"})",
            R"({"name":""})", R"({"pool":"unknown"})", R"({"scene":"other.txt"})", R"({"files":[]})",
            R"({"files":["scene.txt"]})", R"({"frames":[]})", R"({"frames":[{"start":3,"end":2}]})",
            R"({"frames":[{"start":0,"end":2}]})", R"({"frames":[{"start":1,"end":20001}]})",
            R"({"frames":[{"start":1.5,"end":2}]})", R"({"width":0})", R"({"height":16385})",
            R"({"prerender":null})"};
        for (const char* change : changes)
            QTest::newRow(change) << QByteArray(change);
        const QString scene = QString::fromLatin1(R"({"path":"%2","checksum":"%1"})").arg(Sha256("a scene"));
        for (const char* path : {"../x", "scene.txt", "scene.txt/x"})
            QTest::newRow(path) << "{\"files\":[%1,%2]}"_s
                                       .arg(scene.arg(QLatin1String("scene.txt")),
                                           scene.arg(QLatin1String(path)))
                                       .toLatin1();
    }

    void RefusesBadSubmissions()
    {
        QFETCH(QByteArray, change);
        QCOMPARE(m_farm->Deliver(Package(PlainFiles)).status, 200);
        QJsonObject body = SubmissionOf(PlainFiles);
        const QJsonObject changes = Json(change);
        for (auto member = changes.begin(); member != changes.end(); ++member)
            body.insert(member.key(), member.value());
        QCOMPARE(Submit(body).status, 400);
        QCOMPARE(m_farm->data.jobs.List(m_farm->data.account, {}, 1, 1).total, std::int64_t(0));
    }

    void FramesKeepTheirNumbers()
    {
        QJsonObject body = SubmissionOf(PlainFiles);
        body.insert("prerender"_s, true);
        body.insert("frames"_s, List(R"([{"start":20,"end":21},{"start":2,"end":4},{"start":3,"end":5}])"));
        const QString id = Rendered(PlainFiles, body);
        QCOMPARE(m_farm->Log(), QByteArray("2 20 0.000000 4 20 0.100000 21 20 0.950000"));
        const QJsonValue info = m_farm->Get("/jobs/%1", {id}).Data("jobDatas");
        QCOMPARE(info["jobFrames"_s], QJsonValue(List(R"([{"start":2,"end":5},{"start":20,"end":21}])")));
        QCOMPARE(info["jobPrerender"_s], QJsonValue(true));
        QCOMPARE(info["jobProgress"_s], QJsonValue(100));
        for (int time = 1; time <= 2; ++time) {
            m_farm->Apply("full-render", {id});
            QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
        }
        QStringList names;
        const QJsonArray list = m_farm->Get("/jobs/%1/files", {id}).Data("list").toArray();
        for (const QJsonValue& file : list)
            names.append(file["name"_s].toString().mid(8, 2));
        QCOMPARE(names.join(QLatin1Char(' ')), "02 03 04 05 20 21"_s);
        QCOMPARE(ReadFile(m_farm->Path("jobs/log")).count('\n'), 6);
        QCOMPARE(list.at(0)["size"_s].toInt(), 7);
        QCOMPARE(list.at(0)["checksum"_s].toString(), Sha256("a scene"));
        QVERIFY(WriteFile(m_farm->Path("jobs/%1/frame_0002.txt", {id}), "cut"));
        QCOMPARE(m_farm->Get("/jobs/%1/files/frame_0002.txt", {id}).status, 404);
    }

    void SendsFilesInParts_data()
    {
        QTest::addColumn<QByteArray>("range");
        QTest::addColumn<QByteArray>("match");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("bytes");
        const auto row = [](const char* range, const char* match, int status, const char* bytes,
                             const char* name = "frame_0001.txt") {
            QTest::addRow("%s %s %s", range, match, name)
                << QByteArray(range) << QByteArray(match) << QString::fromLatin1(name) << status
                << QByteArray(bytes);
        };
        row("", "", 200, "a scene");
        row("bytes=0-0", "", 206, "a");
        row("bytes=2-4", "", 206, "sce");
        row("bytes=2-", "right", 206, "scene");
        row("bytes=-2", "", 206, "ne");
        row("bytes=5-99999999999", "*", 206, "ne");
        row("bytes=7-", "", 416, "");
        row("bytes=-0", "", 416, "");
        row("bytes=0-1,3-4", "", 416, "");
        row("lines=1-2", "", 416, "");
        row("bytes=2-4", "wrong", 412, "");
        row("", "", 404, "", "frame_0002.txt");
        row("", "", 404, "", "..%2Fframe_0001.txt");
    }

    void SendsFilesInParts()
    {
        QFETCH(QByteArray, range);
        QFETCH(QByteArray, match);
        QFETCH(QString, name);
        QFETCH(int, status);
        const QString id = Rendered(PlainFiles, SubmissionOf(PlainFiles));
        const QByteArray tag = '"' + Sha256("a scene").toLatin1() + '"';
        match.replace("right", tag).replace("wrong", '"' + QByteArray(64, '0') + '"');
        FarmClient::Headers headers;
        if (!range.isEmpty())
            headers.append({"Range", range});
        if (!match.isEmpty())
            headers.append({"If-Match", match});
        const Reply reply = m_farm->Get("/jobs/%1/files/%2", {id, name}, headers);
        QCOMPARE(reply.status, status);
        if (status < 300) {
            QTEST(reply.bytes, "bytes");
            QCOMPARE(reply.tag, tag);
        } else {
            QVERIFY(!reply.Error().isEmpty());
        }
    }

    void ARestartDoesNotTearADownload()
    {
        m_farm->Start(ScriptedTypes(
            "[ -e ../../once ] && exit 1; : > ../../once; head -c 50000000 /dev/zero > {output}"));
        const QString id = Rendered(PlainFiles, SubmissionOf(PlainFiles));
        const auto socket = m_farm->SendRaw("GET /api/v1/jobs/" + id.toLatin1()
                + "/files/frame_0001.txt HTTP/1.1\r\n" + m_farm->RawToken() + "\r\n",
            1'000'000);
        QVERIFY(socket->waitForReadyRead(patienceMs));
        m_farm->Apply("restart", {id});
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(m_farm->Path("jobs/%1/frame_0001.txt", {id})), patienceMs);
        QCOMPARE(m_farm->Get("/jobs/%1/files", {id}).Data("list").toArray(), QJsonArray());
        qint64 got = 0;
        while (socket->bytesAvailable() > 0 || socket->waitForReadyRead(patienceMs))
            got += socket->readAll().size();
        QVERIFY(got > 50'000'000);
    }

    void PovRayReachesItsSceneAndNothingElse_data()
    {
        QTest::addColumn<bool>("allowed");
        QTest::newRow("#include \"colors.inc\"\n") << true;
        QTest::newRow("#fopen F \"/etc/passwd\" read\n") << false;
        QTest::newRow("#fopen F \"../../../../types.json\" read\n") << false;
        QTest::newRow("#fopen F \"../../../../farm.sqlite\" read\n") << false;
        QTest::newRow("#fopen F \"../parts/ball.inc\" write\n") << false;
    }

    // The row's name is a line of the scene.
    void PovRayReachesItsSceneAndNothingElse()
    {
        if (QStandardPaths::findExecutable("povray"_s).isEmpty())
            QSKIP("POV-Ray is not installed");
        QFETCH(bool, allowed);
        if (!allowed && !Confinement::IsSupported())
            QSKIP("this kernel cannot confine a renderer");
        QImage map(8, 8, QImage::Format_RGB32);
        map.fill(Qt::red);
        QBuffer png;
        map.save(&png, "PNG");
        const SceneContents files {
            {"sh\xc3\xb6ts \"1\"/ball +I.pov",
                QByteArray("#version 3.7;\nglobal_settings { assumed_gamma 1 ambient_light rgb 3 }\n"
                           "camera { location <0, 0, -2> look_at 0 }\n#default { finish { ambient 1 } }\n"
                           "#include \"../parts/ball.inc\"\n")
                    + QTest::currentDataTag()},
            {"parts/ball.inc", "sphere { 0, 1 pigment { image_map { png \"maps/red.png\" } } }"},
            {"maps/red.png", png.data()}};
        m_farm->Start(ReadFile(QStringLiteral(FARM_JOB_TYPES)));
        const QString id = Rendered(files, SubmissionOf(files, QTest::currentDataTag()));
        QCOMPARE(Status(), int(allowed ? JobStatus::Finished : JobStatus::Failed));
        if (!allowed)
            return;
        const QImage image = QImage::fromData(m_farm->Get("/jobs/%1/files/frame_0001.png", {id}).bytes);
        QCOMPARE(image.size(), QSize(48, 36));
        const QColor color = image.pixelColor(24, 18);
        QVERIFY2(color.red() > color.blue() + 50, qPrintable(color.name()));
    }

private:
    Reply Submit(const QJsonObject& body) { return m_farm->Post("/jobs", body); }
    /// Sends the files and the submission; returns the job's id once it has ended, or nothing when it is refused.
    QString Rendered(const SceneContents& files, const QJsonObject& body)
    {
        m_farm->Deliver(Package(files));
        const QString id = Submit(body).Data("job_id").toString();
        const auto isOver
            = [this] { return Status() == int(JobStatus::Finished) || Status() == int(JobStatus::Failed); };
        return !id.isEmpty() && QTest::qWaitFor(isOver, patienceMs) ? id : QString();
    }
    int Status() { return m_farm->data.Only().status; }

    std::unique_ptr<FarmAtWork> m_farm;
    QByteArray m_function;
};

QTEST_GUILESS_MAIN(TransferTest)
#include "tst_farm_transfer.moc"
