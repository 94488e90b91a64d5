#include "communication_service.h"
#include "stand_in_server.h"

#include <QSignalSpy>
#include <QtTest>

using Reply = StandInServer::Reply;
using Operation = int (CommunicationService::*)(const QVariant&, const QVariantHash&);

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

QVariantHash Request(const QVariantHash& more = {})
{
    QVariantHash request {
        {QStringLiteral("username"), QStringLiteral("u1")}, {QStringLiteral("token"), QStringLiteral("abc")}};
    for (auto entry = more.begin(); entry != more.end(); ++entry)
        request.insert(entry.key(), entry.value());
    return request;
}

QVariantHash JobListRequest(int identifier, int page = 1)
{
    return Request({{QStringLiteral("identifier"), identifier}, {QStringLiteral("page"), page},
        {QStringLiteral("pageSize"), 18}});
}

} // namespace

/// The communication service against a real server on a real socket.
class TestHostCommunication : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_service.reset(); }

    void AnswersWhateverTheServerDoes_data();
    void AnswersWhateverTheServerDoes();
    void AnswersWithoutServerAndRecovers();
    void SignsInOnlyOnce();
    void SendsRequests_data();
    void SendsRequests();
    void SendsTheTokenInTheHeaderOnly();
    void RefusesRequestsWithoutItsStatus();
    void EchoesTheRequestAlsoOnFailure();
    void DropsTheOlderOfTwoJobLists();
    void DropsAnswersOfAnEndedSession();
    void MayBeUsedFromAnAnswer();
    void ReportsAnExpiredSessionOnce();

private:
    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<CommunicationService> m_service;
    QVariant m_status;
};

void TestHostCommunication::init()
{
    m_server = std::make_unique<StandInServer>();
    m_service = std::make_unique<CommunicationService>(Impatient());
    m_service->SetServerUrl(m_server->Url());
    QCOMPARE(m_service->Initialize({}), 0);
    QCOMPARE(m_service->Show(m_status, {}), 0);
}

void TestHostCommunication::AnswersWhateverTheServerDoes_data()
{
    QTest::addColumn<QList<Reply>>("replies");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("requests");
    const auto http
        = [](int status, const QByteArray& body = "{}") { return StandInServer::Http(status, body); };
    const Reply cut {http(200, kAccount).bytes.chopped(10), false};
    const QByteArray deep = "{\"data\":" + QByteArray(5000, '[') + QByteArray(5000, ']') + "}";

    QTest::newRow("success") << QList<Reply> {http(200, kAccount)} << 200 << 1;
    QTest::newRow("refused") << QList<Reply> {http(401)} << 401 << 1;
    QTest::newRow("other success") << QList<Reply> {http(204, {})} << 204 << 1;
    QTest::newRow("redirect") << QList<Reply> {StandInServer::Http(302, {}, "Location: /elsewhere\r\n"),
        http(200, kAccount)} << 302
                              << 1;
    QTest::newRow("failures, then success")
        << QList<Reply> {http(500), http(503), http(200, kAccount)} << 200 << 3;
    QTest::newRow("failure after failure") << QList<Reply> {http(503)} << 503 << 3;
    QTest::newRow("too many requests, asks for an hour")
        << QList<Reply> {StandInServer::Http(429, "{}", "Retry-After: 3600\r\n"), http(200, kAccount)} << 200
        << 2;
    QTest::newRow("cut off, then success") << QList<Reply> {cut, http(200, kAccount)} << 200 << 2;
    QTest::newRow("cut off for ever") << QList<Reply> {cut} << int(HttpResult::Unreachable) << 3;
    // Qt itself repeats a request that got no HTTP at all, so each attempt counts twice here.
    QTest::newRow("no HTTP") << QList<Reply> {{"220 mail.example ESMTP\r\n", false}}
                             << int(HttpResult::Unreachable) << 6;
    QTest::newRow("silent") << QList<Reply> {{{}, true}} << int(HttpResult::TimedOut) << 3;
    QTest::newRow("huge") << QList<Reply> {http(200, QByteArray(200000, ' ') + kAccount)}
                          << int(HttpResult::TooLarge) << 1;
    QTest::newRow("rubbish") << QList<Reply> {http(200, "<html>")} << int(HttpResult::NotJson) << 1;
    QTest::newRow("empty") << QList<Reply> {http(200, {})} << int(HttpResult::NotJson) << 1;
    QTest::newRow("list") << QList<Reply> {http(200, "[]")} << int(HttpResult::NotJson) << 1;
    QTest::newRow("deep") << QList<Reply> {http(200, deep)} << int(HttpResult::NotJson) << 1;
    QTest::newRow("no UTF-8") << QList<Reply> {http(200, "{\"data\": \"\xff\xfe\"}")}
                              << int(HttpResult::NotJson) << 1;
    QTest::newRow("without data") << QList<Reply> {http(200)} << int(HttpResult::NotJson) << 1;
}

