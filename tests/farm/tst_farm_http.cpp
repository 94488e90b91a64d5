#include "farm/farm.h"
#include "tests/farm/farm_client.h"
#include "tests/farm/farm_fixture.h"

#include <QtTest>

using namespace farm;

class HttpTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_farm = Start(m_folder.path(), {{1000, 100}, {1000, 100}, {1000, 100}});
        m_client.SetUrl(m_farm->Url());
    }

    void SignInGivesASession()
    {
        QCOMPARE(Try("demo", "x").status, 401);
        QCOMPARE(Try("demo", "x").Error(), QStringLiteral("unauthorized"));
        const Reply right = Try("demo@quillstar.example", "demo");
        QCOMPARE(right.status, 200);
        QCOMPARE(right.body[QLatin1String("loginname")].toString(), QStringLiteral("demo"));
        QCOMPARE(right.body[QLatin1String("username")].toString(), QStringLiteral("demo"));
        const QString token = SignIn("demo");
        QVERIFY(token.size() >= 43 && token != right.Data("token").toString());
        QCOMPARE(m_client.Get("/account").status, 200);
        const auto signOut
            = [&] { return m_client.Send("DELETE", QStringLiteral("/session"), {}, token).status; };
        QCOMPARE(signOut(), 200);
        QCOMPARE(m_client.Get("/account").status, 401);
        QCOMPARE(signOut(), 200);
    }

    void ARequestNeedsASession()
    {
        const QString token = SignIn("demo");
        for (const char* request :
            {"GET /account", "GET /projects", "GET /jobs", "POST /jobs/search", "POST /jobs/stop",
                "POST /jobs/recover", "POST /jobs/restart", "POST /jobs/delete", "POST /jobs/full-render"}) {
            const QList<QByteArray> words = QByteArray(request).split(' ');
            const auto status = [&](const QString& by) {
                return m_client.Send(words.at(0), QString::fromLatin1(words.at(1)), R"({"ids":[]})", by)
                    .status;
            };
            QVERIFY2(status({}) == 401, request);
            QVERIFY2(status(QStringLiteral("no-such-token")) == 401, request);
            QVERIFY2(status(token) == 200, request);
        }
    }

    void BothKindsOfAccountShowTheirBalances()
    {
        SignIn("demo");
        const Reply demo = m_client.Get("/account");
        QCOMPARE(demo.Data("isBindToVso"), QJsonValue(false));
        QCOMPARE(demo.Data("userInfo")[QLatin1String("user_balance")], QJsonValue(65.98));
        SignIn("studio");
        const Reply studio = m_client.Get("/account");
        const QJsonValue info = studio.Data("userInfo");
        QCOMPARE(studio.Data("isBindToVso"), QJsonValue(true));
        QCOMPARE(info[QLatin1String("username")].toString(), QStringLiteral("studio"));
        QCOMPARE(info[QLatin1String("user_rmb_balance")].toString(), QStringLiteral("1280.50"));
        QCOMPARE(info[QLatin1String("user_vso_balance")].toString(), QStringLiteral("300.00"));
    }

    void DemoJobsFillThreePages()
    {
        SignIn("demo");
        const Reply demo = m_client.Get("/jobs?pageSize=54");
        const QJsonArray list = demo.Data("list").toArray();
        QCOMPARE(list.size(), 54);
        QVERIFY(demo.Data("total").toInt() >= 58);
        QSet<int> statuses;
        QSet<QString> names;
        for (const QJsonValue& job : list) {
            statuses.insert(job[QLatin1String("job_status")].toInt());
            names.insert(job[QLatin1String("job_name")].toString());
        }
        QVERIFY(statuses.contains({0, 1, 2, 3, 4, 7}));
        QVERIFY(!statuses.contains(5));
        QVERIFY(names.contains(QStringLiteral("<b>title</b>_v2")));
        SignIn("studio");
        QVERIFY(m_client.Get("/jobs").Data("total").toInt(18) < 18);
    }

    void ConditionsReachTheList()
    {
        SignIn("demo");
        const QByteArray conditions = R"({"job_name":"<b>title","status":"4"})";
        const Reply listed
            = m_client.Get("/jobs?conditions=%1", {QString::fromLatin1(conditions.toPercentEncoding())});
        QCOMPARE(listed.Data("total").toInt(), 1);
        const QJsonObject job = listed.Data("list")[0].toObject();
        QCOMPARE(job.keys().size(), 9);
        QCOMPARE(job[QLatin1String("job_increasement")], QJsonValue(QStringLiteral("52")));
        QCOMPARE(job[QLatin1String("job_progress")], QJsonValue(100));

        // More ids than a URL can hold.
        const QString ids = QStringLiteral("0123456789abcdef01234567,").repeated(2000)
            + job[QLatin1String("job_id")].toString();
        const Reply found = m_client.Post("/jobs/search",
            {{QStringLiteral("page"), 1}, {QStringLiteral("pageSize"), QStringLiteral("5")},
                {QStringLiteral("conditions"), QJsonObject {{QStringLiteral("job_guid"), ids}}}});
        QCOMPARE(found.body[QLatin1String("data")], listed.body[QLatin1String("data")]);
    }

    void BadRequestsAreRefused_data()
    {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        const auto row = [](const char* name, const char* method, const QByteArray& path,
                             const QByteArray& body, int status) {
            QTest::newRow(name) << QByteArray(method) << QString::fromLatin1(path) << body << status;
        };
        row("unknown path", "GET", "/nothing", {}, 404);
        row("path upwards", "GET", "/../../farm.sqlite", {}, 404);
        row("unknown method", "PUT", "/session", "{}", 404);
        row("no JSON", "POST", "/session", "{\"username\":", 400);
        row("no object", "POST", "/session", "[1]", 400);
        row("no body", "POST", "/session", {}, 400);
        row("no password", "POST", "/session", R"({"username":"demo"})", 400);
        row("password of another type", "POST", "/session", R"({"username":"demo","password":{}})", 400);
        row("name too long", "POST", "/session",
            "{\"username\":\"" + QByteArray(300, 'a') + "\",\"password\":\"\"}", 400);
        row("bad UTF-8", "POST", "/session", "{\"username\":\"\xff\",\"password\":\"\"}", 400);
        row("deep", "POST", "/session", QByteArray(1000000, '['), 400);
        row("too large", "POST", "/session", QByteArray(1024 * 1024 + 1, ' '), 413);
        row("page no number", "GET", "/jobs?page=one", {}, 400);
        row("page beyond numbers", "GET", "/jobs?page=99999999999999999999", {}, 400);
        row("page huge", "GET", "/jobs?page=9223372036854775807&pageSize=9223372036854775807", {}, 200);
        row("page negative", "GET", "/jobs?page=-5&pageSize=-1", {}, 200);
        row("conditions no JSON", "GET", "/jobs?conditions=rubbish", {}, 400);
        row("conditions bad UTF-8", "GET", "/jobs?conditions=%7B%22job_name%22%3A%22%FF%22%7D", {}, 400);
        row("no such job", "GET", "/jobs/abc", {}, 404);
        row("job of a path upwards", "GET", "/jobs/%2E%2E", {}, 404);
        row("job with an endless id", "GET", "/jobs/" + QByteArray(8000, 'a'), {}, 404);
        row("ids missing", "POST", "/jobs/stop", "{}", 400);
        row("ids no list", "POST", "/jobs/stop", R"({"ids":"a"})", 400);
        row("ids no texts", "POST", "/jobs/stop", R"({"ids":[1]})", 400);
        row("too many ids", "POST", "/jobs/stop",
            "{\"ids\":[" + QByteArray(R"("a",)").repeated(1000) + "\"a\"]}", 400);
        row("unknown action", "POST", "/jobs/explode", R"({"ids":[]})", 404);
        row("conditions an array", "POST", "/jobs/search", R"({"conditions":[]})", 400);
    }

    void BadRequestsAreRefused()
    {
        QFETCH(QByteArray, method);
        QFETCH(QString, path);
        QFETCH(QByteArray, body);
        const Reply reply = m_client.Send(method, path, body, SignIn("demo"));
        QTEST(reply.status, "status");
        const QMap<int, const char*> words {
            {200, ""}, {400, "bad_request"}, {404, "not_found"}, {413, "too_large"}};
        QCOMPARE(reply.Error(), QLatin1String(words[reply.status]));
        QVERIFY(reply.status == 200 || !reply.body[QLatin1String("message")].toString().isEmpty());
    }

    void RubbishOnTheWireIsSurvived_data()
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

    void RubbishOnTheWireIsSurvived()
    {
        QFETCH(QByteArray, request);
        const auto socket = m_client.SendRaw(request);
        while (socket->waitForReadyRead(10000)) { }
        // The whole answer; empty when the connection is just closed.
        const QByteArray answer = socket->readAll();
        QCOMPARE(socket->state(), QAbstractSocket::UnconnectedState);
        QVERIFY2(answer.isEmpty() || answer.startsWith("HTTP/1.1 4"), answer.left(200).constData());
        QCOMPARE(m_client.Get("/health").status, 200);
    }

    void GuessingIsSlowedDown()
    {
        QTemporaryDir folder;
        const auto farm = Start(folder.path(), {{5, 0.01}, {2, 0.01}, {2, 0.01}});
        m_client.SetUrl(farm->Url());
        QVERIFY(!SignIn("demo").isEmpty());
        QCOMPARE(Try("Demo", "x").status, 401);
        QCOMPARE(Try("Demo", "x").status, 401);
        const Reply slowed = Try("demo", "demo");
        QCOMPARE(slowed.status, 429);
        QVERIFY(slowed.retryAfter.toInt() > 0);
        for (int status : {200, 200, 429})
            QCOMPARE(m_client.Get("/account").status, status);
        QVERIFY(!SignIn("studio").isEmpty());
        QVERIFY(SignIn("studio").isEmpty());
        m_client.SetUrl(m_farm->Url());
    }

private:
    std::unique_ptr<Farm> Start(const QString& folder, const RequestLimits& limits = {})
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

    Reply Try(const char* name, const char* password)
    {
        return m_client.Post("/session",
            {{QStringLiteral("username"), QLatin1String(name)},
                {QStringLiteral("password"), QLatin1String(password)}});
    }
    QString SignIn(const char* name) { return m_client.SignIn(name, name); }

    QTemporaryDir m_folder;
    std::unique_ptr<Farm> m_farm;
    FarmClient m_client;
};

QTEST_GUILESS_MAIN(HttpTest)
#include "tst_farm_http.moc"
