#include "host/services/communication_service.h"
#include "tests/host/stand_in_server.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QtTest>

using namespace FarmProtocol;
using Reply = StandInServer::Reply;
using Service = CommunicationService;
using Operation = int (Service::*)(const QVariant&, const QVariantHash&);

Q_DECLARE_METATYPE(QList<StandInServer::Reply>)
Q_DECLARE_METATYPE(Operation)

namespace {

const QByteArray kAccount = R"({"data": {"isBindToVso": false, "userInfo": {"user_balance": 65.5}}})";
const QByteArray kJobs = R"({"data": {"list": [{"job_id": "7"}], "total": 1}})";
const QByteArray kSession = R"({"loginname": "demo", "username": "u1", "data": {"token": "abc"}})";

HttpLimits Impatient()
{
    HttpLimits limits;
    limits.attemptTime = 250;
    limits.firstPause = 5;
    limits.longestPause = 50;
    limits.answerBytes = 100000;
    return limits;
}

QJsonObject Json(const QByteArray& text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isObject())
        qFatal("no JSON object: %s", text.constData());
    return document.object();
}

/// A request of the session "abc" with what the JSON object says.
QVariantHash Request(const QByteArray& json = "{}")
{
    QVariantHash request = Json(json).toVariantHash();
    request.insert(QStringLiteral("token"), QStringLiteral("abc"));
    return request;
}

} // namespace

