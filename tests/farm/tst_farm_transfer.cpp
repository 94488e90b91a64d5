#include "farm/runner/confinement.h"
#include "tests/farm/farm_at_work.h"
#include "tests/farm/package_fixture.h"
#include "tests/support/blender_scene.h"

#include <QImage>

#include <sys/stat.h>

using namespace farm;

namespace {

// Stands in for the renderer and logs each frame.
const char* const NotingScript = "echo {frame} {frames} {clock} >> ../../log; cat {scene} > {output}";

constexpr int SmallQuota = 100'000;

const std::tuple<const char*> BadSubmissions[] = {R"({"submission":""})", R"({"type":"clay"})",
    R"({"pool":"unknown"})", R"({"scene":"other.txt"})", R"({"files":["scene.txt"]})",
    R"({"frames":[{"start":3,"end":2}]})", R"({"frames":[{"start":1,"end":20001}]})",
    R"({"frames":[{"start":1,"end":9,"step":0}]})", R"({"height":16385})"};

// Range, If-Match, and the status and bytes of the answer for a frame that contains "a scene".
const std::tuple<const char*, const char*, int, QByteArray> Ranges[] = {
    {"", "", 200, "a scene"},
    {"bytes=0-0", "", 206, "a"},
    {"bytes=2-", "right", 206, "scene"},
    {"bytes=-2", "", 206, "ne"},
    {"bytes=5-99999999999", "*", 206, "ne"},
    {"bytes=7-", "", 416, {}},
    {"bytes=0-1,3-4", "", 416, {}},
    {"bytes=2-4", "wrong", 412, {}},
};

// A line of a POV-Ray scene and whether it is allowed.
const std::tuple<const char*, bool> SceneLines[] = {
    {"#include \"colors.inc\"\n", true},
    {"#fopen F \"/etc/passwd\" read\n", false},
    {"#fopen F \"../parts/ball.inc\" write\n", false},
};

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

    void RefusesHostilePackages_data()
    {
        QTest::addColumn<QByteArray>("package");
        QTest::newRow("climbing") << Package({{"a", "good"}, {"a/../../x", "bad"}});
        QTest::newRow("not UTF-8") << Package({{"a", "good"}, {"a\xff", "bad"}});
        QTest::newRow("a link") << Package({{"a", "/etc/passwd"}}, [](zip_t* archive) {
            constexpr zip_uint32_t Link = zip_uint32_t {S_IFLNK | 0777} << 16;
            zip_file_set_external_attributes(archive, 0, 0, ZIP_OPSYS_UNIX, Link);
        });
        QTest::newRow("one path twice")
            << Package({{"name1", "1"}, {"name2", "2"}}).replace("name2", "name1");
        SceneContents many;
        for (int entry = 0; entry <= 10000; ++entry)
            many.append({QByteArray::number(entry), ""});
        QTest::newRow("too many entries") << Package(many);
        QTest::newRow("bomb") << Package({{"a", QByteArray(70'000'000, '0')}});
        // The size precedes the name's length, both in the entry and in the directory.
        const QByteArray size("\xb8\x0b\0\0\x01\0", 6);
        for (char low : {'\x07', '\xff'})
            QTest::addRow("says that its size ends in %d", low)
                << Package({{"a", QByteArray(3000, 'x')}}).replace(size, low + size.mid(1));
        QTest::newRow("damaged") << Package({{"a", "content"}}).replace("content", "contend");
        QTest::newRow("not a ZIP archive") << QByteArray("rubbish");
        QTest::newRow("not what was announced") << Package(PlainFiles).replace("a leaf", "a lens");
    }

    void RefusesHostilePackages()
    {
        QFETCH(QByteArray, package);
        const QByteArray announced = QByteArray(package).replace("a lens", "a leaf");
        const QString upload = m_farm->BeginUpload(announced).Data("id").toString();
        QCOMPARE(m_farm->Put(upload, 0, package).Data("offset").toInt(), package.size());
        const Reply reply = m_farm->Unpack(upload);
        QCOMPARE(reply.status, 422);
        QCOMPARE(reply.Error(), "bad_package"_s);
        QCOMPARE(m_farm->Get("/uploads/"_s + upload).status, 404);
        QCOMPARE(FilesIn(m_farm->Path("contents"_s)) + FilesIn(m_farm->Path("uploads"_s)), 0);
    }

