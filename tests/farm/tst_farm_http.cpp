#include "farm/base/local_time.h"
#include "tests/farm/farm_at_work.h"

#include <QtTest>

using namespace farm;

class HttpTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_farm.settings.limits = {{1000, 100}, {1000, 100}, {1000, 100}, {1000, 100}};
        m_farm.data.accounts.AddProject(m_farm.data.account, {"Titles"_s, "p"_s});
        m_farm.data.accounts.Add({"bob"_s, "bob@example.org"_s, "b"_s, true, 1'280'500'000, 300'000'000});
        m_id = m_farm.Add(1);
        m_farm.Start();
    }

    void init() { m_token = m_farm.SignIn("ann", "secret"); }

    void SignInGivesASession()
    {
        QCOMPARE(Try(m_farm, "ann", "x").status, 401);
        QCOMPARE(Try(m_farm, "ann", "x").Error(), "unauthorized"_s);
        const Reply right = Try(m_farm, "ann@example.org", "secret");
        QCOMPARE(right.status, 200);
        QCOMPARE(right.body["loginname"_s].toString(), "ann"_s);
        QCOMPARE(right.body["username"_s].toString(), "ann"_s);
        QCOMPARE(right.Data("expiresIn").toInt(), 7 * 24 * 3600);
        QVERIFY(m_token.size() >= 43 && m_token != right.Data("token").toString());
        QCOMPARE(m_farm.Get("/account").status, 200);
        const auto signOut = [&] { return m_farm.Send("DELETE", "/session"_s, {}, m_token).status; };
        QCOMPARE(signOut(), 200);
        QCOMPARE(m_farm.Get("/account").status, 401);
        QCOMPARE(signOut(), 200);
    }

    void ARequestNeedsASession()
    {
        for (const char* request : {"GET /account", "GET /projects", "GET /jobs", "POST /jobs/search",
                 "POST /jobs/stop", "POST /jobs/recover", "POST /jobs/restart", "POST /jobs/delete",
                 "POST /jobs/full-render", "GET /jobs/x", "GET /jobs/x/files", "GET /jobs/x/files/x",
                 "POST /jobs", "POST /contents/known", "POST /uploads", "GET /uploads/x",
                 "PUT /uploads/x?offset=0", "POST /uploads/x/unpack"}) {
            const QList<QByteArray> words = QByteArray(request).split(' ');
            const auto status = [&](const QString& by) {
                return m_farm
                    .Send(words.at(0), QString::fromLatin1(words.at(1)), R"({"ids":[],"checksums":[]})", by)
                    .status;
            };
            QVERIFY2(status({}) == 401, request);
            QVERIFY2(status("no-such-token"_s) == 401, request);
            QVERIFY2(status(m_token) != 401, request);
        }
    }

    void ShowsTheAccountAndItsProjects()
    {
        const Reply ann = m_farm.Get("/account");
        QCOMPARE(ann.Data("isBindToVso"), QJsonValue(false));
        QCOMPARE(ann.Data("userInfo"), QJsonValue(Json(R"({"user_balance":10})")));
        QCOMPARE(
            m_farm.Get("/projects").body, Json(R"({"data":[{"project_name":"Titles","project_pool":"p"}]})"));
        m_farm.SignIn("bob", "b");
        const Reply bob = m_farm.Get("/account");
        QCOMPARE(bob.Data("isBindToVso"), QJsonValue(true));
        QCOMPARE(bob.Data("userInfo"),
            QJsonValue(
                Json(R"({"username":"bob","user_rmb_balance":"1280.50","user_vso_balance":"300.00"})")));
        QCOMPARE(m_farm.Get("/projects").body, Json(R"({"data":[]})"));
        QCOMPARE(m_farm.Get("/health").body["name"_s].toString(), "quillstar-farmd"_s);
    }

    void ListsJobsThatMeetTheConditions()
    {
        const QByteArray query = R"({"job_name":"JO","status":"0"})";
        const Reply listed
            = m_farm.Get("/jobs?conditions=%1", {QString::fromLatin1(query.toPercentEncoding())});
        const QByteArray expected
            = R"({"data":{"total":1,"list":[{"job_increasement":"1","job_id":"ID","job_type":"povray","job_name":"job",
                "job_submit_time":"TIME","job_progress":0,"job_status":0,"job_cost":"0.00","job_cost_unit":"RMB"}]}})";
        QCOMPARE(listed.body,
            Json(
                QByteArray(expected).replace("ID", m_id.toLatin1()).replace("TIME", TimeText(0).toLatin1())));
        // More ids than a URL can hold.
        const QJsonObject conditions {
            {"job_guid"_s, QString("0123456789abcdef01234567,"_s.repeated(2000) + m_id)}};
        const Reply found = m_farm.Post(
            "/jobs/search", {{"page"_s, 1}, {"pageSize"_s, "5"_s}, {"conditions"_s, conditions}});
        QCOMPARE(found.body, listed.body);
        QCOMPARE(m_farm.Get("/jobs?page=2").Data("list").toArray().size(), 0);
        for (int job = 1; job <= 18; ++job)
            m_farm.Add(1);
        QCOMPARE(m_farm.Get("/jobs").Data("list").toArray().size(), 18);
        QCOMPARE(m_farm.Get("/jobs?page=-5&pageSize=-1").Data("list").toArray().size(), 1);
    }

    void RefusesBadRequests_data()
    {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        const auto row = [](const char* name, const char* method, const QByteArray& path,
                             const QByteArray& body, int status) {
            QTest::newRow(name) << QByteArray(method) << QString::fromLatin1(path) << body << status;
        };
        const auto post = [&](const char* name, const char* path, const QByteArray& body) {
            row(name, "POST", path, body, 400);
        };
        row("unknown path", "GET", "/nothing", {}, 404);
        row("path upwards", "GET", "/../../farm.sqlite", {}, 404);
        row("unknown method", "PUT", "/session", "{}", 404);
        post("not an object", "/session", "[1]");
        post("no body", "/session", {});
        post("no password", "/session", R"({"username":"ann"})");
        post("password of another type", "/session", R"({"username":"ann","password":{}})");
        post(
            "name too long", "/session", "{\"username\":\"" + QByteArray(257, 'a') + "\",\"password\":\"\"}");
        post("bad UTF-8", "/session", "{\"username\":\"\xff\",\"password\":\"\"}");
        post("deep", "/session", QByteArray(1000000, '['));
        row("too large", "POST", "/session", QByteArray(1024 * 1024 + 1, ' '), 413);
        row("page not a number", "GET", "/jobs?page=one", {}, 400);
        row("page beyond numbers", "GET", "/jobs?page=99999999999999999999", {}, 400);
        row("page huge", "GET", "/jobs?page=9223372036854775807&pageSize=9223372036854775807", {}, 200);
        row("conditions not JSON", "GET", "/jobs?conditions=rubbish", {}, 400);
        row("conditions bad UTF-8", "GET", "/jobs?conditions=%7B%22job_name%22%3A%22%FF%22%7D", {}, 400);
        post("conditions an array", "/jobs/search", R"({"conditions":[]})");
        row("no such job", "GET", "/jobs/abc", {}, 404);
        row("endless id", "GET", "/jobs/" + QByteArray(8000, 'a'), {}, 404);
        post("ids missing", "/jobs/stop", "{}");
        post("ids not texts", "/jobs/stop", R"({"ids":[1]})");
        post("too many ids", "/jobs/stop", "{\"ids\":[" + QByteArray(R"("a",)").repeated(1000) + "\"a\"]}");
        row("unknown action", "POST", "/jobs/explode", R"({"ids":[]})", 404);
        post("checksums not valid", "/contents/known", R"({"checksums":["abc"]})");
        post("checksum not valid", "/uploads", R"({"checksum":"abc","size":1})");
        const QByteArray upload = "{\"checksum\":\"" + QByteArray(64, 'a') + "\",\"size\":";
        for (const char* size : {"0", "1.5", "\"1\"", "9007199254740992"})
            post(size, "/uploads", upload + size + '}');
        row("package too large", "POST", "/uploads", upload + "8589934593}", 413);
        row("no offset", "PUT", "/uploads/x", "a", 400);
        row("negative offset", "PUT", "/uploads/x?offset=-1", "a", 400);
        row("no such upload", "PUT", "/uploads/x?offset=0", "a", 404);
    }

    void RefusesBadRequests()
    {
        QFETCH(QByteArray, method);
        QFETCH(QString, path);
        QFETCH(QByteArray, body);
        const Reply reply = m_farm.Send(method, path, body, m_token);
        QTEST(reply.status, "status");
        const QMap<int, const char*> words {
            {200, ""}, {400, "bad_request"}, {404, "not_found"}, {413, "too_large"}};
        QCOMPARE(reply.Error(), QLatin1String(words[reply.status]));
        QVERIFY(reply.status == 200 || !reply.body["message"_s].toString().isEmpty());
    }

    void SurvivesRubbishOnTheWire_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("answer");
        const QByteArray post = "POST /api/v1/session HTTP/1.1\r\nHost: x\r\n";
        const QByteArray refused = "HTTP/1.1 400";
        QTest::newRow("not HTTP") << QByteArray("\x16\x03\x01 hello\r\n\r\n") << refused;
        QTest::newRow("endless URL") << "GET /" + QByteArray(100000, 'a') + " HTTP/1.1\r\n\r\n"
                                     << QByteArray();
        QTest::newRow("endless header") << "GET / HTTP/1.1\r\nX: " + QByteArray(100000, 'a') + "\r\n\r\n"
                                        << QByteArray();
        for (const char* header :
            {"Transfer-Encoding: chunked", "Content-Encoding: gzip\r\nContent-Length: 2", "X: no length"})
            QTest::newRow(header) << post + header + "\r\n\r\n" << refused;
        QTest::newRow("unknown method")
            << QByteArray("PATCH / HTTP/1.1\r\nContent-Length: 2\r\n\r\n") << refused;
        QTest::newRow("range of a failure")
            << QByteArray("GET / HTTP/1.1\r\nRange: bytes=0-1\r\n\r\n") << QByteArray("HTTP/1.1 404");
        QTest::newRow("bad range") << QByteArray("GET / HTTP/1.1\r\nRange: bytes=2-1\r\n\r\n")
                                   << QByteArray("HTTP/1.1 416");
    }

    void SurvivesRubbishOnTheWire()
    {
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, answer);
        const auto socket = m_farm.SendRaw(request);
        // The whole answer; empty when the server has just closed the connection.
        QByteArray got;
        while (socket->waitForReadyRead(patienceMs))
            got += socket->readAll();
        QCOMPARE(socket->state(), QAbstractSocket::UnconnectedState);
        QVERIFY2(got.startsWith(answer) && (!got.isEmpty() || answer.isEmpty()), got.left(200).constData());
        QVERIFY2(got.isEmpty() || got.startsWith("HTTP/1.1 4"), got.left(200).constData());
        QCOMPARE(m_farm.Get("/health").status, 200);
    }

    void SlowsGuessingDown()
    {
        FarmAtWork farm;
        farm.settings.limits = {{6, 0.01}, {2, 0.01}, {2, 0.01}, {1, 0.01}};
        farm.data.accounts.Add({"bob"_s, "bob@x"_s, "b"_s, false, 1, 0});
        farm.Start();
        QCOMPARE(farm.Get("/uploads/x").status, 404);
        QCOMPARE(farm.Get("/uploads/x").status, 429);
        for (int status : {200, 200, 429})
            QCOMPARE(farm.Get("/account").status, status);
        QCOMPARE(Try(farm, "Ann", "x").status, 401);
        QCOMPARE(Try(farm, "Ann", "x").status, 401);
        const Reply slowed = Try(farm, "ann", "secret");
        QCOMPARE(slowed.status, 429);
        QCOMPARE(slowed.Error(), "too_many_requests"_s);
        QVERIFY(slowed.retryAfter.toInt() > 0);
        for (int status : {200, 200, 429})
            QCOMPARE(Try(farm, "bob", "b").status, status);
    }

private:
    static Reply Try(FarmClient& client, const char* name, const char* password)
    {
        return client.Post(
            "/session", {{"username"_s, QLatin1String(name)}, {"password"_s, QLatin1String(password)}});
    }

    FarmAtWork m_farm;
    QString m_token;
    QString m_id;
};

QTEST_GUILESS_MAIN(HttpTest)
#include "tst_farm_http.moc"
