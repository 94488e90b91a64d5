#include "farm/accounts/account_admin.h"
#include "farm/base/local_time.h"
#include "farm/http/client_address.h"
#include "tests/farm/farm_at_work.h"
#include "tests/farm/package_fixture.h"

using namespace farm;

namespace {

QByteArray Upload()
{
    return R"({"checksum":")" + QByteArray(64, 'a') + R"(","size":)";
}

// A request and the status of its refusal; 200 is none.
const auto& Requests()
{
    static const std::tuple<const char*, QByteArray, QByteArray, int> rows[] = {
        {"unknown path", "GET /nothing", {}, 404},
        {"not an object", "POST /session", "[1]", 400},
        {"password of another type", "POST /session", R"({"username":"ann","password":{}})", 400},
        {"name too long", "POST /session", R"({"password":"","username":")" + QByteArray(257, 'a') + "\"}",
            400},
        {"bad UTF-8", "POST /session", "{\"username\":\"\xff\",\"password\":\"\"}", 400},
        {"key twice", "POST /session",
            R"({"a":[{"\u0061b":[],"c":"ab","ab":{}}],"username":"ann","password":"secret"})", 400},
        {"key twice in conditions", "GET /jobs?conditions=%7B%22a%22%3A%5B%5D%2C%22a%22%3A%7B%7D%7D", {},
            400},
        {"key in two objects",
            "GET /jobs?conditions=%7B%22a%22%3A%5B%7B%22a%22%3A%22a%22%7D%2C%7B%22a%22%3A1%7D%5D%7D", {},
            200},
        {"deep", "POST /session", QByteArray(1000000, '['), 400},
        {"too large", "POST /session", QByteArray(1024 * 1024 + 1, ' '), 413},
        {"page huge", "GET /jobs?page=9223372036854775807&pageSize=9223372036854775807", {}, 200},
        {"days huge", "GET /account/spending?days=9223372036854775807", {}, 200},
        {"since no number", "GET /jobs/x/frames?since=x", {}, 400},
        {"conditions bad UTF-8", "GET /jobs?conditions=%7B%22job_name%22%3A%22%FF%22%7D", {}, 400},
        {"endless id", "GET /jobs/" + QByteArray(8000, 'a'), {}, 404},
        {"ids not texts", "POST /jobs/stop", R"({"ids":[1]})", 400},
        {"too many ids", "POST /jobs/stop", R"({"ids":[)" + QByteArray(R"("a",)").repeated(1000) + R"("a"]})",
            400},
        {"checksums not valid", "POST /contents/known", R"({"checksums":["abc"]})", 400},
        {"half a byte", "POST /uploads", Upload() + "1.5}", 400},
        {"size beyond exact numbers", "POST /uploads", Upload() + "9007199254740992}", 400},
        {"largest package", "POST /uploads", Upload() + "8589934592}", 200},
        {"package too large", "POST /uploads", Upload() + "8589934593}", 413},
        {"negative offset", "PUT /uploads/x?offset=-1", "a", 400},
    };
    return rows;
}

QByteArray Post()
{
    return "POST /api/v1/session HTTP/1.1\r\nHost: x\r\n";
}

QByteArray Endless()
{
    return QByteArray(100000, 'a');
}

// Bytes on the wire and how the answer begins, if there must be one.
const auto& Rubbish()
{
    static const std::tuple<const char*, QByteArray, QByteArray> rows[] = {
        {"not HTTP", "\x16\x03\x01 hello\r\n\r\n", "HTTP/1.1 400"},
        {"endless URL", "GET /" + Endless() + " HTTP/1.1\r\n\r\n", {}},
        {"chunks", Post() + "Transfer-Encoding: chunked\r\n\r\n", "HTTP/1.1 400"},
        {"compressed", Post() + "Content-Encoding: gzip\r\nContent-Length: 2\r\n\r\n", "HTTP/1.1 400"},
        {"no length", Post() + "\r\n", "HTTP/1.1 400"},
    };
    return rows;
}

