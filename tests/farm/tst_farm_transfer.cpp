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

constexpr int smallQuota = 100'000;

// Notes each frame that it renders.
const char* const notingScript = "echo {frame} {frames} {clock} >> ../../log; cat {scene} > {output}";

const SceneContents plainFiles {{"scene.txt", "a scene"}, {"maps/leaf.txt", "a leaf"}};

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
    void init();
    void HostilePackagesAreRefused_data();
    void HostilePackagesAreRefused();
    void AnUploadGoesOnWhereItWas();
    void WhatOthersBroughtHelpsNobody();
    void AQuotaHolds();
    void ASubmissionMakesOneJob();
    void BadSubmissionsAreRefused_data();
    void BadSubmissionsAreRefused();
    void FramesKeepTheirNumbers();
    void FilesAreSentInParts_data();
    void FilesAreSentInParts();
    void ARestartDoesNotTearADownload();
    void PovRayFindsWhatBelongsToAScene_data();
    void PovRayFindsWhatBelongsToAScene();

private:
    Reply Submit(const QJsonObject& body) { return m_farm->Post("/jobs", body); }
    QString Rendered(const SceneContents& files, const QJsonObject& body);
    int Status() { return m_farm->data.Only().status; }

    std::unique_ptr<FarmAtWork> m_farm;
    QByteArray m_function;
};

// The rows of a test share a farm.
void TransferTest::init()
{
    if (m_function == QTest::currentTestFunction())
        return;
    m_function = QTest::currentTestFunction();
    m_farm = std::make_unique<FarmAtWork>();
    m_farm->Start(ScriptedTypes(QLatin1String(notingScript)));
}

// The id of a job that has come to its end; empty when it was refused.
QString TransferTest::Rendered(const SceneContents& files, const QJsonObject& body)
{
    m_farm->Deliver(Package(files));
    const QString id = Submit(body).Data("job_id").toString();
    const auto isOver
        = [this] { return Status() == int(JobStatus::Finished) || Status() == int(JobStatus::Failed); };
    return !id.isEmpty() && QTest::qWaitFor(isOver, patienceMs) ? id : QString();
}