void TestHostCommunication::AnswersWhateverTheServerDoes()
{
    QFETCH(QList<Reply>, replies);
    m_server->SetReplies(replies);
    QSignalSpy answers(m_service.get(), &VTCommunicationInterface::UserInfoResponse);

    QCOMPARE(m_service->GetUserInfo(m_status, Request()), 0);
    QCOMPARE(answers.count(), 0);
    QTRY_COMPARE(answers.count(), 1);
    QTEST(answers[0][0].toInt(), "code");
    QTEST(m_server->Requests().size(), "requests");
    const QVariantMap map = answers[0][1].toMap();
    QCOMPARE(map.value(QStringLiteral("message")).toString().isEmpty(), answers[0][0].toInt() == 200);
}

void TestHostCommunication::AnswersWithoutServerAndRecovers()
{
    QSignalSpy answers(m_service.get(), &VTCommunicationInterface::ProjectListResponse);
    m_service->SetServerUrl({});
    QCOMPARE(m_service->GetProjectList(m_status, Request()), 0);
    QCOMPARE(answers.count(), 0);
    QTRY_COMPARE(answers.count(), 1);
    QCOMPARE(answers[0][0].toInt(), int(HttpResult::Unreachable));

    const QUrl down = m_server->Url();
    m_server = std::make_unique<StandInServer>();
    m_server->SetReplies({StandInServer::Http(200, R"({"data": []})")});
    m_service->SetServerUrl(down);
    m_service->GetProjectList(m_status, Request());
    QTRY_COMPARE(answers.count(), 2);
    QCOMPARE(answers[1][0].toInt(), int(HttpResult::Unreachable));

    m_service->SetServerUrl(m_server->Url());
    m_service->GetProjectList(m_status, Request());
    QTRY_COMPARE(answers.count(), 3);
    QCOMPARE(answers[2][0].toInt(), 200);
}

void TestHostCommunication::SignsInOnlyOnce()
{
    QSignalSpy answers(m_service.get(), &VTCommunicationInterface::SignInResponse);
    m_server->SetReplies({StandInServer::Http(503, "{}"), StandInServer::Http(200, kSession)});
    m_service->SignIn(QStringLiteral("demo"), QStringLiteral("secret"));
    QTRY_COMPARE(answers.count(), 1);
    QCOMPARE(answers[0][0].toInt(), 503);
    QCOMPARE(m_server->Requests().size(), 1);

    m_service->SignIn(QStringLiteral("demo"), QStringLiteral("secret"));
    QTRY_COMPARE(answers.count(), 2);
    const QVariantMap answer = answers[1][1].toMap();
    QCOMPARE(answer.value(QStringLiteral("loginname")).toString(), QStringLiteral("demo"));
    QCOMPARE(answer.value(QStringLiteral("username")).toString(), QStringLiteral("u1"));
    QCOMPARE(answer.value(QStringLiteral("data")).toMap().value(QStringLiteral("token")).toString(),
        QStringLiteral("abc"));
    QVERIFY(m_server->Requests().at(1).startsWith("POST /api/v1/session "));
    QVERIFY(m_server->Requests().at(1).endsWith(R"({"password":"secret","username":"demo"})"));
}