    void ContinuesAnInterruptedUpload()
    {
        const QByteArray package = Package(PlainFiles,
            [](zip_t* archive) { zip_file_set_external_attributes(archive, 0, 0, ZIP_OPSYS_UNIX, 0); });
        const QString id = m_farm->BeginUpload(package).Data("id").toString();
        const auto put
            = [&](int from, int to) { return m_farm->Put(id, from, package.mid(from, to - from)); };
        QCOMPARE(put(0, 100).Data("offset").toInt(), 100);
        QCOMPARE(put(0, 100).status, 409);
        QCOMPARE(put(101, 150).status, 409);
        QCOMPARE(m_farm->Unpack(id).status, 409);
        QCOMPARE(m_farm->Put(id, 100, package).status, 400);
        // A killed farm may leave any part of a chunk, which then counts.
        m_farm->End();
        QVERIFY(WriteFile(m_farm->Path("uploads/"_s + id), package.left(107)));
        m_farm->Start();
        const Reply again = m_farm->BeginUpload(package);
        QCOMPARE(again.Data("id").toString(), id);
        QCOMPARE(again.Data("offset").toInt(), 107);
        QCOMPARE(put(107, package.size()).status, 200);
        const Reply unpacked = m_farm->Unpack(id);
        QCOMPARE(unpacked.Data("files")[1]["path"_s].toString(), "maps/leaf.txt"_s);
        QCOMPARE(unpacked.Data("files")[1]["checksum"_s].toString(), Leaf);
        QCOMPARE(m_farm->Unpack(id).body, unpacked.body);
        QVERIFY(m_farm->BeginUpload(package).Data("unpacked").toBool());
        // A content that the disk has lost is sent again.
        QVERIFY(QFile::remove(ContentFile()));
        QCOMPARE(Known(), QJsonArray());
        QVERIFY(!m_farm->BeginUpload(package).Data("unpacked").toBool());
        QCOMPARE(m_farm->Deliver(package).status, 200);
    }

    void ForgetsUploadsAfterAWeekAndStrayFiles()
    {
        QCOMPARE(m_farm->Deliver(Package(PlainFiles)).status, 200);
        const QByteArray package = Package({PlainFiles.at(0)});
        const QString id = m_farm->BeginUpload(package).Data("id").toString();
        m_farm->Put(id, 0, package.left(3));
        int use = 0;
        for (int days : {6, 6, 6, 6, 1}) {
            m_farm->End();
            QVERIFY(WriteFile(m_farm->Path("uploads/stray"_s), "of no upload"));
            QVERIFY(WriteFile(m_farm->Path("contents/stray"_s), "of no account"));
            const QString age = "UPDATE uploads SET touched_at = touched_at - 86400 * %1"_s;
            m_farm->data.Change(qPrintable(age.arg(days)));
            m_farm->Start();
            QCOMPARE(m_farm->Get("/uploads/"_s + id).status, days == 6 ? 200 : 404);
            QCOMPARE(FilesIn(m_farm->Path("uploads"_s)), use < 3 ? 1 : 0);
            QCOMPARE(FilesIn(m_farm->Path("contents"_s)), 2);
            // Begun again, continued, unpacked, then left alone.
            if (++use == 1)
                m_farm->BeginUpload(package);
            else if (use == 2)
                m_farm->Put(id, 3, package.mid(3));
            else if (use == 3)
                QCOMPARE(m_farm->Unpack(id).status, 200);
        }
    }

    void IgnoresTheContentsOfOtherAccounts()
    {
        m_farm->data.Add("bob", "b", 1'000'000);
        const QByteArray package = Package(PlainFiles);
        const QString annsUpload = m_farm->BeginUpload(package).Data("id").toString();
        QCOMPARE(m_farm->Deliver(package).status, 200);
        QCOMPARE(FilesIn(m_farm->Path("uploads"_s)), 0);
        QCOMPARE(Known(), QJsonArray {Leaf});
        m_farm->SignIn("bob", "b");
        QCOMPARE(Known(), QJsonArray());
        QCOMPARE(m_farm->Get("/uploads/"_s + annsUpload).status, 404);
        QCOMPARE(m_farm->BeginUpload(package).Data("offset").toInt(-1), 0);
        QCOMPARE(Submit(SubmissionOf(PlainFiles)).status, 409);
    }

