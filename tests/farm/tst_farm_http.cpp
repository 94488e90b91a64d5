#include "farm.h"
#include "farm_client.h"
#include "farm_fixture.h"

#include <QTcpSocket>
#include <QtTest>
#include <QUrlQuery>

using namespace farm;

class HttpTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void SignInGivesASession();
    void ARequestNeedsASession_data();
    void ARequestNeedsASession();
    void BothKindsOfAccountShowTheirBalances();
    void DemoJobsFillThreePages();
    void ConditionsReachTheList();
    void BadRequestsAreRefused_data();
    void BadRequestsAreRefused();
    void RubbishOnTheWireIsSurvived_data();
    void RubbishOnTheWireIsSurvived();
    void GuessingIsSlowedDown();

private:
    std::unique_ptr<Farm> Start(const QString& folder, const RequestLimits& limits = {});
    Reply Send(const QByteArray& method, const QString& path, const QByteArray& body = {},
        const QString& token = QString())
    {
        return m_client.Send(method, path, body, token);
    }
    QString SignIn(const char* name) { return m_client.SignIn(name, name); }
    QByteArray SendRaw(const QByteArray& request);

    QTemporaryDir m_folder;
    std::unique_ptr<Farm> m_farm;
    FarmClient m_client;
};

std::unique_ptr<Farm> HttpTest::Start(const QString& folder, const RequestLimits& limits)
{
    FarmSettings settings;
    settings.dataFolder = folder;
    settings.sceneFolder = folder;
    settings.jobTypesFile = QDir(folder).filePath(QStringLiteral("types.json"));
    settings.limits = limits;
    // No type that a demo job has: nothing is rendered here.
    WriteFile(settings.jobTypesFile, "{}");
    return std::make_unique<Farm>(settings);
}

void HttpTest::initTestCase()
{
    m_farm = Start(m_folder.path(), {{1000, 100}, {1000, 100}, {1000, 100}});
    m_client.SetUrl(m_farm->Url());
}

// The whole answer to what is sent; empty when the connection is just closed.
QByteArray HttpTest::SendRaw(const QByteArray& request)
{
    QTcpSocket socket;
    const QUrl url(m_farm->Url());
    socket.connectToHost(url.host(), static_cast<quint16>(url.port()));
    if (!socket.waitForConnected())
        return "not connected";
    socket.write(request);
    while (socket.waitForReadyRead(10000)) { }
    return socket.readAll();
}

void HttpTest::SignInGivesASession()
{
    const Reply wrong = Send("POST", QStringLiteral("/session"), R"({"username":"demo","password":"x"})");
    QCOMPARE(wrong.status, 401);
    QCOMPARE(wrong.body[QLatin1String("error")].toString(), QStringLiteral("unauthorized"));
    const Reply right = Send(
        "POST", QStringLiteral("/session"), R"({"username":"demo@quillstar.example","password":"demo"})");
    QCOMPARE(right.status, 200);
    QCOMPARE(right.body[QLatin1String("loginname")].toString(), QStringLiteral("demo"));
    QCOMPARE(right.body[QLatin1String("username")].toString(), QStringLiteral("demo"));
    const QString token = right.body[QLatin1String("data")][QLatin1String("token")].toString();
    QVERIFY(token.size() >= 43);
    QCOMPARE(Send("GET", QStringLiteral("/account"), {}, token).status, 200);
    QCOMPARE(Send("DELETE", QStringLiteral("/session"), {}, token).status, 200);
    QCOMPARE(Send("GET", QStringLiteral("/account"), {}, token).status, 401);
    QCOMPARE(Send("DELETE", QStringLiteral("/session"), {}, token).status, 200);
}

void HttpTest::ARequestNeedsASession_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QString>("path");
    QTest::newRow("account") << QByteArray("GET") << QStringLiteral("/account");
    QTest::newRow("projects") << QByteArray("GET") << QStringLiteral("/projects");
    QTest::newRow("jobs") << QByteArray("GET") << QStringLiteral("/jobs");
    QTest::newRow("search") << QByteArray("POST") << QStringLiteral("/jobs/search");
    for (const char* action : {"stop", "recover", "restart", "delete", "full-render"})
        QTest::newRow(action) << QByteArray("POST") << QStringLiteral("/jobs/") + QLatin1String(action);
}

void HttpTest::ARequestNeedsASession()
{
    QFETCH(QByteArray, method);
    QFETCH(QString, path);
    const QByteArray body = R"({"ids":[]})";
    QCOMPARE(Send(method, path, body).status, 401);
    QCOMPARE(Send(method, path, body, QStringLiteral("no-such-token")).status, 401);
    QCOMPARE(Send(method, path, body, SignIn("demo")).status, 200);
}