void TestHostCommunication::SendsRequests_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QVariantHash>("more");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("body");
    const QVariantHash ids {{QStringLiteral("id[0]"), QStringLiteral("a")},
        {QStringLiteral("id[1]"), QStringLiteral("b")}, {QStringLiteral("id[3]"), QStringLiteral("d")}};
    const QVariantHash list {{QStringLiteral("page"), 3}, {QStringLiteral("pageSize"), 18}};
    QVariantHash filtered = list;
    filtered.insert(QStringLiteral("conditions"), QStringLiteral("{\"job_name\":\"a+b&c=%41#\xe9\"}"));
    const QByteArray twoIds = R"({"ids":["a","b"]})";
    const auto row
        = [](const char* name, Operation operation, const QVariantHash& more, const QByteArray& line,
              const QByteArray& body = {}) { QTest::newRow(name) << operation << more << line << body; };

    row("sign out", &CommunicationService::SignOut, {}, "DELETE /api/v1/session");
    row("account", &CommunicationService::GetUserInfo, {}, "GET /api/v1/account");
    row("projects", &CommunicationService::GetProjectList, {}, "GET /api/v1/projects");
    row("jobs", &CommunicationService::GetJobList, list, "GET /api/v1/jobs?page=3&pageSize=18");
    row("filtered jobs", &CommunicationService::GetJobList, filtered,
        "GET "
        "/api/v1/jobs?page=3&pageSize=18&conditions=%7B%22job_name%22%3A%22a%2Bb%26c%3D%2541%23%C3%A9%22%7D");
    row("job", &CommunicationService::GetJobInfo, {{QStringLiteral("id"), QStringLiteral("x/../y?z")}},
        "GET /api/v1/jobs/x%2F..%2Fy%3Fz");
    row("stop", &CommunicationService::StopJobs, ids, "POST /api/v1/jobs/stop", twoIds);
    row("delete", &CommunicationService::DeleteJobs, ids, "POST /api/v1/jobs/delete", twoIds);
    row("recover", &CommunicationService::RecoverJobs, ids, "POST /api/v1/jobs/recover", twoIds);
    row("restart", &CommunicationService::RestartJobs, ids, "POST /api/v1/jobs/restart", twoIds);
    row("full render", &CommunicationService::FullRender, ids, "POST /api/v1/jobs/full-render", twoIds);
}

void TestHostCommunication::SendsRequests()
{
    QFETCH(Operation, operation);
    QFETCH(QVariantHash, more);
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, body);
    m_server->SetReplies({StandInServer::Http(404, "{}")});
    QCOMPARE((m_service.get()->*operation)(m_status, Request(more)), 0);
    QTRY_COMPARE(m_server->Requests().size(), 1);
    const QByteArray request = m_server->Requests().constFirst();
    QCOMPARE(request.left(request.indexOf(" HTTP/1.1")), line);
    QCOMPARE(request.mid(request.indexOf("\r\n\r\n") + 4), body);
}

void TestHostCommunication::SendsTheTokenInTheHeaderOnly()
{
    m_server->SetReplies({StandInServer::Http(200, kAccount)});
    m_service->GetUserInfo(m_status, Request());
    QTRY_COMPARE(m_server->Requests().size(), 1);
    QCOMPARE(m_server->Requests().constFirst().count("abc"), 1);
    QVERIFY(m_server->Requests().constFirst().contains("\r\nAuthorization: Bearer abc\r\n"));
}

void TestHostCommunication::RefusesRequestsWithoutItsStatus()
{
    QCOMPARE(m_service->GetJobList(0, JobListRequest(0)), -4);
    QCOMPARE(m_service->SignOut(QVariant(), Request()), -4);
    m_service->Uninitialize();
    QCOMPARE(m_service->StopJobs(m_status, Request()), -3);
}

