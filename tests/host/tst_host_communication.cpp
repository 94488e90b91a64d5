#include "host/services/communication_service.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"

#include <QJsonDocument>
#include <QSignalSpy>

#include <tuple>

using namespace FarmProtocol;
using Reply = StandInServer::Reply;
using Service = CommunicationService;
using Operation = int (Service::*)(const QVariant&, const QVariantHash&);

namespace {

const QByteArray Account = R"({"data": {"isBindToVso": false, "userInfo": {"user_balance": 65.5}}})";
const QByteArray Jobs = R"({"data": {"list": [{"job_id": "7"}], "total": 1}})";
const QByteArray Session = R"({"loginname": "demo", "username": "u1", "data": {"token": "abc"}})";

const Reply good = StandInServer::Http(200, Account);

struct Behaviour
{
    const char* name;
    QList<Reply> replies;
    int code;
    int requests = 1;
    int attemptTime = Patience; // ms
};
const Behaviour behaviours[] = {
    {"success", {good}, 200},
    {"refused", {StandInServer::Http(401)}, 401},
    {"other success", {StandInServer::Http(204, {})}, 204},
    {"redirect", {StandInServer::Http(302, {}, "Location: /elsewhere\r\n"), good}, 302},
    {"failures, then success", {StandInServer::Http(500), StandInServer::Http(503), good}, 200, 3},
    {"failure after failure", {StandInServer::Http(503)}, 503, 3},
    {"asks to wait an hour", {StandInServer::Http(429, "{}", "Retry-After: 3600\r\n"), good}, 200, 2},
    {"always cut off", {Reply {good.bytes.chopped(10)}}, HttpResult::Unreachable, 3},
    {"silent", {StandInServer::Held({})}, HttpResult::TimedOut, 3, 100},
    {"huge", {StandInServer::Http(200, QByteArray(200000, ' ') + Account)}, HttpResult::TooLarge},
    {"not JSON", {StandInServer::Http(200, "<html>")}, HttpResult::NotJson},
    {"without data", {StandInServer::Http(200)}, HttpResult::NotJson},
};

struct Sending
{
    const char* name;
    Operation operation;
    QByteArray request;
    QByteArray line;
    QByteArray body = {};
};
QByteArray Search(const QByteArray& conditions)
{
    return R"({"page":3,"pageSize":18,"conditions":)" + conditions + "}";
}
const QByteArray page = "GET /api/v1/jobs?page=3&pageSize=18";
const QByteArray fits = QByteArray(4000, 'x');
const QByteArray tooLong = '"' + QByteArray(4200, 'x') + '"';
const QByteArray ids = R"({"id[0]": "a", "id[1]": "b", "id[3]": "d"})";
const QByteArray twoIds = R"({"ids":["a","b"]})";
const Sending sendings[] = {
    {"sign out", &Service::SignOut, "{}", "DELETE /api/v1/session"},
    {"account", &Service::GetUserInfo, "{}", "GET /api/v1/account"},
    {"projects", &Service::GetProjectList, "{}", "GET /api/v1/projects"},
    {"jobs", &Service::GetJobList, Search("null"), page},
    {"filtered jobs", &Service::GetJobList, Search("\"{a+b&c=%41#\u00e9}\""),
        page + "&conditions=%7Ba%2Bb%26c%3D%2541%23%C3%A9%7D"},
    {"conditions that fit a URL", &Service::GetJobList, Search('"' + fits + '"'),
        page + "&conditions=" + fits},
    {"conditions too long for a URL", &Service::GetJobList, Search(tooLong), "POST /api/v1/jobs/search",
        R"({"conditions":)" + tooLong + R"(,"page":3,"pageSize":18})"},
    {"job", &Service::GetJobInfo, R"({"id": "x/../y?z"})", "GET /api/v1/jobs/x%2F..%2Fy%3Fz"},
    {"dots for a job", &Service::GetJobInfo, R"({"id": ".."})", "GET /api/v1/jobs/--"},
    {"stop", &Service::StopJobs, ids, "POST /api/v1/jobs/stop", twoIds},
    {"delete", &Service::DeleteJobs, ids, "POST /api/v1/jobs/delete", twoIds},
    {"recover", &Service::RecoverJobs, ids, "POST /api/v1/jobs/recover", twoIds},
    {"restart", &Service::RestartJobs, ids, "POST /api/v1/jobs/restart", twoIds},
    {"full render", &Service::FullRender, ids, "POST /api/v1/jobs/full-render", twoIds},
};

/// Successful answers that the service takes or refuses.
const std::tuple<Check, QByteArray, bool> bodies[] = {
    {IsSession, QByteArray(Session).replace("abc", ""), false},
    {IsSession, QByteArray(Session).replace("abc", "a\\r\\nX: y"), false},
    {IsSession, QByteArray(Session).replace("abc", QByteArray(5000, 'x')), false},
    {IsSession, QByteArray(Session).replace("\"demo\"", "5"), false},
    {IsJobList, R"({"data": {"total": 1001, "list": [)" + QByteArray("{},").repeated(1000) + "{}]}}", false},
    {IsJobList, R"({"data": {"total": 1e18, "list": []}})", false},
    {IsJobList, R"({"data": {"list": []}})", false},
    {IsJobList, R"({"data": {"total": 0, "list": {}}})", false},
    {IsUserInfo, R"({"data": {"userInfo": []}})", false},
    {IsProjectList, R"({"data": {}})", false},
    {IsJobInfo, R"({"data": {"jobDatas": {"jobStatus": 4}}})", true},
    {IsJobInfo, R"({"data": {"jobStatus": 4}})", false},
};

/// @param attemptTime ms
HttpLimits QuickLimits(int attemptTime)
{
    HttpLimits limits;
    limits.attemptTime = attemptTime;
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

/// @return a request of the session "abc" with the members of a JSON object.
QVariantHash Request(const QByteArray& json = "{}")
{
    QVariantHash request = Json(json).toVariantHash();
    request.insert("token"_s, "abc"_s);
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
        StartService(Patience);
    }

    void cleanup() { m_service.reset(); }

    void AnswersWhateverTheServerDoes_data() { AddRows(behaviours); }
    void AnswersWhateverTheServerDoes()
    {
        const Behaviour& row = Row(behaviours);
        StartService(row.attemptTime);
        m_server->SetReplies(row.replies);
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::UserInfoResponse);
        QCOMPARE(m_service->GetUserInfo(m_status, Request()), 0);
        QCOMPARE(answers.count(), 0);
        EVENTUALLY_COMPARE(answers.count(), 1);
        QCOMPARE(answers[0][0].toInt(), row.code);
        QCOMPARE(m_server->Requests().size(), row.requests);
        const QString message = answers[0][1].toMap().value("message"_s).toString();
        QCOMPARE(message.isEmpty(), row.code == 200);
    }