void HttpTest::BothKindsOfAccountShowTheirBalances()
{
    const QJsonObject demo = Send("GET", QStringLiteral("/account"), {}, SignIn("demo")).body;
    QCOMPARE(demo[QLatin1String("data")][QLatin1String("isBindToVso")], QJsonValue(false));
    QCOMPARE(demo[QLatin1String("data")][QLatin1String("userInfo")][QLatin1String("user_balance")],
        QJsonValue(65.98));
    const QJsonObject studio = Send("GET", QStringLiteral("/account"), {}, SignIn("studio")).body;
    const QJsonValue info = studio[QLatin1String("data")][QLatin1String("userInfo")];
    QCOMPARE(studio[QLatin1String("data")][QLatin1String("isBindToVso")], QJsonValue(true));
    QCOMPARE(info[QLatin1String("username")].toString(), QStringLiteral("studio"));
    QCOMPARE(info[QLatin1String("user_rmb_balance")].toString(), QStringLiteral("1280.50"));
    QCOMPARE(info[QLatin1String("user_vso_balance")].toString(), QStringLiteral("300.00"));
}

void HttpTest::DemoJobsFillThreePages()
{
    const QString token = SignIn("demo");
    QSet<int> statuses;
    QSet<QString> names;
    for (int page = 1; page <= 3; ++page) {
        const QString path = QStringLiteral("/jobs?page=%1&pageSize=18").arg(page);
        const QJsonValue data = Send("GET", path, {}, token).body[QLatin1String("data")];
        QCOMPARE(data[QLatin1String("list")].toArray().size(), 18);
        QVERIFY(data[QLatin1String("total")].toInt() >= 58);
        const QJsonArray list = data[QLatin1String("list")].toArray();
        for (const QJsonValue& job : list) {
            statuses.insert(job[QLatin1String("job_status")].toInt());
            names.insert(job[QLatin1String("job_name")].toString());
        }
    }
    QVERIFY(statuses.contains({0, 1, 2, 3, 4, 7}));
    QVERIFY(!statuses.contains(5));
    QVERIFY(names.contains(QStringLiteral("<b>title</b>_v2")));
    const QJsonValue studio
        = Send("GET", QStringLiteral("/jobs"), {}, SignIn("studio")).body[QLatin1String("data")];
    QVERIFY(studio[QLatin1String("total")].toInt() < 18);
}

void HttpTest::ConditionsReachTheList()
{
    const QString token = SignIn("demo");
    const QByteArray conditions = R"({"job_name":"<b>title","status":"4"})";
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("conditions"),
        QString::fromLatin1(QUrl::toPercentEncoding(QString::fromUtf8(conditions))));
    const Reply listed
        = Send("GET", QStringLiteral("/jobs?") + query.toString(QUrl::FullyEncoded), {}, token);
    QCOMPARE(listed.body[QLatin1String("data")][QLatin1String("total")].toInt(), 1);
    const QJsonArray list = listed.body[QLatin1String("data")][QLatin1String("list")].toArray();
    const QJsonObject job = list.at(0).toObject();
    QCOMPARE(job.keys().size(), 9);
    QCOMPARE(job[QLatin1String("job_increasement")], QJsonValue(QStringLiteral("52")));
    QCOMPARE(job[QLatin1String("job_progress")], QJsonValue(100));

    // More ids than a URL can hold.
    QStringList ids = QVector<QString>(2000, QStringLiteral("0123456789abcdef01234567")).toList();
    ids.append(job[QLatin1String("job_id")].toString());
    const QJsonObject search {{QStringLiteral("page"), 1}, {QStringLiteral("pageSize"), QStringLiteral("5")},
        {QStringLiteral("conditions"),
            QJsonObject {{QStringLiteral("job_guid"), ids.join(QLatin1Char(','))}}}};
    const Reply found = Send("POST", QStringLiteral("/jobs/search"), QJsonDocument(search).toJson(), token);
    QCOMPARE(found.body[QLatin1String("data")], listed.body[QLatin1String("data")]);
}