// A connection's peer, what the headers say, and where the client is.
const std::tuple<const char*, const char*, const char*, const char*, const char*> Hops[] = {
    {"no proxy", "10.0.0.1", "1.1.1.1", "for=1.1.1.1", "10.0.0.1"},
    {"no header", "10.0.0.9", "", "", "10.0.0.9"},
    {"invented by the client", "10.0.0.9", "9.9.9.9, 1.1.1.1", "", "1.1.1.1"},
    {"two proxies", "10.0.0.9", "1.1.1.1,fd00::9", "", "1.1.1.1"},
    {"IPv4 in IPv6", "::ffff:10.0.0.9", "::ffff:1.1.1.1", "", "1.1.1.1"},
    {"port", "10.0.0.9", "1.1.1.1:4711", "", "1.1.1.1"},
    {"RFC 7239", "fd00:0::9", "", "for=9.9.9.9, by=10.0.0.9;For=\"[2001:DB8::1]:4711\";proto=https",
        "2001:db8::1"},
    {"hidden", "10.0.0.9", "", "for=1.1.1.1, for=_secret", "10.0.0.9"},
    {"rubbish last", "10.0.0.9", "1.1.1.1, x\n", "", "10.0.0.9"},
    {"both agree", "10.0.0.9", "1.1.1.1", "for=1.1.1.1", "1.1.1.1"},
    {"one is the client's own", "10.0.0.9", "1.1.1.1", "for=2.2.2.2", "10.0.0.9"},
};

} // namespace

class HttpTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_farm.settings.limits = {{1000, 100}, {1000, 100}, {1000, 100}, {1000, 100}};
        m_farm.data.AddProject("Titles", "p", {"ann"_s});
        m_farm.data.Add("bob", "b", 1'280'500'000, true);
        m_id = m_farm.Add(1);
        m_farm.Start();
    }

    void init() { m_token = m_farm.SignIn("ann", "secret"); }

    void SignInGivesASession()
    {
        m_farm.SignIn("ann", "x");
        QCOMPARE(m_farm.signIn.status, 401);
        QCOMPARE(m_farm.signIn.Error(), "unauthorized"_s);
        const QString token = m_farm.SignIn("ann@example.org", "secret");
        const QJsonObject data {{"token"_s, token}, {"expiresIn"_s, 7 * 24 * 3600}};
        const QJsonObject body {{"loginname"_s, "ann"_s}, {"username"_s, "ann"_s}, {"data"_s, data}};
        QCOMPARE(m_farm.signIn.body, body);
        QVERIFY(token.size() >= 43 && token != m_token);
        QCOMPARE(m_farm.Get("/account"_s).status, 200);
        QCOMPARE(m_farm.Send("DELETE", "/session"_s).status, 200);
        QCOMPARE(m_farm.Get("/account"_s).status, 401);
    }

    void ARequestNeedsASession()
    {
        for (const char* request : {"GET /account", "GET /projects", "GET /jobs", "POST /jobs/search",
                 "POST /jobs/stop", "GET /account/spending", "GET /admin/overview",
                 "GET /admin/jobs/x/frames/1/log", "GET /jobs/x/frames/1/full-log", "GET /jobs/x",
                 "GET /jobs/x/frames", "GET /jobs/x/frames/1/log", "GET /jobs/x/files", "GET /jobs/x/files/x",
                 "POST /jobs", "POST /contents/known", "POST /uploads", "GET /uploads/x",
                 "PUT /uploads/x?offset=0", "POST /uploads/x/unpack"}) {
            for (const QString& token : {QString(), "no-such-token"_s, m_token}) {
                m_farm.token = token;
                const int status = Send(request, R"({"ids":[],"checksums":[]})").status;
                QVERIFY2((status == 401) == (token != m_token), request);
            }
        }
    }

    void CompressesAnswersWhenAsked()
    {
        for (const bool isAsked : {true, false}) {
            const auto socket = m_farm.SendRaw("GET /api/v1/health HTTP/1.1\r\n"
                + QByteArray(isAsked ? "Accept-Encoding: gzip, deflate\r\n" : "") + "\r\n");
            QVERIFY(
                QTest::qWaitFor([&] { return socket->state() == QTcpSocket::UnconnectedState; }, Patience));
            QCOMPARE(socket->readAll().contains("Content-Encoding: gzip"), isAsked);
        }
    }

    void ShowsTheAccountAndItsProjects()
    {
        QCOMPARE(m_farm.Get("/account"_s).body,
            Json(R"({"data":{"isBindToVso":false,"userInfo":{"user_balance":10}}})"));
        QCOMPARE(m_farm.Get("/projects"_s).body,
            Json(R"({"data":[{"project_name":"Titles","project_pool":"p"}]})"));
        m_farm.SignIn("bob", "b");
        QCOMPARE(m_farm.Get("/account"_s).body, Json(R"({"data":{"isBindToVso":true,"userInfo":{
                "username":"bob","user_rmb_balance":"1280.50","user_vso_balance":"300.00"}}})"));
    }

    void ListsJobsThatMeetTheConditions()
    {
        const QByteArray query = R"({"job_name":"JO","status":"0"})";
        const Reply listed
            = m_farm.Get("/jobs?conditions="_s + QString::fromLatin1(query.toPercentEncoding()));
        const QString expected
            = R"({"data":{"total":1,"list":[{"job_increasement":"1","job_id":"%1","job_type":"povray",
                "job_name":"job","job_submit_time":"%2","job_progress":0,"job_status":0,
                "job_cost":"0.00","job_cost_unit":"RMB"}]}})"_s;
        QCOMPARE(listed.body, Json(expected.arg(m_id, TimeText(0)).toLatin1()));
        // More ids than a URL can hold.
        const QJsonObject conditions {
            {"job_guid"_s, QString("0123456789abcdef01234567,"_s.repeated(2000) + m_id)}};
        const QJsonObject search {{"page"_s, 1}, {"pageSize"_s, "5"_s}, {"conditions"_s, conditions}};
        QCOMPARE(m_farm.Post("/jobs/search"_s, search).body, listed.body);
    }

    void RefusesBadRequests_data() { AddRows(Requests()); }
    void RefusesBadRequests()
    {
        const auto& [name, request, body, status] = Row(Requests());
        const Reply reply = Send(request, body);
        QCOMPARE(reply.status, status);
        const QMap<int, const char*> words {
            {200, ""}, {400, "bad_request"}, {404, "not_found"}, {413, "too_large"}};
        QCOMPARE(reply.Error(), QLatin1String(words[status]));
        QVERIFY(status == 200 || !reply.body["message"_s].toString().isEmpty());
    }

    void SurvivesRubbishOnTheWire_data() { AddRows(Rubbish()); }
    void SurvivesRubbishOnTheWire()
    {
        const auto& [name, request, answer] = Row(Rubbish());
        const auto socket = m_farm.SendRaw(request);
        // The whole answer; empty when the server has just closed the connection.
        QByteArray got;
        while (socket->waitForReadyRead(Patience))
            got += socket->readAll();
        QCOMPARE(socket->state(), QAbstractSocket::UnconnectedState);
        QVERIFY2(got.isEmpty() || got.startsWith("HTTP/1.1 4"), got.left(200));
        QVERIFY2(got.startsWith(answer), got.left(200));
        QCOMPARE(m_farm.Get("/health"_s).status, 200);
    }

    void BelievesProxiesAlone_data() { AddRows(Hops); }
    void BelievesProxiesAlone()
    {
        const auto& [name, peer, forwardedFor, forwarded, client] = Row(Hops);
        const TrustedProxies proxies({"10.0.0.9"_s, "fd00::9"_s});
        QCOMPARE(proxies.ClientOf(peer, forwardedFor, forwarded), QByteArray(client));
    }

    void StreamsOfEventsTakeNoThreadsFromRequests()
    {
        std::vector<std::unique_ptr<QTcpSocket>> streams(64);
        for (auto& stream : streams) {
            stream = m_farm.Listen();
            EVENTUALLY(stream->peek(1000).contains("\n:\n"));
        }
        QCOMPARE(m_farm.Get("/account"_s).status, 200);
        const Reply refused = m_farm.Get("/events"_s);
        QCOMPARE(refused.status, 429);
        QVERIFY(refused.retryAfter.toInt() > 0);
        m_farm.token.clear();
        QCOMPARE(m_farm.Get("/events"_s).status, 401);
    }

    void ShowsOtherAccountsOnlyToAdministrators()
    {
        const QString folder = m_farm.Path("jobs/%1/logs"_s.arg(m_id));
        QVERIFY(QDir().mkpath(folder));
        QVERIFY(WriteFile(folder + "/frame_0001.txt"_s, "all of it"));
        QVERIFY(QFile::link("/etc/hostname"_s, folder + "/frame_0002.txt"_s));
        const QString own = "/jobs/%1/frames/%2/full-log"_s;
        // The job has been restarted and has not begun again.
        m_farm.data.Change("UPDATE jobs SET run = 2");
        QVERIFY(WriteFile(m_farm.Path("jobs/%1/run"_s.arg(m_id)), "1"));
        QCOMPARE(m_farm.Get(own.arg(m_id, "1"_s)).status, 404);
        QVERIFY(WriteFile(m_farm.Path("jobs/%1/run"_s.arg(m_id)), "2"));
        QCOMPARE(m_farm.Get(own.arg(m_id, "1"_s)).bytes, "all of it");
        QCOMPARE(m_farm.Get(own.arg(m_id, "2"_s)).status, 404);

        const QString others = "/admin/jobs/%1/frames/1/log"_s.arg(m_id);
        m_farm.SignIn("bob", "b");
        QCOMPARE(m_farm.Get(own.arg(m_id, "1"_s)).status, 404);
        QCOMPARE(m_farm.Get("/admin/overview"_s).Error(), "forbidden"_s);
        QCOMPARE(m_farm.Get(others).status, 403);
        m_farm.data.Change("UPDATE accounts SET administrator = 1 WHERE name = 'bob'");
        QCOMPARE(m_farm.Get(others).bytes, "all of it");
        const QJsonObject queue {{"account"_s, "ann"_s}, {"waiting"_s, 1}, {"running"_s, 0}, {"paused"_s, 0},
            {"arrears"_s, 0}, {"failed"_s, 0}, {"rendering"_s, 0}};
        QCOMPARE(m_farm.Get("/admin/overview"_s).Data("queues").toArray(), QJsonArray {queue});

        const auto socket = m_farm.SendRaw("GET /metrics HTTP/1.1\r\n\r\n");
        QVERIFY(QTest::qWaitFor([&] { return socket->state() == QTcpSocket::UnconnectedState; }, Patience));
        QVERIFY(socket->readAll().contains("\nquillstar_jobs{status=\"waiting\"} 1\n"));
    }

    void AnnouncesThatASubmissionChangesTheList()
    {
        FarmAtWork farm;
        farm.Start(R"({"povray":{"program":"no-such-renderer","suffix":"txt"}})");
        const auto events = farm.Listen();
        EVENTUALLY(events->peek(10000).contains("\n:\n"));
        farm.Deliver(Package(PlainFiles));
        const QString id = farm.Post("/jobs"_s, SubmissionOf(PlainFiles)).Data("job_id").toString();
        EVENTUALLY(events->peek(10000).contains("[\"" + id.toLatin1() + "\"],\"list\":true"));
    }

    void AnnouncesChangesToTheirAccountAlone()
    {
        const auto has
            = [](const auto& stream, const QByteArray& text) { return stream->peek(10000).contains(text); };
        FarmAtWork farm;
        farm.data.Add("bob", "b");
        const QString id = farm.Add(2, JobStatus::Paused);
        // Slower than the gap between two events, so that a frame of its own is announced.
        farm.Start(ScriptedTypes("sleep 2; cp {scene} {output}"));
        const auto ann = farm.Listen();
        EVENTUALLY(has(ann, "\n:\n"));
        // Another process pays in.
        farm.data.SetBalance(15'000'000);
        EVENTUALLY(has(ann,
            R"({"account":{"isBindToVso":false,"userInfo":{"user_balance":15}},"jobs":[],"list":true})"));
        const QString session = farm.SignIn("bob", "b");
        const auto bob = farm.Listen();
        EVENTUALLY(has(bob, "\n:\n"));

        farm.SignIn("ann", "secret");
        QCOMPARE(farm.Apply("recover"_s, {id}).status, 200);
        EVENTUALLY(has(ann, R"(}},"jobs":[")" + id.toLatin1() + R"("],"list":true})"));
        QVERIFY(!has(bob, "data:"));
        EVENTUALLY(has(ann, R"("list":false,"records":[{"job_cost":)"));

        farm.token = session;
        QCOMPARE(farm.Send("DELETE", "/session"_s).status, 200);
        EVENTUALLY(bob->state() == QTcpSocket::UnconnectedState);
        QCOMPARE(ann->state(), QTcpSocket::ConnectedState);
        farm.End();
        EVENTUALLY(ann->state() == QTcpSocket::UnconnectedState);
    }

    void GoesByWhatAdministratorsChange()
    {
        FarmAtWork farm;
        const std::int64_t bob = farm.data.Add("bob", "b");
        farm.Start();
        farm.SignIn("bob", "b");
        AccountAdmin admin(farm.data.database, {}, Now());
        QCOMPARE(admin.Sessions("bob"_s).at(0).address, "127.0.0.1"_s);
        QCOMPARE(farm.BeginUpload("0123456789").status, 200);
        admin.SetQuota("bob"_s, 15);
        QCOMPARE(farm.BeginUpload("more").status, 200);
        QCOMPARE(farm.BeginUpload("too much").status, 507);
        QCOMPARE(admin.SpaceUsed(bob), std::int64_t(14));
        QCOMPARE(farm.Get("/projects"_s).body["data"_s], QJsonValue(QJsonArray()));
        farm.data.AddProject("Titles", "p", {"bob"_s});
        QCOMPARE(farm.Get("/projects"_s).body["data"_s].toArray().size(), 1);

        const auto stream = farm.Listen();
        EVENTUALLY(stream->peek(10000).contains("\n:\n"));
        admin.SetDisabled("bob"_s, true);
        QCOMPARE(farm.Get("/account"_s).status, 401);
        EVENTUALLY(stream->state() == QTcpSocket::UnconnectedState);
        QCOMPARE(farm.SignIn("bob", "b"), QString());
        admin.SetDisabled("bob"_s, false);
        QVERIFY(!farm.SignIn("bob", "b").isEmpty());
        const auto entry = LastAuditEntries(farm.data.database, "bob"_s, 1).at(0);
        QCOMPARE(SentenceOf(entry), "session begin bob by bob from 127.0.0.1"_s);
    }

    void LimitsUsesPerTime()
    {
        using namespace std::chrono_literals;
        const RateLimiter::Clock::time_point start {};
        RateLimiter limiter({2, 0.125});
        QVERIFY(!limiter.Take("ann", start));
        QVERIFY(!limiter.Take("ann", start));
        QCOMPARE(limiter.Take("ann", start), std::optional(8));
        QCOMPARE(limiter.Take("ann", start + 4s), std::optional(4));
        QVERIFY(!limiter.Take("bob", start));
        QVERIFY(!limiter.Take("ann", start + 11s));
        QVERIFY(limiter.Take("ann", start + 11s));
        limiter.GiveBack("ann");
        QVERIFY(!limiter.Take("ann", start + 11s));
    }

private:
    /// @param request is a method and a path.
    Reply Send(const QByteArray& request, const QByteArray& body)
    {
        const QList<QByteArray> words = request.split(' ');
        return m_farm.Send(words.at(0), QString::fromLatin1(words.at(1)), body);
    }

    FarmAtWork m_farm;
    QString m_token;
    QString m_id;
};

QTEST_GUILESS_MAIN(HttpTest)
#include "tst_farm_http.moc"