    void RefusesIncompleteAnswers()
    {
        for (const auto& [check, body, isComplete] : bodies)
            QVERIFY2(check(Json(body)) == isComplete, body.left(100));
    }

    void AnswersWithoutAServerAndRecovers()
    {
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::ProjectListResponse);
        const QUrl down = m_server->Url();
        m_server = std::make_unique<StandInServer>();
        m_server->SetReplies({StandInServer::Http(200, R"({"data": []})")});
        for (const QUrl& url : {QUrl(), down, m_server->Url()}) {
            m_service->SetServerUrl(url);
            QCOMPARE(m_service->GetProjectList(m_status, Request()), 0);
            QVERIFY(answers.isEmpty());
            EVENTUALLY_COMPARE(answers.count(), 1);
            const int code = answers.takeFirst()[0].toInt();
            QCOMPARE(code, url == m_server->Url() ? 200 : HttpResult::Unreachable);
        }
    }

    void DoesNotRepeatASignIn()
    {
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::SignInResponse);
        m_server->SetReplies({StandInServer::Http(503), StandInServer::Http(200, Session)});
        for (const int code : {503, 200}) {
            m_service->SignIn("demo"_s, "secret"_s);
            EVENTUALLY_COMPARE(answers.count(), code == 503 ? 1 : 2);
            QCOMPARE(answers.constLast()[0].toInt(), code);
        }
        QCOMPARE(answers[1][1].toMap(), Json(Session).toVariantMap());
        QCOMPARE(m_server->Requests().size(), 2);
        QVERIFY(m_server->Requests().at(1).startsWith("POST /api/v1/session "));
        QVERIFY(m_server->Requests().at(1).endsWith(R"({"password":"secret","username":"demo"})"));
    }

    void SendsRequests_data() { AddRows(sendings); }
    void SendsRequests()
    {
        m_server->SetReplies({StandInServer::Http(404)});
        QCOMPARE((m_service.get()->*Row(sendings).operation)(m_status, Request(Row(sendings).request)), 0);
        EVENTUALLY_COMPARE(m_server->Requests().size(), 1);
        const QByteArray sent = m_server->Requests().constFirst();
        QCOMPARE(sent.left(sent.indexOf(" HTTP/1.1")), Row(sendings).line);
        QCOMPARE(sent.mid(sent.indexOf("\r\n\r\n") + 4), Row(sendings).body);
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

    void EchoesTheRequestAlsoWhenItFails()
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
        EVENTUALLY(lists.count() == 1 && infos.count() == 1);
        QCOMPARE(lists[0][0].toInt(), 409);
        QCOMPARE(lists[0][1].toMap(), Json("{" + echo + "," + why + "}").toVariantMap());
        QCOMPARE(infos[0][1].toMap(), Json("{" + echoOfJob + "," + why + "}").toVariantMap());
    }

    void DropsTheOlderOfTwoJobLists()
    {
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::JobListResponse);
        const Reply jobs = StandInServer::Http(200, Jobs);
        m_server->SetReplies({StandInServer::Held(jobs), StandInServer::Held(jobs), jobs});
        m_service->GetJobList(m_status, Request(R"({"identifier": 0, "page": 1})"));
        EVENTUALLY_COMPARE(m_server->Requests().size(), 1);
        m_service->GetJobList(m_status, Request(R"({"identifier": 1, "page": 1})"));
        EVENTUALLY_COMPARE(m_server->Requests().size(), 2);
        m_service->GetJobList(m_status, Request(R"({"identifier": 0, "page": 2})"));
        EVENTUALLY_COMPARE(answers.count(), 1);
        m_server->Release(0);
        m_server->Release(1);
        EVENTUALLY_COMPARE(answers.count(), 2);
        QCOMPARE(answers[0][1].toMap().value("identifier"_s).toInt(), 0);
        QCOMPARE(answers[1][1].toMap().value("identifier"_s).toInt(), 1);
    }

    void DropsAnswersOfAnEndedSession()
    {
        QSignalSpy infos(m_service.get(), &VTCommunicationInterface::UserInfoResponse);
        QSignalSpy signIns(m_service.get(), &VTCommunicationInterface::SignInResponse);
        QSignalSpy signOuts(m_service.get(), &VTCommunicationInterface::SignOutResponse);
        const Reply account = StandInServer::Held(StandInServer::Http(200, Account));
        m_server->SetReplies({account, StandInServer::Http(200), account, StandInServer::Http(200, Session)});

        m_service->GetUserInfo(m_status, Request());
        EVENTUALLY_COMPARE(m_server->Requests().size(), 1);
        m_service->SignOut(m_status, Request());
        EVENTUALLY_COMPARE(signOuts.count(), 1);
        m_service->GetUserInfo(m_status, Request());
        EVENTUALLY_COMPARE(m_server->Requests().size(), 3);
        m_service->SignIn("demo"_s, "demo"_s);
        EVENTUALLY_COMPARE(signIns.count(), 1);

        m_server->Release(0);
        m_server->Release(2);
        m_service->GetUserInfo(m_status, Request());
        EVENTUALLY_COMPARE(infos.count(), 1);
        QCOMPARE(infos[0][0].toInt(), HttpResult::NotJson);
    }

    void AllowsRequestsFromInsideAnAnswer()
    {
        int lists = 0;
        m_server->SetReplies({StandInServer::Http(200, Jobs)});
        QSignalSpy signOuts(m_service.get(), &VTCommunicationInterface::SignOutResponse);
        connect(m_service.get(), &VTCommunicationInterface::JobListResponse, this, [this, &lists] {
            // The window, too, asks for another page at once and may sign out meanwhile.
            if (++lists < 3)
                m_service->GetJobList(m_status, Request());
            else
                m_service->SignOut(m_status, Request());
        });
        m_service->GetJobList(m_status, Request());
        EVENTUALLY_COMPARE(signOuts.count(), 1);
        QCOMPARE(lists, 3);
    }

    void ReportsAnExpiredSessionOnce()
    {
        QSignalSpy expiries(m_service.get(), &CommunicationService::SessionExpired);
        QSignalSpy answers(m_service.get(), &VTCommunicationInterface::UserInfoResponse);
        m_server->SetReplies({StandInServer::Http(401)});
        m_service->GetUserInfo(m_status, Request());
        m_service->GetUserInfo(m_status, Request());
        EVENTUALLY_COMPARE(answers.count(), 2);
        QCOMPARE(expiries.count(), 1);
        m_service->SignIn("demo"_s, "wrong"_s);
        m_service->GetUserInfo(m_status, Request());
        EVENTUALLY_COMPARE(expiries.count(), 2);
    }

private:
    void StartService(int attemptTime)
    {
        m_service = std::make_unique<CommunicationService>(QuickLimits(attemptTime));
        m_service->SetServerUrl(m_server->Url());
        QCOMPARE(m_service->Initialize({}), 0);
        QCOMPARE(m_service->Show(m_status, {}), 0);
    }

    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<CommunicationService> m_service;
    QVariant m_status;
};

QTEST_GUILESS_MAIN(TestHostCommunication)
#include "tst_host_communication.moc"
