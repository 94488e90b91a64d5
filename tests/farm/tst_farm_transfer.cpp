#include "tests/farm/farm_at_work.h"
#include "tests/farm/package_fixture.h"

#include <QBuffer>
#include <QDirIterator>
#include <QImage>
#include <QStandardPaths>
#include <QtTest>

#include <sys/stat.h>

using namespace farm;

namespace {

constexpr int SmallQuota = 100'000;

// Stands in for the renderer and notes each frame.
const char* const NotingScript = "echo {frame} {frames} {clock} >> ../../log; cat {scene} > {output}";

const SceneContents PlainFiles {{"scene.txt", "a scene"}, {"maps/leaf.txt", "a leaf"}};

QJsonArray List(const char* text)
{
    return QJsonDocument::fromJson(text).array();
}

int FilesIn(const QString& folder)
{
    int count = 0;
    for (QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         files.hasNext(); ++count)
        files.next();
    return count;
}

} // namespace

/// Scenes that go up and frames that come down, as ann sees it over HTTP.
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

    void RefusesHostilePackages_data()
    {
        QTest::addColumn<QByteArray>("package");
        const auto path = [](const char* title, const QByteArray& name) {
            QTest::newRow(title) << Package({{"a", "good"}, {name, "bad"}});
        };
        const auto mode = [](const char* title, mode_t kind) {
            QTest::newRow(title) << Package({{"a", "/etc/passwd"}}, [kind](zip_t* archive) {
                zip_file_set_external_attributes(
                    archive, 0, 0, ZIP_OPSYS_UNIX, zip_uint32_t(kind | 0777) << 16);
            });
        };
        path("climbing", "a/../../x");
        path("no UTF-8", "a\xff");
        path("a folder", "folder/");
        mode("a link", S_IFLNK);
        mode("a device", S_IFCHR);
        QTest::newRow("encrypted") << Package({{"a", "secret"}},
            [](zip_t* archive) { zip_file_set_encryption(archive, 0, ZIP_EM_AES_256, "key"); });
        QTest::newRow("one path twice")
            << Package({{"name1", "one"}, {"name2", "two"}}).replace("name2", "name1");
        SceneContents many;
        for (int entry = 0; entry <= 10000; ++entry)
            many.append({QByteArray::number(entry), ""});
        QTest::newRow("too many entries") << Package(many);
        QTest::newRow("bomb") << Package({{"a", QByteArray(70'000'000, '0')}});
        // The size stands in front of the name's length, in the entry and in the directory.
        const QByteArray content(3000, 'x');
        for (char low : {'\x07', '\xff'})
            QTest::addRow("says that its size ends in %d", low)
                << Package({{"a", content}})
                       .replace(QByteArray("\xb8\x0b\0\0\x01\0", 6), low + QByteArray("\x0b\0\0\x01\0", 5));
        QTest::newRow("damaged") << Package({{"a", "content"}}).replace("content", "contend");
        QTest::newRow("cut off") << Package({{"a", content}, {"b", content}}).chopped(30);
        QTest::newRow("no ZIP archive") << QByteArray("rubbish");
        QTest::newRow("not what was announced") << QByteArray();
    }

    void RefusesHostilePackages()
    {
        QFETCH(QByteArray, package);
        const QByteArray announced = package.isEmpty() ? Package(PlainFiles) : package;
        if (package.isEmpty())
            package = QByteArray(announced).replace("a leaf", "a lens");
        const QString upload = m_farm->BeginUpload(announced).Data("id").toString();
        QCOMPARE(m_farm->Put(upload, 0, package).Data("offset").toInt(), package.size());
        const Reply reply = m_farm->Unpack(upload);
        QCOMPARE(reply.status, 422);
        QCOMPARE(reply.Error(), "bad_package"_s);
        QCOMPARE(m_farm->Get("/uploads/%1", {upload}).status, 404);
        QCOMPARE(FilesIn(m_farm->Path("contents")) + FilesIn(m_farm->Path("uploads")), 0);
    }

    void AnUploadContinuesWhereItEnded()
    {
        const QByteArray package = Package(PlainFiles);
        const QString id = m_farm->BeginUpload(package).Data("id").toString();
        const auto put
            = [&](int from, int to) { return m_farm->Put(id, from, package.mid(from, to - from)); };
        QCOMPARE(put(0, 100).Data("offset").toInt(), 100);
        QCOMPARE(put(0, 100).status, 409);
        QCOMPARE(put(101, 150).status, 409);
        QCOMPARE(m_farm->Unpack(id).status, 409);
        QCOMPARE(m_farm->Put(id, 100, package).status, 400);
        // A kill may leave any part of a chunk, which then counts.
        m_farm->End();
        QVERIFY(WriteFile(m_farm->Path("uploads/%1", {id}), package.left(107)));
        m_farm->Start();
        const Reply again = m_farm->BeginUpload(package);
        QCOMPARE(again.Data("id").toString(), id);
        QCOMPARE(again.Data("offset").toInt(), 107);
        QCOMPARE(put(107, package.size()).status, 200);
        const Reply unpacked = m_farm->Unpack(id);
        QCOMPARE(unpacked.status, 200);
        QCOMPARE(unpacked.Data("files")[1]["path"_s].toString(), "maps/leaf.txt"_s);
        QCOMPARE(unpacked.Data("files")[1]["checksum"_s].toString(), Sha256("a leaf"));
        QCOMPARE(m_farm->Unpack(id).body, unpacked.body);
        QVERIFY(m_farm->BeginUpload(package).Data("unpacked").toBool());
        // A content that the disk has lost is sent again.
        QVERIFY(QFile::remove(m_farm->Path("contents/%1/%2", {Sha256("a leaf").left(2), Sha256("a leaf")})));
        QCOMPARE(Known(), QJsonArray());
        QVERIFY(!m_farm->BeginUpload(package).Data("unpacked").toBool());
        QCOMPARE(m_farm->Deliver(package).status, 200);
        const QString other = m_farm->BeginUpload("other").Data("id").toString();
        m_farm->Put(other, 0, "oth");
        m_farm->data.Change("UPDATE uploads SET touched_at = touched_at - 6 * 86400");
        m_farm->Start();
        QCOMPARE(m_farm->Get("/uploads/%1", {other}).status, 200);
        m_farm->End();
        QVERIFY(WriteFile(m_farm->Path("uploads/stray"), "of no upload"));
        QVERIFY(WriteFile(m_farm->Path("contents/stray"), "of no account"));
        m_farm->data.Change("UPDATE uploads SET touched_at = touched_at - 1 * 86400");
        m_farm->Start();
        QCOMPARE(m_farm->Get("/uploads/%1", {other}).status, 404);
        QCOMPARE(FilesIn(m_farm->Path("uploads")), 0);
        QCOMPARE(FilesIn(m_farm->Path("contents")), 2);
    }

    void ContentsOfOthersDoNotCount()
    {
        m_farm->data.accounts.Add({"bob"_s, "bob@x"_s, "b"_s, false, 1'000'000, 0});
        const QByteArray package = Package(PlainFiles);
        const QString annsUpload = m_farm->BeginUpload(package).Data("id").toString();
        QCOMPARE(m_farm->Deliver(package).status, 200);
        QCOMPARE(Known(), QJsonArray {Sha256("a leaf")});
        m_farm->SignIn("bob", "b");
        QCOMPARE(Known(), QJsonArray());
        QCOMPARE(m_farm->Get("/uploads/%1", {annsUpload}).status, 404);
        QCOMPARE(m_farm->BeginUpload(package).Data("offset").toInt(-1), 0);
        QCOMPARE(Submit(SubmissionOf(PlainFiles)).status, 409);
    }

    void KeepsAnAccountWithinItsQuota()
    {
        m_farm->settings.quota = SmallQuota;
        m_farm->Start(ScriptedTypes("exit 1"));
        const Reply tooLarge = m_farm->BeginUpload(QByteArray(SmallQuota + 1, 'x'));
        QCOMPARE(tooLarge.status, 507);
        QCOMPARE(tooLarge.Error(), "quota_exceeded"_s);
        QCOMPARE(m_farm->Deliver(Package({{"a", QByteArray(60'000, 'a')}})).status, 200);
        QCOMPARE(m_farm->Deliver(Package({{"b", QByteArray(60'000, 'b')}})).status, 507);
        QCOMPARE(FilesIn(m_farm->Path("contents")), 1);
        // A content that is known takes no more space.
        QCOMPARE(m_farm->Deliver(Package({{"c", QByteArray(60'000, 'a')}, {"d", "d"}})).status, 200);
        QCOMPARE(m_farm->BeginUpload(QByteArray(39'000, 'x')).status, 200);
        QCOMPARE(m_farm->BeginUpload(QByteArray(39'000, 'y')).status, 507);
        m_farm->data.Change(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 9999) INSERT INTO "
            "uploads SELECT i, 1, i, 0, 9e9, NULL FROM n");
        QCOMPARE(m_farm->BeginUpload("z").status, 507);
        // Each of a job's files counts, whether or not their contents are the same.
        const QByteArray content(60'000, 'a');
        QCOMPARE(Submit(SubmissionOf({{"a", content}})).status, 200);
        QCOMPARE(Submit(SubmissionOf({{"a", content}, {"b", content}}, "second")).status, 507);
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
        // A renderer that changes its scene does not change the contents.
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
        QCOMPARE(Known(), QJsonArray());
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
    /// Sends the files and the submission; returns the job's id once it has ended, or nothing when it was refused.
    QString Rendered(const SceneContents& files, const QJsonObject& body)
    {
        m_farm->Deliver(Package(files));
        const QString id = Submit(body).Data("job_id").toString();
        const auto isOver
            = [this] { return Status() == int(JobStatus::Finished) || Status() == int(JobStatus::Failed); };
        return !id.isEmpty() && QTest::qWaitFor(isOver, patienceMs) ? id : QString();
    }
    QJsonArray Known()
    {
        return m_farm
            ->Post("/contents/known", {{"checksums"_s, QJsonArray {Sha256("a leaf"), Sha256("none")}}})
            .Data("known")
            .toArray();
    }
    int Status() { return m_farm->data.Only().status; }

    std::unique_ptr<FarmAtWork> m_farm;
    QByteArray m_function;
};

QTEST_GUILESS_MAIN(TransferTest)
#include "tst_farm_transfer.moc"