void HttpTest::BadRequestsAreRefused_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("word");
    const auto row = [](const char* name, const char* method, const QByteArray& path, const QByteArray& body,
                         int status, const char* word) {
        QTest::newRow(name) << QByteArray(method) << QString::fromLatin1(path) << body << status
                            << QString::fromLatin1(word);
    };
    row("unknown path", "GET", "/nothing", {}, 404, "not_found");
    row("path upwards", "GET", "/../../farm.sqlite", {}, 404, "not_found");
    row("unknown method", "PUT", "/session", "{}", 404, "not_found");
    row("no JSON", "POST", "/session", "{\"username\":", 400, "bad_request");
    row("no object", "POST", "/session", "[1]", 400, "bad_request");
    row("no body", "POST", "/session", {}, 400, "bad_request");
    row("no password", "POST", "/session", R"({"username":"demo"})", 400, "bad_request");
    row("password of another type", "POST", "/session", R"({"username":"demo","password":{}})", 400,
        "bad_request");
    row("name too long", "POST", "/session",
        "{\"username\":\"" + QByteArray(300, 'a') + "\",\"password\":\"\"}", 400, "bad_request");
    row("bad UTF-8", "POST", "/session", "{\"username\":\"\xff\",\"password\":\"\"}", 400, "bad_request");
    row("deep", "POST", "/session", QByteArray(1000000, '['), 400, "bad_request");
    row("too large", "POST", "/session", QByteArray(1024 * 1024 + 1, ' '), 413, "too_large");
    row("page no number", "GET", "/jobs?page=one", {}, 400, "bad_request");
    row("page beyond numbers", "GET", "/jobs?page=99999999999999999999", {}, 400, "bad_request");
    row("page huge", "GET", "/jobs?page=9223372036854775807&pageSize=9223372036854775807", {}, 200, "");
    row("page negative", "GET", "/jobs?page=-5&pageSize=-1", {}, 200, "");
    row("conditions no JSON", "GET", "/jobs?conditions=rubbish", {}, 400, "bad_request");
    row("conditions bad UTF-8", "GET", "/jobs?conditions=%7B%22job_name%22%3A%22%FF%22%7D", {}, 400,
        "bad_request");
    row("no such job", "GET", "/jobs/abc", {}, 404, "not_found");
    row("job of a path upwards", "GET", "/jobs/%2E%2E", {}, 404, "not_found");
    row("job with an endless id", "GET", "/jobs/" + QByteArray(8000, 'a'), {}, 404, "not_found");
    row("ids missing", "POST", "/jobs/stop", "{}", 400, "bad_request");
    row("ids no list", "POST", "/jobs/stop", R"({"ids":"a"})", 400, "bad_request");
    row("ids no texts", "POST", "/jobs/stop", R"({"ids":[1]})", 400, "bad_request");
    row("too many ids", "POST", "/jobs/stop", "{\"ids\":[" + QByteArray(R"("a",)").repeated(1000) + "\"a\"]}",
        400, "bad_request");
    row("unknown action", "POST", "/jobs/explode", R"({"ids":[]})", 404, "not_found");
    row("conditions an array", "POST", "/jobs/search", R"({"conditions":[]})", 400, "bad_request");
}

void HttpTest::BadRequestsAreRefused()
{
    QFETCH(QByteArray, method);
    QFETCH(QString, path);
    QFETCH(QByteArray, body);
    const Reply reply = Send(method, path, body, SignIn("demo"));
    QTEST(reply.status, "status");
    QTEST(reply.body[QLatin1String("error")].toString(), "word");
    QVERIFY(reply.status == 200 || !reply.body[QLatin1String("message")].toString().isEmpty());
}

void HttpTest::RubbishOnTheWireIsSurvived_data()
{
    QTest::addColumn<QByteArray>("request");
    const QByteArray post = "POST /api/v1/session HTTP/1.1\r\nHost: x\r\n";
    QTest::newRow("no HTTP") << QByteArray("\x16\x03\x01 hello\r\n\r\n");
    QTest::newRow("endless URL") << "GET /" + QByteArray(100000, 'a') + " HTTP/1.1\r\n\r\n";
    QTest::newRow("endless header") << "GET / HTTP/1.1\r\nX: " + QByteArray(100000, 'a') + "\r\n\r\n";
    QTest::newRow("chunked body") << post + "Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n";
    QTest::newRow("packed body") << post + "Content-Encoding: gzip\r\nContent-Length: 2\r\n\r\n{}";
    QTest::newRow("no length") << post + "\r\n{}";
    QTest::newRow("negative length") << post + "Content-Length: -1\r\n\r\n{}";
}

void HttpTest::RubbishOnTheWireIsSurvived()
{
    QFETCH(QByteArray, request);
    const QByteArray answer = SendRaw(request);
    QVERIFY2(answer.isEmpty() || answer.startsWith("HTTP/1.1 4"), answer.left(200).constData());
    QCOMPARE(Send("GET", QStringLiteral("/health")).status, 200);
}

void HttpTest::GuessingIsSlowedDown()
{
    QTemporaryDir folder;
    const auto farm = Start(folder.path(), {{5, 0.01}, {2, 0.01}, {2, 0.01}});
    m_client.SetUrl(farm->Url());
    const QByteArray wrong = R"({"username":"Demo","password":"x"})";
    const QString token = SignIn("demo");
    QCOMPARE(Send("POST", QStringLiteral("/session"), wrong).status, 401);
    QCOMPARE(Send("POST", QStringLiteral("/session"), wrong).status, 401);
    const Reply slowed = Send("POST", QStringLiteral("/session"), R"({"username":"demo","password":"demo"})");
    QCOMPARE(slowed.status, 429);
    QVERIFY(slowed.retryAfter.toInt() > 0);
    QVERIFY(!SignIn("studio").isEmpty());
    QVERIFY(SignIn("studio").isEmpty());
    QCOMPARE(Send("GET", QStringLiteral("/account"), {}, token).status, 200);
    QCOMPARE(Send("GET", QStringLiteral("/account"), {}, token).status, 200);
    QCOMPARE(Send("GET", QStringLiteral("/account"), {}, token).status, 429);
    m_client.SetUrl(m_farm->Url());
}

QTEST_GUILESS_MAIN(HttpTest)
#include "tst_farm_http.moc"
