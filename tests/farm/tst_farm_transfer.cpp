#include "farm.h"
#include "farm_client.h"
#include "farm_fixture.h"
#include "package_fixture.h"

#include <QBuffer>
#include <QDirIterator>
#include <QImage>
#include <QStandardPaths>
#include <QTcpSocket>
#include <QtTest>

#include <sys/stat.h>

using namespace farm;

namespace {

constexpr int smallQuota = 100'000;
constexpr int mebibyte = 1024 * 1024;

// Notes each frame that it renders, and waits in one numbered 404 for ever.
const char* const notingScript = "echo {frame} {frames} {clock} >> ../../log; "
                                 "while [ {frame} -eq 404 ]; do sleep 0.01; done; cat {scene} > {output}";

const SceneContents plainFiles {{"scene.txt", "a scene"}, {"maps/leaf.txt", "a leaf"}};

int FilesIn(const QString& folder)
{
    int count = 0;
    for (QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         files.hasNext(); ++count)
        files.next();
    return count;
}

QByteArray Json(const QJsonObject& object)
{
    return QJsonDocument(object).toJson();
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
    void StartFarm(const QByteArray& types = ScriptedTypes(QLatin1String(notingScript)),
        std::int64_t quota = FarmSettings().quota);
    Reply Get(const QString& path, const FarmClient::Headers& headers = {})
    {
        return m_client.Send("GET", path, {}, m_token, headers);
    }
    Reply Submit(const QJsonObject& body)
    {
        return m_client.Send("POST", QStringLiteral("/jobs"), Json(body), m_token);
    }
    QString Rendered(const SceneContents& files, const QJsonObject& body);
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    int Status() { return m_data->Only().status; }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FarmData> m_data;
    std::unique_ptr<Farm> m_farm;
    FarmClient m_client;
    QString m_token;
    QByteArray m_function;
};

// The rows of a test share a farm.
void TransferTest::init()
{
    if (m_function == QTest::currentTestFunction())
        return;
    m_function = QTest::currentTestFunction();
    m_farm.reset();
    m_data.reset();
    m_folder = std::make_unique<QTemporaryDir>();
    m_data = std::make_unique<FarmData>(m_folder->path());
}

void TransferTest::StartFarm(const QByteArray& types, std::int64_t quota)
{
    FarmSettings settings;
    settings.dataFolder = m_folder->path();
    settings.sceneFolder = m_folder->path();
    settings.jobTypesFile = Path("types.json");
    settings.demo = false;
    settings.quota = quota;
    WriteFile(Path("types.json"), types);
    m_farm = std::make_unique<Farm>(settings);
    m_client.SetUrl(m_farm->Url());
    m_token = m_client.SignIn("ann", "secret");
}

// The id of a job that has come to its end; empty when it was refused.
QString TransferTest::Rendered(const SceneContents& files, const QJsonObject& body)
{
    m_client.Deliver(Package(files), m_token);
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
    QTest::newRow("bomb") << Package({{"a", QByteArray(70 * mebibyte, '0')}});
    // The size stands in front of the name's length, in the entry and in the directory.
    const QByteArray content(3000, 'x');
    const QByteArray said("\xb8\x0b\0\0\x01\0", 6);
    QTest::newRow("holds more than it says")
        << Package({{"a", content}}).replace(said, QByteArray("\x07\0\0\0\x01\0", 6));
    QTest::newRow("holds less than it says")
        << Package({{"a", content}}).replace(said, QByteArray("\xff\x0b\0\0\x01\0", 6));
    QTest::newRow("damaged") << Package({{"a", "content"}}).replace("content", "contend");
    QTest::newRow("cut off") << Package({{"a", content}, {"b", content}}).chopped(30);
    QTest::newRow("no ZIP archive") << QByteArray("rubbish");
    QTest::newRow("not what was announced") << QByteArray();
}

void TransferTest::HostilePackagesAreRefused()
{
    QFETCH(QByteArray, package);
    if (!m_farm)
        StartFarm();
    const QByteArray announced = package.isEmpty() ? Package(plainFiles) : package;
    if (package.isEmpty())
        package = QByteArray(announced).replace("a leaf", "a lens");
    const QString upload = m_client.BeginUpload(announced, m_token).Data("id").toString();
    QCOMPARE(m_client.Put(upload, 0, package, m_token).Data("offset").toInt(), package.size());
    const Reply reply = m_client.Unpack(upload, m_token);
    QCOMPARE(reply.status, 422);
    QCOMPARE(reply.Error(), QStringLiteral("bad_package"));
    QCOMPARE(Get(QStringLiteral("/uploads/") + upload).status, 404);
    QCOMPARE(FilesIn(Path("contents")) + FilesIn(Path("uploads")), 0);
}

void TransferTest::AnUploadGoesOnWhereItWas()
{
    StartFarm();
    const QByteArray package = Package(plainFiles);
    const QString id = m_client.BeginUpload(package, m_token).Data("id").toString();
    const auto put
        = [&](int from, int to) { return m_client.Put(id, from, package.mid(from, to - from), m_token); };
    QCOMPARE(put(0, 100).Data("offset").toInt(), 100);
    QCOMPARE(put(0, 100).status, 409);
    QCOMPARE(put(101, 150).status, 409);
    QCOMPARE(m_client.Unpack(id, m_token).status, 409);
    QCOMPARE(m_client.Put(id, 100, package, m_token).status, 400);
    // What a kill has left of a chunk counts, wherever it was cut.
    m_farm.reset();
    QFile file(m_folder->filePath(QStringLiteral("uploads/") + id));
    QVERIFY(file.open(QIODevice::Append) && file.write(package.mid(100, 7)) == 7);
    file.close();
    StartFarm();
    const Reply again = m_client.BeginUpload(package, m_token);
    QCOMPARE(again.Data("id").toString(), id);
    QCOMPARE(again.Data("offset").toInt(), 107);
    QCOMPARE(put(107, package.size()).status, 200);
    const Reply unpacked = m_client.Unpack(id, m_token);
    QCOMPARE(unpacked.status, 200);
    QCOMPARE(unpacked.Data("files")[1][QLatin1String("path")].toString(), QStringLiteral("maps/leaf.txt"));
    QCOMPARE(unpacked.Data("files")[1][QLatin1String("checksum")].toString(), Sha256("a leaf"));
    QCOMPARE(m_client.Unpack(id, m_token).body, unpacked.body);
    QVERIFY(m_client.BeginUpload(package, m_token).Data("unpacked").toBool());
    const QString other = m_client.BeginUpload("other", m_token).Data("id").toString();
    m_client.Put(other, 0, "oth", m_token);
    m_farm.reset();
    m_data->database.Write([](SQLite::Database& connection) {
        connection.exec("UPDATE uploads SET touched_at = touched_at - 7 * 86400");
    });
    StartFarm();
    QCOMPARE(Get(QStringLiteral("/uploads/") + other).status, 404);
    QCOMPARE(FilesIn(Path("uploads")), 0);
    QCOMPARE(FilesIn(Path("contents")), 2);
}

void TransferTest::WhatOthersBroughtHelpsNobody()
{
    m_data->accounts.Add(
        {QStringLiteral("bob"), QStringLiteral("bob@x"), QStringLiteral("b"), false, 1'000'000, 0});
    StartFarm();
    const QByteArray package = Package(plainFiles);
    const QString annsUpload = m_client.BeginUpload(package, m_token).Data("id").toString();
    QCOMPARE(m_client.Deliver(package, m_token).status, 200);
    const QByteArray question
        = Json({{QStringLiteral("checksums"), QJsonArray {Sha256("a leaf"), Sha256("none")}}});
    const auto known = [&] {
        return m_client.Send("POST", QStringLiteral("/contents/known"), question, m_token)
            .Data("known")
            .toArray();
    };
    QCOMPARE(known(), QJsonArray {Sha256("a leaf")});
    m_token = m_client.SignIn("bob", "b");
    QCOMPARE(known(), QJsonArray());
    QCOMPARE(Get(QStringLiteral("/uploads/") + annsUpload).status, 404);
    QCOMPARE(m_client.BeginUpload(package, m_token).Data("offset").toInt(-1), 0);
    QCOMPARE(Submit(SubmissionOf(plainFiles)).status, 409);
}

void TransferTest::AQuotaHolds()
{
    StartFarm("{}", smallQuota);
    const Reply tooLarge = m_client.BeginUpload(QByteArray(smallQuota + 1, 'x'), m_token);
    QCOMPARE(tooLarge.status, 507);
    QCOMPARE(tooLarge.Error(), QStringLiteral("quota_exceeded"));
    QCOMPARE(m_client.Deliver(Package({{"a", QByteArray(60'000, 'a')}}), m_token).status, 200);
    QCOMPARE(m_client.Deliver(Package({{"b", QByteArray(60'000, 'b')}}), m_token).status, 507);
    QCOMPARE(FilesIn(Path("contents")), 1);
    // What is there already takes no more room.
    QCOMPARE(m_client.Deliver(Package({{"c", QByteArray(60'000, 'a')}, {"d", "d"}}), m_token).status, 200);
    QCOMPARE(m_client.BeginUpload(QByteArray(39'000, 'x'), m_token).status, 200);
    QCOMPARE(m_client.BeginUpload(QByteArray(39'000, 'y'), m_token).status, 507);
}

void TransferTest::ASubmissionMakesOneJob()
{
    const std::int64_t project
        = m_data->accounts.AddProject(m_data->account, {QStringLiteral("P"), QStringLiteral("p")});
    QVERIFY(project > 0);
    StartFarm();
    QJsonObject body = SubmissionOf(plainFiles);
    body.insert(QStringLiteral("pool"), QStringLiteral("p"));
    QCOMPARE(Submit(body).status, 409);
    const QString id = Rendered(plainFiles, body);
    QCOMPARE(Submit(body).Data("job_id").toString(), id);
    QCOMPARE(Submit(body).Data("job_increasement").toString(), QStringLiteral("1"));
    QCOMPARE(Get(QStringLiteral("/jobs?conditions=%7B%22pool_id%22:%22p%22%7D")).Data("total").toInt(), 1);
    const QString leaf = m_folder->filePath(QStringLiteral("jobs/%1/scene/maps/leaf.txt").arg(id));
    QCOMPARE(ReadFile(leaf), QByteArray("a leaf"));
    // What a renderer does to its scene does not reach the contents.
    QVERIFY(WriteFile(leaf, "a lens"));
    m_data->database.Write(
        [](SQLite::Database& connection) { connection.exec("UPDATE accounts SET balance = 0"); });
    body.insert(QStringLiteral("submission"), QStringLiteral("second"));
    const QString second = Submit(body).Data("job_id").toString();
    QCOMPARE(Status(), int(JobStatus::Arrears));
    m_data->accounts.Credit(QStringLiteral("ann"), 1'000'000);
    m_client.Send("POST", QStringLiteral("/jobs/recover"),
        Json({{QStringLiteral("ids"), QJsonArray {second}}}), m_token);
    QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
    QCOMPARE(ReadFile(m_folder->filePath(QStringLiteral("jobs/%1/scene/maps/leaf.txt").arg(second))),
        QByteArray("a leaf"));
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
    const QByteArray sum = Sha256("a scene").toLatin1();
    const auto files = [&](const char* title, const QByteArray& path) {
        QTest::newRow(title) << "{\"scene\":\"scene.txt\",\"files\":[{\"path\":\"scene.txt\",\"checksum\":\""
                + sum + "\"},{\"path\":\"" + path + "\",\"checksum\":\"" + sum + "\"}]}";
    };
    files("climbing path", "../x");
    files("path twice", "scene.txt");
    files("file as folder", "scene.txt/x");
}

void TransferTest::BadSubmissionsAreRefused()
{
    QFETCH(QByteArray, change);
    if (!m_farm)
        StartFarm();
    QCOMPARE(m_client.Deliver(Package(plainFiles), m_token).status, 200);
    QJsonObject body = SubmissionOf(plainFiles);
    const QJsonObject changes = QJsonDocument::fromJson(change).object();
    for (auto member = changes.begin(); member != changes.end(); ++member)
        body.insert(member.key(), member.value());
    QCOMPARE(Submit(body).status, 400);
    QCOMPARE(m_data->jobs.List(m_data->account, {}, 1, 1).total, std::int64_t(0));
}

void TransferTest::FramesKeepTheirNumbers()
{
    StartFarm();
    QJsonObject body = SubmissionOf(plainFiles);
    body.insert(QStringLiteral("prerender"), true);
    body.insert(QStringLiteral("frames"),
        QJsonDocument::fromJson(R"([{"start":20,"end":21},{"start":2,"end":4},{"start":3,"end":5}])")
            .array());
    const QString id = Rendered(plainFiles, body);
    QCOMPARE(ReadFile(Path("jobs/log")), QByteArray("2 20 0.000000\n4 20 0.100000\n21 20 0.950000\n"));
    const Reply info = Get(QStringLiteral("/jobs/") + id);
    QCOMPARE(info.Data("jobDatas")[QLatin1String("jobFrames")],
        QJsonValue(QJsonDocument::fromJson(R"([{"start":2,"end":5},{"start":20,"end":21}])").array()));
    QCOMPARE(info.Data("jobDatas")[QLatin1String("jobPrerender")], QJsonValue(true));
    QCOMPARE(info.Data("jobDatas")[QLatin1String("jobProgress")], QJsonValue(100));
    for (int time = 1; time <= 2; ++time) {
        m_client.Send("POST", QStringLiteral("/jobs/full-render"),
            Json({{QStringLiteral("ids"), QJsonArray {id}}}), m_token);
        QTRY_COMPARE_WITH_TIMEOUT(Status(), int(JobStatus::Finished), patienceMs);
    }
    QStringList names;
    const QJsonArray list = Get(QStringLiteral("/jobs/%1/files").arg(id)).Data("list").toArray();
    for (const QJsonValue& file : list)
        names.append(file[QLatin1String("name")].toString().mid(8, 2));
    QCOMPARE(names.join(QLatin1Char(' ')), QStringLiteral("02 03 04 05 20 21"));
    QCOMPARE(ReadFile(Path("jobs/log")).count('\n'), 6);
    QCOMPARE(list.at(0)[QLatin1String("size")].toInt(), 7);
    QCOMPARE(list.at(0)[QLatin1String("checksum")].toString(), Sha256("a scene"));
}

void TransferTest::FilesAreSentInParts_data()
{
    QTest::addColumn<QByteArray>("range");
    QTest::addColumn<QByteArray>("match");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char* range, const char* match, int status, const char* bytes,
                         const char* name = "frame_0001.txt") {
        QTest::addRow("%s %s %s", range, match, name)
            << QByteArray(range) << QByteArray(match) << QByteArray(name) << status << QByteArray(bytes);
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
    QFETCH(QByteArray, name);
    QFETCH(int, status);
    if (!m_farm)
        StartFarm();
    const QString id = Rendered(plainFiles, SubmissionOf(plainFiles));
    const QByteArray tag = '"' + Sha256("a scene").toLatin1() + '"';
    FarmClient::Headers headers;
    if (!range.isEmpty())
        headers.append({"Range", range});
    if (!match.isEmpty())
        headers.append({"If-Match",
            match == "right"       ? tag
                : match == "wrong" ? "\"" + QByteArray(64, '0') + "\""
                                   : match});
    const Reply reply = Get(QStringLiteral("/jobs/%1/files/").arg(id) + QString::fromLatin1(name), headers);
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
    StartFarm(ScriptedTypes(QStringLiteral("[ -e ../../once ] && exit 1; : > ../../once; "
                                           "head -c 50000000 /dev/zero > {output}")));
    const QString id = Rendered(plainFiles, SubmissionOf(plainFiles));
    QTcpSocket socket;
    socket.setReadBufferSize(mebibyte);
    const QUrl url(m_farm->Url());
    socket.connectToHost(url.host(), quint16(url.port()));
    QVERIFY(socket.waitForConnected());
    socket.write("GET /api/v1/jobs/" + id.toLatin1()
        + "/files/frame_0001.txt HTTP/1.1\r\nAuthorization: Bearer " + m_token.toLatin1() + "\r\n\r\n");
    QVERIFY(socket.waitForReadyRead());
    m_client.Send(
        "POST", QStringLiteral("/jobs/restart"), Json({{QStringLiteral("ids"), QJsonArray {id}}}), m_token);
    QTRY_VERIFY_WITH_TIMEOUT(
        !QFile::exists(m_folder->filePath(QStringLiteral("jobs/%1/frame_0001.txt").arg(id))), patienceMs);
    QCOMPARE(Get(QStringLiteral("/jobs/%1/files").arg(id)).Data("list").toArray(), QJsonArray());
    qint64 got = 0;
    while (socket.bytesAvailable() > 0 || socket.waitForReadyRead(10000))
        got += socket.readAll().size();
    QVERIFY(got > 50'000'000);
}

void TransferTest::PovRayFindsWhatBelongsToAScene_data()
{
    QTest::addColumn<QByteArray>("addition");
    QTest::addColumn<QString>("middle");
    QTest::newRow("nothing but the scene")
        << QByteArray("sphere { 0, 1 pigment { rgb <0, 0, 1> } }") << QStringLiteral("blue");
    QTest::newRow("include with an image map")
        << QByteArray("#include \"../parts/ball.inc\"") << QStringLiteral("red");
    QTest::newRow("shipped include") << QByteArray(
        "#include \"colors.inc\"\nsphere { 0, 1 pigment { Blue } }")
                                     << QStringLiteral("blue");
    for (const char* outside : {"/etc/passwd", "../../../../types.json", "../../../../farm.sqlite"})
        QTest::newRow(outside) << "#fopen F \"" + QByteArray(outside) + "\" read\n" << QString();
    QTest::newRow("writing") << QByteArray("#fopen F \"../parts/ball.inc\" write\n") << QString();
}

void TransferTest::PovRayFindsWhatBelongsToAScene()
{
    if (QStandardPaths::findExecutable(QStringLiteral("povray")).isEmpty())
        QSKIP("POV-Ray is not installed");
    QFETCH(QByteArray, addition);
    QFETCH(QString, middle);
    if (middle.isEmpty() && !Confinement::IsSupported())
        QSKIP("this kernel cannot confine a renderer");
    QImage map(8, 8, QImage::Format_RGB32);
    map.fill(Qt::red);
    QBuffer png;
    map.save(&png, "PNG");
    const SceneContents files {
        {"sh\xc3\xb6ts \"1\"/ball +I.pov",
            "#version 3.7;\nglobal_settings { assumed_gamma 1 ambient_light rgb 3 }\n"
            "camera { location <0, 0, -2> look_at 0 }\n#default { finish { ambient 1 } }\n"
                + addition},
        {"parts/ball.inc", "sphere { 0, 1 pigment { image_map { png \"maps/red.png\" } } }"},
        {"maps/red.png", png.data()}};
    if (!m_farm)
        StartFarm(ReadFile(QStringLiteral(FARM_JOB_TYPES)));
    const QString id = Rendered(files, SubmissionOf(files, QTest::currentDataTag()));
    QVERIFY(!id.isEmpty());
    QCOMPARE(Status(), int(middle.isEmpty() ? JobStatus::Failed : JobStatus::Finished));
    if (middle.isEmpty())
        return;
    const Reply picture = Get(QStringLiteral("/jobs/%1/files/frame_0001.png").arg(id));
    const QImage image = QImage::fromData(picture.bytes);
    QCOMPARE(image.size(), QSize(48, 36));
    const QColor color = image.pixelColor(24, 18);
    QVERIFY2(
        middle == QLatin1String("red") ? color.red() > color.blue() + 50 : color.blue() > color.red() + 50,
        qPrintable(color.name()));
}

QTEST_GUILESS_MAIN(TransferTest)
#include "tst_farm_transfer.moc"