/// The communication service against a real server on a real socket.
class TestHostCommunication : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_server = std::make_unique<StandInServer>();
        m_service = std::make_unique<CommunicationService>(Impatient());
        m_service->SetServerUrl(m_server->Url());
        QCOMPARE(m_service->Initialize({}), 0);
        QCOMPARE(m_service->Show(m_status, {}), 0);
    }

    void cleanup() { m_service.reset(); }

    void AnswersWhateverTheServerDoes_data()
    {
        QTest::addColumn<QList<Reply>>("replies");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("requests");
        const auto row = [](const char* name, const QList<Reply>& replies, int code, int requests = 1) {
            QTest::newRow(name) << replies << code << requests;
        };
        const Reply good = StandInServer::Http(200, kAccount);
        const Reply cut {good.bytes.chopped(10), false};
        const QByteArray deep = "{\"data\":" + QByteArray(5000, '[') + QByteArray(5000, ']') + "}";

        row("success", {good}, 200);
        row("refused", {StandInServer::Http(401)}, 401);
        row("other success", {StandInServer::Http(204, {})}, 204);
        row("redirect", {StandInServer::Http(302, {}, "Location: /elsewhere\r\n"), good}, 302);
        row("failures, then success", {StandInServer::Http(500), StandInServer::Http(503), good}, 200, 3);
        row("failure after failure", {StandInServer::Http(503)}, 503, 3);
        row("asks to wait an hour", {StandInServer::Http(429, "{}", "Retry-After: 3600\r\n"), good}, 200, 2);
        row("cut off, then success", {cut, good}, 200, 2);
        row("cut off for ever", {cut}, HttpResult::Unreachable, 3);
        // Qt itself repeats a request that got no HTTP at all, so each attempt counts twice here.
        row("no HTTP", {{"220 mail.example ESMTP\r\n", false}}, HttpResult::Unreachable, 6);
        row("silent", {{{}, true}}, HttpResult::TimedOut, 3);
        row("huge", {StandInServer::Http(200, QByteArray(200000, ' ') + kAccount)}, HttpResult::TooLarge);
        row("rubbish", {StandInServer::Http(200, "<html>")}, HttpResult::NotJson);
        row("list", {StandInServer::Http(200, "[]")}, HttpResult::NotJson);
        row("deep", {StandInServer::Http(200, deep)}, HttpResult::NotJson);
        row("no UTF-8", {StandInServer::Http(200, "{\"data\": \"\xff\xfe\"}")}, HttpResult::NotJson);
        row("without data", {StandInServer::Http(200)}, HttpResult::NotJson);
    }

    void AnswersWhateverTheServerDoes()
    {
        QFETCH(QList<Reply>, replies);
        QFETCH(int, code);
        m_server->SetReplies(replies);
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::UserInfoResponse);

        QCOMPARE(m_service->GetUserInfo(m_status, Request()), 0);
        QCOMPARE(answers.count(), 0);
        QTRY_COMPARE(answers.count(), 1);
        QCOMPARE(answers[0][0].toInt(), code);
        QTEST(m_server->Requests().size(), "requests");
        const QString message = answers[0][1].toMap().value(QStringLiteral("message")).toString();
        QCOMPARE(message.isEmpty(), code == 200);
    }

    void RefusesUnsoundSuccesses()
    {
        for (const QByteArray& token : {QByteArray(), QByteArray("a\\r\\nX: y"), QByteArray(5000, 'x')})
            QVERIFY2(!IsSession(Json(QByteArray(kSession).replace("abc", token))), token);
        QVERIFY(!IsSession(Json(QByteArray(kSession).replace("\"demo\"", "5"))));
        const QByteArray many = QByteArray("{},").repeated(1000) + "{}";
        QVERIFY(!IsJobList(Json(R"({"data": {"total": 1001, "list": [)" + many + "]}}")));
        QVERIFY(!IsJobList(Json(R"({"data": {"total": 1e18, "list": []}})")));
        QVERIFY(!IsJobList(Json(R"({"data": {"list": []}})")));
        QVERIFY(!IsJobList(Json(R"({"data": {"total": 0, "list": {}}})")));
        QVERIFY(!IsUserInfo(Json(R"({"data": {"userInfo": []}})")));
        QVERIFY(!IsProjectList(Json(R"({"data": {}})")));
        QVERIFY(IsJobInfo(Json(R"({"data": {"jobDatas": {"jobStatus": 4}}})")));
        QVERIFY(!IsJobInfo(Json(R"({"data": {"jobStatus": 4}})")));
    }

    void AnswersWithoutServerAndRecovers()
    {
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::ProjectListResponse);
        const QUrl down = m_server->Url();
        m_server = std::make_unique<StandInServer>();
        m_server->SetReplies({StandInServer::Http(200, R"({"data": []})")});
        for (const QUrl& url : {QUrl(), down, m_server->Url()}) {
            m_service->SetServerUrl(url);
            QCOMPARE(m_service->GetProjectList(m_status, Request()), 0);
            QVERIFY(answers.isEmpty());
            QTRY_COMPARE(answers.count(), 1);
            const int code = answers.takeFirst()[0].toInt();
            QCOMPARE(code, url == m_server->Url() ? 200 : HttpResult::Unreachable);
        }
    }

    void SignsInOnlyOnce()
    {
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::SignInResponse);
        m_server->SetReplies({StandInServer::Http(503), StandInServer::Http(200, kSession)});
        for (const int code : {503, 200}) {
            m_service->SignIn(QStringLiteral("demo"), QStringLiteral("secret"));
            QTRY_COMPARE(answers.count(), code == 503 ? 1 : 2);
            QCOMPARE(answers.constLast()[0].toInt(), code);
        }
        QCOMPARE(answers[1][1].toMap(), Json(kSession).toVariantMap());
        QCOMPARE(m_server->Requests().size(), 2);
        QVERIFY(m_server->Requests().at(1).startsWith("POST /api/v1/session "));
        QVERIFY(m_server->Requests().at(1).endsWith(R"({"password":"secret","username":"demo"})"));
    }

    void SendsRequests_data()
    {
        QTest::addColumn<Operation>("operation");
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("body");
        const auto row = [](const char* name, Operation operation, const QByteArray& request,
                             const QByteArray& line, const QByteArray& body = {}) {
            QTest::newRow(name) << operation << request << line << body;
        };
        const auto search = [](const QByteArray& conditions) -> QByteArray {
            return R"({"page":3,"pageSize":18,"conditions":)" + conditions + "}";
        };
        const QByteArray page = "GET /api/v1/jobs?page=3&pageSize=18";
        const QByteArray fits = QByteArray(4000, 'x');
        const QByteArray isLong = '"' + QByteArray(4200, 'x') + '"';
        const QByteArray ids = R"({"id[0]": "a", "id[1]": "b", "id[3]": "d"})";
        const QByteArray twoIds = R"({"ids":["a","b"]})";

        row("sign out", &Service::SignOut, "{}", "DELETE /api/v1/session");
        row("account", &Service::GetUserInfo, "{}", "GET /api/v1/account");
        row("projects", &Service::GetProjectList, "{}", "GET /api/v1/projects");
        row("jobs", &Service::GetJobList, search("null"), page);
        row("filtered jobs", &Service::GetJobList, search("\"{a+b&c=%41#\u00e9}\""),
            page + "&conditions=%7Ba%2Bb%26c%3D%2541%23%C3%A9%7D");
        row("what a URL holds", &Service::GetJobList, search('"' + fits + '"'), page + "&conditions=" + fits);
        row("more than a URL holds", &Service::GetJobList, search(isLong), "POST /api/v1/jobs/search",
            R"({"conditions":)" + isLong + R"(,"page":3,"pageSize":18})");
        row("job", &Service::GetJobInfo, R"({"id": "x/../y?z"})", "GET /api/v1/jobs/x%2F..%2Fy%3Fz");
        row("stop", &Service::StopJobs, ids, "POST /api/v1/jobs/stop", twoIds);
        row("delete", &Service::DeleteJobs, ids, "POST /api/v1/jobs/delete", twoIds);
        row("recover", &Service::RecoverJobs, ids, "POST /api/v1/jobs/recover", twoIds);
        row("restart", &Service::RestartJobs, ids, "POST /api/v1/jobs/restart", twoIds);
        row("full render", &Service::FullRender, ids, "POST /api/v1/jobs/full-render", twoIds);
    }

    void SendsRequests()
    {
        QFETCH(Operation, operation);
        QFETCH(QByteArray, request);
        m_server->SetReplies({StandInServer::Http(404)});
        QCOMPARE((m_service.get()->*operation)(m_status, Request(request)), 0);
        QTRY_COMPARE(m_server->Requests().size(), 1);
        const QByteArray sent = m_server->Requests().constFirst();
        QTEST(sent.left(sent.indexOf(" HTTP/1.1")), "line");
        QTEST(sent.mid(sent.indexOf("\r\n\r\n") + 4), "body");
        QVERIFY(sent.contains("\r\nAuthorization: Bearer abc\r\n"));
        QCOMPARE(sent.count("abc"), 1);
    }

    void RefusesRequestsWithoutItsStatus()
    {
        QCOMPARE(m_service->GetJobList(0, Request()), -4);
        QCOMPARE(m_service->SignOut(QVariant(), Request()), -4);
        m_service->Uninitialize();
        QCOMPARE(m_service->StopJobs(m_status, Request()), -3);
    }

    void EchoesTheRequestAlsoOnFailure()
    {
        QSignalSpy lists(m_service.get(), &VTCommunicationInterface::JobListResponse);
        QSignalSpy infos(m_service.get(), &VTCommunicationInterface::JobInfoResponse);
        const QByteArray why = R"("message": "Arrears.", "data": {"notAllowedJobs": ["7"]})";
        const QByteArray echo = R"("identifier": 1)";
        const QByteArray echoOfJob = echo + R"(, "jobId": "j")";
        m_server->SetReplies(
            {StandInServer::Http(409, R"({"identifier": 9, "jobId": "forged", )" + why + "}")});
        m_service->GetJobList(m_status, Request("{" + echo + "}"));
        m_service->GetJobInfo(m_status, Request("{" + echoOfJob + "}"));
        QTRY_VERIFY(lists.count() == 1 && infos.count() == 1);
        QCOMPARE(lists[0][0].toInt(), 409);
        QCOMPARE(lists[0][1].toMap(), Json("{" + echo + "," + why + "}").toVariantMap());
        QCOMPARE(infos[0][1].toMap(), Json("{" + echoOfJob + "," + why + "}").toVariantMap());
    }

    void DropsTheOlderOfTwoJobLists()
    {
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::JobListResponse);
        const Reply jobs = StandInServer::Http(200, kJobs);
        m_server->SetReplies({StandInServer::Held(jobs), StandInServer::Held(jobs), jobs});
        m_service->GetJobList(m_status, Request(R"({"identifier": 0, "page": 1})"));
        QTRY_COMPARE(m_server->Requests().size(), 1);
        m_service->GetJobList(m_status, Request(R"({"identifier": 1, "page": 1})"));
        QTRY_COMPARE(m_server->Requests().size(), 2);
        m_service->GetJobList(m_status, Request(R"({"identifier": 0, "page": 2})"));
        QTRY_COMPARE(answers.count(), 1);
        m_server->Release(0);
        m_server->Release(1);
        QTRY_COMPARE(answers.count(), 2);
        QCOMPARE(answers[0][1].toMap().value(QStringLiteral("identifier")).toInt(), 0);
        QCOMPARE(answers[1][1].toMap().value(QStringLiteral("identifier")).toInt(), 1);
    }

    void DropsAnswersOfAnEndedSession()
    {
        QSignalSpy infos(m_service.get(), &VTCommunicationInterface::UserInfoResponse);
        QSignalSpy signIns(m_service.get(), &VTCommunicationInterface::SignInResponse);
        QSignalSpy signOuts(m_service.get(), &VTCommunicationInterface::SignOutResponse);
        const Reply account = StandInServer::Held(StandInServer::Http(200, kAccount));
        m_server->SetReplies(
            {account, StandInServer::Http(200), account, StandInServer::Http(200, kSession)});

        m_service->GetUserInfo(m_status, Request());
        QTRY_COMPARE(m_server->Requests().size(), 1);
        m_service->SignOut(m_status, Request());
        QTRY_COMPARE(signOuts.count(), 1);
        m_service->GetUserInfo(m_status, Request());
        QTRY_COMPARE(m_server->Requests().size(), 3);
        m_service->SignIn(QStringLiteral("demo"), QStringLiteral("demo"));
        QTRY_COMPARE(signIns.count(), 1);

        m_server->Release(0);
        m_server->Release(2);
        m_service->GetUserInfo(m_status, Request());
        QTRY_COMPARE(infos.count(), 1);
        QCOMPARE(infos[0][0].toInt(), HttpResult::NotJson);
    }

    void MayBeUsedFromAnAnswer()
    {
        int lists = 0;
        m_server->SetReplies({StandInServer::Http(200, kJobs)});
        QSignalSpy signOuts(m_service.get(), &VTCommunicationInterface::SignOutResponse);
        connect(m_service.get(), &VTCommunicationInterface::JobListResponse, this, [this, &lists] {
            // As the window does: ask for another page at once, and, some time, sign out in the middle of it.
            if (++lists < 3)
                m_service->GetJobList(m_status, Request());
            else
                m_service->SignOut(m_status, Request());
        });
        m_service->GetJobList(m_status, Request());
        QTRY_COMPARE(signOuts.count(), 1);
        QCOMPARE(lists, 3);
    }

    void ReportsAnExpiredSessionOnce()
    {
        QSignalSpy expiries(m_service.get(), &CommunicationService::SessionExpired);
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::UserInfoResponse);
        m_server->SetReplies({StandInServer::Http(401)});
        m_service->GetUserInfo(m_status, Request());
        m_service->GetUserInfo(m_status, Request());
        QTRY_COMPARE(answers.count(), 2);
        QCOMPARE(expiries.count(), 1);
        m_service->SignIn(QStringLiteral("demo"), QStringLiteral("wrong"));
        m_service->GetUserInfo(m_status, Request());
        QTRY_COMPARE(expiries.count(), 2);
    }

private:
    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<CommunicationService> m_service;
    QVariant m_status;
};

QTEST_GUILESS_MAIN(TestHostCommunication)
#include "tst_host_communication.moc"