void TransferTest::HostilePackagesAreRefused_data()
{
    QTest::addColumn<QByteArray>("package");
    const auto path = [](const char* title, const QByteArray& name) {
        QTest::newRow(title) << Package({{"a", "good"}, {name, "bad"}});
    };
    const auto mode = [](const char* title, mode_t kind) {
        QTest::newRow(title) << Package({{"a", "/etc/passwd"}}, [kind](zip_t* archive) {
            zip_file_set_external_attributes(archive, 0, 0, ZIP_OPSYS_UNIX, zip_uint32_t(kind | 0777) << 16);
        });
    };
    path("absolute", "/tmp/x");
    path("climbing", "a/../../x");
    path("a drive", "C:/x");
    path("backslash", "a\\x");
    path("control character", "a\nx");
    path("no UTF-8", "a\xff");
    path("a folder", "folder/");
    path("endless path", QByteArray("long/").repeated(300) + "x");
    mode("a link", S_IFLNK);
    mode("a device", S_IFCHR);
    QTest::newRow("encrypted") << Package({{"a", "secret"}},
        [](zip_t* archive) { zip_file_set_encryption(archive, 0, ZIP_EM_AES_256, "key"); });
    QTest::newRow("one path twice") << Package(
        {{"name1", "one"},
            {"name2", "two"}}).replace("name2", "name1");
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

void TransferTest::HostilePackagesAreRefused()
{
    QFETCH(QByteArray, package);
    const QByteArray announced = package.isEmpty() ? Package(plainFiles) : package;
    if (package.isEmpty())
        package = QByteArray(announced).replace("a leaf", "a lens");
    const QString upload = m_farm->BeginUpload(announced).Data("id").toString();
    QCOMPARE(m_farm->Put(upload, 0, package).Data("offset").toInt(), package.size());
    const Reply reply = m_farm->Unpack(upload);
    QCOMPARE(reply.status, 422);
    QCOMPARE(reply.Error(), QStringLiteral("bad_package"));
    QCOMPARE(m_farm->Get("/uploads/%1", {upload}).status, 404);
    QCOMPARE(FilesIn(m_farm->Path("contents")) + FilesIn(m_farm->Path("uploads")), 0);
}

void TransferTest::AnUploadGoesOnWhereItWas()
{
    const QByteArray package = Package(plainFiles);
    const QString id = m_farm->BeginUpload(package).Data("id").toString();
    const auto put = [&](int from, int to) { return m_farm->Put(id, from, package.mid(from, to - from)); };
    QCOMPARE(put(0, 100).Data("offset").toInt(), 100);
    QCOMPARE(put(0, 100).status, 409);
    QCOMPARE(put(101, 150).status, 409);
    QCOMPARE(m_farm->Unpack(id).status, 409);
    QCOMPARE(m_farm->Put(id, 100, package).status, 400);
    // What a kill has left of a chunk counts, wherever it was cut.
    m_farm->End();
    QVERIFY(WriteFile(m_farm->Path("uploads/%1", {id}), package.left(107)));
    m_farm->Start();
    const Reply again = m_farm->BeginUpload(package);
    QCOMPARE(again.Data("id").toString(), id);
    QCOMPARE(again.Data("offset").toInt(), 107);
    QCOMPARE(put(107, package.size()).status, 200);
    const Reply unpacked = m_farm->Unpack(id);
    QCOMPARE(unpacked.status, 200);
    QCOMPARE(unpacked.Data("files")[1][QLatin1String("path")].toString(), QStringLiteral("maps/leaf.txt"));
    QCOMPARE(unpacked.Data("files")[1][QLatin1String("checksum")].toString(), Sha256("a leaf"));
    QCOMPARE(m_farm->Unpack(id).body, unpacked.body);
    QVERIFY(m_farm->BeginUpload(package).Data("unpacked").toBool());
    const QString other = m_farm->BeginUpload("other").Data("id").toString();
    m_farm->Put(other, 0, "oth");
    m_farm->Change("UPDATE uploads SET touched_at = touched_at - 7 * 86400");
    m_farm->Start();
    QCOMPARE(m_farm->Get("/uploads/%1", {other}).status, 404);
    QCOMPARE(FilesIn(m_farm->Path("uploads")), 0);
    QCOMPARE(FilesIn(m_farm->Path("contents")), 2);
}

void TransferTest::WhatOthersBroughtHelpsNobody()
{
    m_farm->data.accounts.Add(
        {QStringLiteral("bob"), QStringLiteral("bob@x"), QStringLiteral("b"), false, 1'000'000, 0});
    const QByteArray package = Package(plainFiles);
    const QString annsUpload = m_farm->BeginUpload(package).Data("id").toString();
    QCOMPARE(m_farm->Deliver(package).status, 200);
    const QJsonObject question {{QStringLiteral("checksums"), QJsonArray {Sha256("a leaf"), Sha256("none")}}};
    const auto known = [&] { return m_farm->Post("/contents/known", question).Data("known").toArray(); };
    QCOMPARE(known(), QJsonArray {Sha256("a leaf")});
    m_farm->SignIn("bob", "b");
    QCOMPARE(known(), QJsonArray());
    QCOMPARE(m_farm->Get("/uploads/%1", {annsUpload}).status, 404);
    QCOMPARE(m_farm->BeginUpload(package).Data("offset").toInt(-1), 0);
    QCOMPARE(Submit(SubmissionOf(plainFiles)).status, 409);
}

void TransferTest::AQuotaHolds()
{
    m_farm->Start("{}", smallQuota);
    const Reply tooLarge = m_farm->BeginUpload(QByteArray(smallQuota + 1, 'x'));
    QCOMPARE(tooLarge.status, 507);
    QCOMPARE(tooLarge.Error(), QStringLiteral("quota_exceeded"));
    QCOMPARE(m_farm->Deliver(Package({{"a", QByteArray(60'000, 'a')}})).status, 200);
    QCOMPARE(m_farm->Deliver(Package({{"b", QByteArray(60'000, 'b')}})).status, 507);
    QCOMPARE(FilesIn(m_farm->Path("contents")), 1);
    // What is there already takes no more room.
    QCOMPARE(m_farm->Deliver(Package({{"c", QByteArray(60'000, 'a')}, {"d", "d"}})).status, 200);
    QCOMPARE(m_farm->BeginUpload(QByteArray(39'000, 'x')).status, 200);
    QCOMPARE(m_farm->BeginUpload(QByteArray(39'000, 'y')).status, 507);
}

void TransferTest::ASubmissionMakesOneJob()
{
    m_farm->data.accounts.AddProject(m_farm->data.account, {QStringLiteral("P"), QStringLiteral("p")});
    QJsonObject body = SubmissionOf(plainFiles);
    body.insert(QStringLiteral("pool"), QStringLiteral("p"));
    QCOMPARE(Submit(body).status, 409);
    const QString id = Rendered(plainFiles, body);
    m_farm->Start(ScriptedTypes(QLatin1String(notingScript)));
    QCOMPARE(Submit(body).Data("job_id").toString(), id);
    QCOMPARE(Submit(body).Data("job_increasement").toString(), QStringLiteral("1"));
    QCOMPARE(m_farm->Get("/jobs?conditions=%7B%22pool_id%22:%22p%22%7D").Data("total").toInt(), 1);
    const QString leaf = m_farm->Path("jobs/%1/scene/maps/leaf.txt", {id});
    QCOMPARE(ReadFile(leaf), QByteArray("a leaf"));
    // What a renderer does to its scene does not reach the contents.
    QVERIFY(WriteFile(leaf, "a lens"));
    m_farm->Change("UPDATE accounts SET balance = 0");
    body.insert(QStringLiteral("submission"), QStringLiteral("second"));
    const QString second = Submit(body).Data("job_id").toString();
    QCOMPARE(Status(), int(JobStatus::Arrears));
    m_farm->data.accounts.Credit(QStringLiteral("ann"), 1'000'000);
    m_farm->Do("recover", {second});
    QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
    QCOMPARE(ReadFile(m_farm->Path("jobs/%1/scene/maps/leaf.txt", {second})), QByteArray("a leaf"));
}

void TransferTest::BadSubmissionsAreRefused_data()
{
    QTest::addColumn<QByteArray>("change");
    const char* const changes[] = {R"({"submission":""})", R"({"submission":7})", R"({"type":"clay"})",
        R"({"name":""})", R"({"pool":"nobody's"})", R"({"scene":"other.txt"})", R"({"files":[]})",
        R"({"files":["scene.txt"]})", R"({"frames":[]})", R"({"frames":[{"start":3,"end":2}]})",
        R"({"frames":[{"start":0,"end":2}]})", R"({"frames":[{"start":1,"end":100000}]})",
        R"({"frames":[{"start":1,"end":20001}]})", R"({"frames":[{"start":1.5,"end":2}]})", R"({"width":0})",
        R"({"height":16385})", R"({"width":"48"})", R"({"prerender":null})"};
    for (const char* change : changes)
        QTest::newRow(change) << QByteArray(change);
    const QString scene = QString::fromLatin1(R"({"path":"%2","checksum":"%1"})").arg(Sha256("a scene"));
    for (const char* path : {"../x", "scene.txt", "scene.txt/x"})
        QTest::newRow(path) << QStringLiteral("{\"files\":[%1,%2]}")
                                   .arg(scene.arg(QLatin1String("scene.txt")), scene.arg(QLatin1String(path)))
                                   .toLatin1();
}

void TransferTest::BadSubmissionsAreRefused()
{
    QFETCH(QByteArray, change);
    QCOMPARE(m_farm->Deliver(Package(plainFiles)).status, 200);
    QJsonObject body = SubmissionOf(plainFiles);
    const QJsonObject changes = QJsonDocument::fromJson(change).object();
    for (auto member = changes.begin(); member != changes.end(); ++member)
        body.insert(member.key(), member.value());
    QCOMPARE(Submit(body).status, 400);
    QCOMPARE(m_farm->data.jobs.List(m_farm->data.account, {}, 1, 1).total, std::int64_t(0));
}

void TransferTest::FramesKeepTheirNumbers()
{
    QJsonObject body = SubmissionOf(plainFiles);
    body.insert(QStringLiteral("prerender"), true);
    body.insert(QStringLiteral("frames"),
        QJsonDocument::fromJson(R"([{"start":20,"end":21},{"start":2,"end":4},{"start":3,"end":5}])")
            .array());
    const QString id = Rendered(plainFiles, body);
    QCOMPARE(m_farm->Log(), QByteArray("2 20 0.000000 4 20 0.100000 21 20 0.950000"));
    const QJsonValue info = m_farm->Get("/jobs/%1", {id}).Data("jobDatas");
    QCOMPARE(info[QLatin1String("jobFrames")],
        QJsonValue(QJsonDocument::fromJson(R"([{"start":2,"end":5},{"start":20,"end":21}])").array()));
    QCOMPARE(info[QLatin1String("jobPrerender")], QJsonValue(true));
    QCOMPARE(info[QLatin1String("jobProgress")], QJsonValue(100));
    for (int time = 1; time <= 2; ++time) {
        m_farm->Do("full-render", {id});
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
    }
    QStringList names;
    const QJsonArray list = m_farm->Get("/jobs/%1/files", {id}).Data("list").toArray();
    for (const QJsonValue& file : list)
        names.append(file[QLatin1String("name")].toString().mid(8, 2));
    QCOMPARE(names.join(QLatin1Char(' ')), QStringLiteral("02 03 04 05 20 21"));
    QCOMPARE(ReadFile(m_farm->Path("jobs/log")).count('\n'), 6);
    QCOMPARE(list.at(0)[QLatin1String("size")].toInt(), 7);
    QCOMPARE(list.at(0)[QLatin1String("checksum")].toString(), Sha256("a scene"));
}

void TransferTest::FilesAreSentInParts_data()
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
    row("bytes=-9", "", 206, "a scene");
    row("bytes=5-99999999999", "*", 206, "ne");
    row("bytes=7-", "", 416, "");
    row("bytes=3-2", "", 416, "");
    row("bytes=-0", "", 416, "");
    row("bytes=0-1,3-4", "", 416, "");
    row("lines=1-2", "", 416, "");
    row("bytes=2-4", "wrong", 412, "");
    row("", "wrong", 412, "");
    row("", "", 404, "", "frame_0002.txt");
    row("", "", 404, "", "main.txt");
    row("", "", 404, "", "..%2Fframe_0001.txt");
}

void TransferTest::FilesAreSentInParts()
{
    QFETCH(QByteArray, range);
    QFETCH(QByteArray, match);
    QFETCH(QString, name);
    QFETCH(int, status);
    const QString id = Rendered(plainFiles, SubmissionOf(plainFiles));
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

void TransferTest::ARestartDoesNotTearADownload()
{
    m_farm->Start(ScriptedTypes(QStringLiteral("[ -e ../../once ] && exit 1; : > ../../once; "
                                               "head -c 50000000 /dev/zero > {output}")));
    const QString id = Rendered(plainFiles, SubmissionOf(plainFiles));
    const auto socket = m_farm->SendRaw("GET /api/v1/jobs/" + id.toLatin1()
            + "/files/frame_0001.txt HTTP/1.1\r\n" + m_farm->RawToken() + "\r\n",
        1'000'000);
    QVERIFY(socket->waitForReadyRead());
    m_farm->Do("restart", {id});
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(m_farm->Path("jobs/%1/frame_0001.txt", {id})), patienceMs);
    QCOMPARE(m_farm->Get("/jobs/%1/files", {id}).Data("list").toArray(), QJsonArray());
    qint64 got = 0;
    while (socket->bytesAvailable() > 0 || socket->waitForReadyRead(10000))
        got += socket->readAll().size();
    QVERIFY(got > 50'000'000);
}

void TransferTest::PovRayFindsWhatBelongsToAScene_data()
{
    QTest::addColumn<bool>("allowed");
    QTest::newRow("#include \"colors.inc\"\n") << true;
    QTest::newRow("#fopen F \"/etc/passwd\" read\n") << false;
    QTest::newRow("#fopen F \"../../../../types.json\" read\n") << false;
    QTest::newRow("#fopen F \"../../../../farm.sqlite\" read\n") << false;
    QTest::newRow("#fopen F \"../parts/ball.inc\" write\n") << false;
}

// The row's name is a line of the scene.
void TransferTest::PovRayFindsWhatBelongsToAScene()
{
    if (QStandardPaths::findExecutable(QStringLiteral("povray")).isEmpty())
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

QTEST_GUILESS_MAIN(TransferTest)
#include "tst_farm_transfer.moc"