void TestHostCommunication::EchoesTheRequestAlsoOnFailure()
{
    QSignalSpy lists(m_service.get(), &VTCommunicationInterface::JobListResponse);
    QSignalSpy infos(m_service.get(), &VTCommunicationInterface::JobInfoResponse);
    m_server->SetReplies({StandInServer::Http(404, R"({"identifier": 9, "jobId": "forged"})")});
    m_service->GetJobList(m_status, JobListRequest(1));
    m_service->GetJobInfo(m_status,
        Request({{QStringLiteral("id"), QStringLiteral("j")}, {QStringLiteral("jobId"), QStringLiteral("j")},
            {QStringLiteral("identifier"), 1}}));
    QTRY_VERIFY(lists.count() == 1 && infos.count() == 1);
    QCOMPARE(lists[0][1].toMap().value(QStringLiteral("identifier")).toInt(), 1);
    QCOMPARE(infos[0][1].toMap().value(QStringLiteral("identifier")).toInt(), 1);
    QCOMPARE(infos[0][1].toMap().value(QStringLiteral("jobId")).toString(), QStringLiteral("j"));
}

void TestHostCommunication::DropsTheOlderOfTwoJobLists()
{
    QSignalSpy answers(m_service.get(), &VTCommunicationInterface::JobListResponse);
    const Reply jobs = StandInServer::Http(200, kJobs);
    m_server->SetReplies({StandInServer::Held(jobs), StandInServer::Held(jobs), jobs});
    m_service->GetJobList(m_status, JobListRequest(0, 1));
    QTRY_COMPARE(m_server->Requests().size(), 1);
    m_service->GetJobList(m_status, JobListRequest(1));
    QTRY_COMPARE(m_server->Requests().size(), 2);
    m_service->GetJobList(m_status, JobListRequest(0, 2));
    QTRY_COMPARE(answers.count(), 1);
    m_server->Release(0);
    m_server->Release(1);
    QTRY_COMPARE(answers.count(), 2);
    QCOMPARE(answers[0][1].toMap().value(QStringLiteral("identifier")).toInt(), 0);
    QCOMPARE(answers[1][1].toMap().value(QStringLiteral("identifier")).toInt(), 1);
}

void TestHostCommunication::DropsAnswersOfAnEndedSession()
{
    QSignalSpy infos(m_service.get(), &VTCommunicationInterface::UserInfoResponse);
    QSignalSpy signIns(m_service.get(), &VTCommunicationInterface::SignInResponse);
    QSignalSpy signOuts(m_service.get(), &VTCommunicationInterface::SignOutResponse);
    const Reply account = StandInServer::Held(StandInServer::Http(200, kAccount));
    m_server->SetReplies(
        {account, StandInServer::Http(200, "{}"), account, StandInServer::Http(200, kSession)});

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
    QCOMPARE(infos[0][0].toInt(), int(HttpResult::NotJson));
}

void TestHostCommunication::MayBeUsedFromAnAnswer()
{
    int lists = 0;
    bool signedOut = false;
    m_server->SetReplies({StandInServer::Http(200, kJobs)});
    connect(m_service.get(), &VTCommunicationInterface::JobListResponse, this, [this, &lists] {
        // As the window does: ask for another page at once, and, some time, sign out in the middle of it.
        if (++lists < 3)
            m_service->GetJobList(m_status, JobListRequest(0));
        else
            m_service->SignOut(m_status, Request());
    });
    connect(m_service.get(), &VTCommunicationInterface::SignOutResponse, this,
        [&signedOut] { signedOut = true; });
    m_service->GetJobList(m_status, JobListRequest(0));
    QTRY_VERIFY(signedOut);
    QCOMPARE(lists, 3);
}

void TestHostCommunication::ReportsAnExpiredSessionOnce()
{
    QSignalSpy expiries(m_service.get(), &CommunicationService::SessionExpired);
    QSignalSpy answers(m_service.get(), &VTCommunicationInterface::UserInfoResponse);
    m_server->SetReplies({StandInServer::Http(401, "{}")});
    m_service->GetUserInfo(m_status, Request());
    m_service->GetUserInfo(m_status, Request());
    QTRY_COMPARE(answers.count(), 2);
    QCOMPARE(expiries.count(), 1);
    m_service->SignIn(QStringLiteral("demo"), QStringLiteral("wrong"));
    m_service->GetUserInfo(m_status, Request());
    QTRY_COMPARE(expiries.count(), 2);
}

QTEST_GUILESS_MAIN(TestHostCommunication)
#include "tst_host_communication.moc"