    void KeepsAnAccountWithinItsQuota()
    {
        m_farm->settings.quota = SmallQuota;
        m_farm->Start(ScriptedTypes(NotingScript));
        const Reply tooLarge = m_farm->BeginUpload(QByteArray(SmallQuota + 1, 'x'));
        QCOMPARE(tooLarge.status, 507);
        QCOMPARE(tooLarge.Error(), "quota_exceeded"_s);
        QCOMPARE(m_farm->Deliver(Package({{"a", QByteArray(60'000, 'a')}})).status, 200);
        QCOMPARE(m_farm->Deliver(Package({{"b", QByteArray(60'000, 'b')}})).status, 507);
        QCOMPARE(FilesIn(m_farm->Path("contents"_s)), 1);
        // A content takes space once, even if it is known or two files have it.
        const QByteArray more(20'000, 'd');
        QCOMPARE(
            m_farm->Deliver(Package({{"c", QByteArray(60'000, 'a')}, {"d", more}, {"e", more}})).status, 200);
        QCOMPARE(m_farm->BeginUpload(QByteArray(19'000, 'x')).status, 200);
        QCOMPARE(m_farm->BeginUpload(QByteArray(1'000, 'y')).status, 507);
        // Each of a job's files counts, whether or not their contents are the same.
        const SceneContents files {{"a", QByteArray(60'000, 'a')}, {"d", more}, {"e", more}};
        QCOMPARE(Submit(SubmissionOf(files)).status, 200);
        QCOMPARE(Submit(SubmissionOf(files + SceneContents {{"f", more}}, "second"_s)).status, 507);
        m_farm->data.Change(
            "DELETE FROM uploads; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
            "WHERE i < 9999) INSERT INTO uploads SELECT i, 1, i, 0, 9e9, NULL FROM n");
        QCOMPARE(m_farm->BeginUpload("y").status, 200);
        QCOMPARE(m_farm->BeginUpload("z").status, 507);
        // Exactly the quota is allowed, for a package and for its contents.
        m_farm->data.Change("DELETE FROM uploads; DELETE FROM contents");
        QCOMPARE(m_farm->BeginUpload(QByteArray(SmallQuota, 'x')).status, 200);
        m_farm->data.Change("DELETE FROM uploads");
        QCOMPARE(m_farm->Deliver(Package({{"a", QByteArray(SmallQuota, 'a')}})).status, 200);
        QCOMPARE(m_farm->BeginUpload("y").status, 507);
    }

    void ASubmissionMakesOneJob()
    {
        QJsonObject body = SubmissionOf(PlainFiles);
        QCOMPARE(Submit(body).status, 409);
        const QString id = Rendered(PlainFiles, body);
        m_farm->Start(ScriptedTypes("while [ ! -e ../../gate ]; do sleep 0.01; done; cp {scene} {output}"));
        QCOMPARE(Submit(body).body["data"_s], QJsonValue({{"job_id"_s, id}, {"job_increasement"_s, "1"_s}}));
        const QString leaf = m_farm->Path("jobs/%1/scene/maps/leaf.txt"_s);
        EVENTUALLY(!QFile::exists(leaf.arg(id)));
        m_farm->data.SetBalance(0);
        body.insert("submission"_s, "second"_s);
        const auto news = m_farm->Listen();
        const QString second = Submit(body).Data("job_id").toString();
        EVENTUALLY(news->peek(10000).contains(second.toLatin1()));
        QCOMPARE(m_farm->Status(), JobStatus::Arrears);
        m_farm->data.SetBalance(1'000'000);
        m_farm->Apply("recover"_s, {second});
        EVENTUALLY_COMPARE(ReadFile(leaf.arg(second)), QByteArray("a leaf"));
        // A renderer that changes its copy of the scene does not change the contents.
        QVERIFY(WriteFile(leaf.arg(second), "a lens") && m_farm->OpenGate());
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(ReadFile(ContentFile()), QByteArray("a leaf"));
    }

    void ADamagedContentFailsTheJobAndIsSentAgain()
    {
        QCOMPARE(m_farm->Deliver(Package(PlainFiles)).status, 200);
        QVERIFY(WriteFile(ContentFile(), "a lens"));
        Submit(SubmissionOf(PlainFiles));
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Failed);
        QCOMPARE(QDir(m_farm->Path("jobs/"_s + m_farm->data.Only().id)).entryList({"scene*"_s}).size(), 0);
        QCOMPARE(Known(), QJsonArray());
        QVERIFY(!Rendered(PlainFiles, SubmissionOf(PlainFiles, "second"_s)).isEmpty());
        QCOMPARE(m_farm->Status(), JobStatus::Finished);
    }

    void RefusesBadSubmissions_data() { AddRows(BadSubmissions); }
    void RefusesBadSubmissions()
    {
        QCOMPARE(m_farm->Deliver(Package(PlainFiles)).status, 200);
        const QJsonObject change = Json(QTest::currentDataTag());
        QJsonObject body = SubmissionOf(PlainFiles);
        body.insert(change.begin().key(), change.begin().value());
        QCOMPARE(Submit(body).status, 400);
        QCOMPARE(m_farm->data.Count("SELECT count(*) FROM jobs"), 0);
    }

    void RefusesSubmissionsWhosePathsClash()
    {
        for (const char* path : {"../x", "scene.txt", "scene.txt/x"})
            QCOMPARE(Submit(SubmissionOf({{"scene.txt", "a scene"}, {path, "a scene"}})).status, 400);
    }

    void FramesKeepTheirNumbers()
    {
        const QJsonObject frames
            = Json(R"({"sent":[{"start":20,"end":21},{"start":21,"end":35,"step":4},{"start":2,"end":4},
                               {"start":4,"end":5}],
                       "kept":[{"start":2,"end":5},{"start":20,"end":21},{"start":25,"end":33,"step":4}]})");
        QJsonObject body = SubmissionOf(PlainFiles);
        body.insert("prerender"_s, true);
        body.insert("frames"_s, frames["sent"_s]);
        const QString id = Rendered(PlainFiles, body);
        QCOMPARE(m_farm->Log(), QByteArray("2 32 0.000000 20 32 0.562500 33 32 0.968750"));
        const QJsonValue info = m_farm->Get("/jobs/"_s + id).Data("jobDatas");
        QCOMPARE(info["jobFrames"_s], frames["kept"_s]);
        QCOMPARE(info["jobPrerender"_s], QJsonValue(true));
        QCOMPARE(info["jobProgress"_s], QJsonValue(100));
        m_farm->Apply("full-render"_s, {id});
        EVENTUALLY_COMPARE(m_farm->Status(), JobStatus::Finished);
        QCOMPARE(m_farm->Log().count('.'), 9);
        QCOMPARE(m_farm->Get("/jobs/"_s + id).Data("jobDatas")["jobPrerender"_s], QJsonValue(false));
        QJsonArray files;
        for (const char* number : {"02", "03", "04", "05", "20", "21", "25", "29", "33"})
            files.append(QJsonObject {{"name"_s, "frame_00%1.txt"_s.arg(QLatin1String(number))},
                {"size"_s, 7}, {"checksum"_s, Sha256("a scene")}});
        QCOMPARE(m_farm->Get("/jobs/%1/files"_s.arg(id)).Data("list"), QJsonValue(files));
        QVERIFY(WriteFile(m_farm->Path("jobs/%1/frame_0002.txt"_s.arg(id)), "cut"));
        for (const char* name : {"frame_0002.txt", "frame_0001.txt", "..%2Fframe_0003.txt"})
            QCOMPARE(m_farm->Get("/jobs/%1/files/%2"_s.arg(id, QLatin1String(name))).status, 404);
    }

    void SendsFilesInParts_data() { AddRows(Ranges); }
    void SendsFilesInParts()
    {
        const auto& [range, match, status, bytes] = Row(Ranges);
        const QString id = Rendered(PlainFiles, SubmissionOf(PlainFiles));
        const QByteArray tag = '"' + Sha256("a scene").toLatin1() + '"';
        FarmClient::Headers headers;
        if (*range)
            headers.append({"Range", QByteArray(range)});
        if (*match)
            headers.append({"If-Match", QByteArray(match).replace("right", tag).replace("wrong", "\"0\"")});
        const Reply reply = m_farm->Get("/jobs/%1/files/frame_0001.txt"_s.arg(id), headers);
        QCOMPARE(reply.status, status);
        QCOMPARE(reply.Error().isEmpty(), status < 300);
        if (status < 300)
            QCOMPARE(reply.bytes + reply.tag, bytes + tag);
    }

    void PovRayReachesItsSceneAndNothingElse_data() { AddRows(SceneLines); }
    void PovRayReachesItsSceneAndNothingElse()
    {
        if (QStandardPaths::findExecutable("povray"_s).isEmpty())
            QSKIP("POV-Ray is not installed");
        const auto& [line, allowed] = Row(SceneLines);
        if (!allowed && !Confinement::IsSupported())
            QSKIP("this kernel cannot confine a renderer");
        const SceneContents files {
            {"sh\xc3\xb6ts \"1\"/ball +I.pov",
                QByteArray("#version 3.7;\nglobal_settings { assumed_gamma 1 }\n"
                           "camera { location <0, 0, -2> look_at 0 }\n#include \"../parts/ball.inc\"\n")
                    + line},
            {"parts/ball.inc", "sphere { 0, 1 }"}};
        StartWithShippedTypes();
        QVERIFY(!Rendered(files, SubmissionOf(files, QString::fromLatin1(line))).isEmpty());
        QCOMPARE(m_farm->Status(), allowed ? JobStatus::Finished : JobStatus::Failed);
    }

    void BlenderFindsTheFilesThatWereSent()
    {
        if (!HasBlender())
            QSKIP("Blender is not installed");
        SceneContents files;
        {
            const QTemporaryDir folder; // is gone when the farm renders
            QCOMPARE(MakeShot(folder.path()), QByteArray());
            for (const char* name :
                {"/shots/shot.blend", "/parts/cube.blend", "/textures/red.png", "/shots/early.blend"}) {
                const QString path = folder.path() + QLatin1String(name);
                files.append({path.mid(1).toUtf8(), ReadFile(path)});
            }
        }
        StartWithShippedTypes();
        const auto submissionOf = [](const SceneContents& contents, const char* name) {
            QJsonObject submission = SubmissionOf(contents, QLatin1String(name));
            submission["type"_s] = "blender"_s;
            return submission;
        };
        QJsonObject submission = submissionOf(files, "shot");
        submission["frames"_s] = QJsonArray {QJsonObject {{"start"_s, 3}, {"end"_s, 3}}};
        const QString id = Rendered(files, submission);
        QCOMPARE(m_farm->data.Only().message, QString());
        const QImage picture(m_farm->Path("jobs/%1/frame_0003.png"_s.arg(id)));
        QCOMPARE(picture.size(), QSize(48, 36));
        // Blender shows a texture that it does not find as magenta.
        const QRgb middle = picture.pixel(24, 18);
        QVERIFY2(qRed(middle) > 100 && qBlue(middle) < 50, qPrintable(QString::number(middle, 16)));
        // The first frame of a scene that begins with frame 0.
        const QString early = Rendered(files, submissionOf({files.at(3), files.at(1), files.at(2)}, "early"));
        QVERIFY(m_farm->Get("/jobs/%1/frames/1/full-log"_s.arg(early)).bytes.contains("Fra:0 "));
        // A scene that cannot be read fails with the reason.
        const SceneContents broken {{"broken.blend", "not a scene"}};
        m_farm->Deliver(Package(broken));
        QCOMPARE(Submit(submissionOf(broken, "second")).status, 200);
        EVENTUALLY_COMPARE(m_farm->data.Count("SELECT count(*) FROM frame_logs WHERE text LIKE "
                                              "'%The frame could not be rendered: Error: %'"),
            1);
    }

private:
    void StartWithShippedTypes()
    {
        const QFileInfo types(QStringLiteral(FARM_JOB_TYPES));
        QFile::copy(types.dir().filePath("blender_frame.py"_s), m_farm->Path("blender_frame.py"_s));
        m_farm->Start(ReadFile(types.filePath()));
    }

    Reply Submit(const QJsonObject& body) { return m_farm->Post("/jobs"_s, body); }
    /// Sends the files and the submission; returns the job's id once it has ended, or nothing when it is refused.
    QString Rendered(const SceneContents& files, const QJsonObject& body)
    {
        m_farm->Deliver(Package(files));
        const QString id = Submit(body).Data("job_id").toString();
        const auto isOver = [this] {
            return m_farm->Status() == JobStatus::Finished || m_farm->Status() == JobStatus::Failed;
        };
        return !id.isEmpty() && QTest::qWaitFor(isOver, Patience) ? id : QString();
    }

    QJsonArray Known() { return m_farm->Known({Leaf, Sha256("none")}); }
    /// The farm's file of the content of maps/leaf.txt.
    QString ContentFile() const { return m_farm->Path("contents/%1/%2"_s.arg(Leaf.left(2), Leaf)); }

    const QString Leaf = Sha256("a leaf");
    std::unique_ptr<FarmAtWork> m_farm;
    QByteArray m_function;
};

QTEST_GUILESS_MAIN(TransferTest)
#include "tst_farm_transfer.moc"
