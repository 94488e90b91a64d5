#include "host/services/communication_service.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/waiting.h"

using namespace FarmProtocol;
using Reply = StandInServer::Reply;
using Service = CommunicationService;
using Operation = int (Service::*)(const QVariant&, const QVariantHash&);

namespace {

// An answer to any of the requests.
QByteArray Account()
{
    return R"({"loginname": "demo", "username": "u1", "data": {"token": "abc", "userInfo": {}, "list": [], "total": 0}})";
}

QByteArray Jobs()
{
    return R"({"data": {"list": [{"job_id": "7"}], "total": 1}})";
}

QByteArray Session()
{
    return R"({"loginname": "demo", "username": "u1", "data": {"token": "abc"}})";
}

const Reply good = StandInServer::Http(200, Account());

Reply Compressed(const QByteArray& body, int cut = 0)
{
    constexpr int SizeOfQt = 4; // bytes before the zlib stream
    return StandInServer::Http(
        200, qCompress(body).mid(SizeOfQt).chopped(cut), "Content-Encoding: deflate\r\n");
}

constexpr int AnyNumber = -1; // Qt repeats such a request by itself

struct Behaviour
{
    const char* name;
    QList<Reply> replies; ///< none: connections are refused
    int code;
    int requests = 1;           ///< how often a repeatable request is sent
    int codeOfOne = 0;          ///< the code of a request that is not repeated, where it differs
    int attemptTime = Patience; // ms
};

const auto& Behaviours()
{
    static const Behaviour rows[] = {
        {"success", {good}, 200},
        {"redirect", {StandInServer::Http(302, {}, "Location: /elsewhere\r\n"), good}, 302},
        {"failures, then success", {StandInServer::Http(500), StandInServer::Http(503), good}, 200, 3, 500},
        {"asks to wait an hour", {StandInServer::Http(429, "{}", "Retry-After: 3600\r\n"), good}, 200, 2,
            429},
        {"refused", {}, FarmFault::Unreachable, 0},
        {"closed without an answer", {Reply {}}, FarmFault::Unreachable, AnyNumber},
        {"always cut off", {Reply {good.bytes.chopped(10)}}, FarmFault::Unreachable, 3},
        {"of a proxy", {StandInServer::Http(407)}, 407},
        {"silent", {StandInServer::Held({})}, FarmFault::TimedOut, 3, 0, 400},
        {"stalled", {Reply {good.bytes.chopped(10), false, 0, StandInServer::Stall}}, FarmFault::TimedOut, 3,
            0, 400},
        {"endless", {Reply {"HTTP/1.1 200 OK\r\n\r\n", false, 0, StandInServer::Flood}}, FarmFault::TooLarge},
        {"huge", {StandInServer::Http(200, QByteArray(200000, ' ') + Account())}, FarmFault::TooLarge},
        {"slow", {Reply {StandInServer::Http(200, Account() + QByteArray(90000, ' ')).bytes, false, 5000}},
            200, 1, 0, 1000},
        {"dripping", {Reply {good.bytes, false, 1}}, FarmFault::TimedOut, 3, 0, 500},
        {"compressed", {Compressed(Account())}, 200},
        {"compressed and huge", {Compressed(QByteArray(200000, ' ') + Account())}, FarmFault::TooLarge},
        {"compressed and cut", {Compressed(Account(), 8)}, FarmFault::NotJson},
        {"a portal's page", {StandInServer::Http(200, "<html>")}, FarmFault::NotJson},
        {"half an object", {StandInServer::Http(200, Account().chopped(2))}, FarmFault::NotJson},
    };
    return rows;
}

/// Name and password in the system's settings and as typed, where the proxy wants "ann:secret"; the status that follows.
const std::tuple<const char*, const char*, const char*, int> logins[] = {
    {"in the settings", "secret", "", 200},
    {"typed", "", "secret", 200},
    {"typed, other than in the settings", "wrong", "secret", 200},
    {"wrong in the settings", "wrong", "", 407},
    {"typed wrong", "", "wrong", 407},
    {"not known", "", "", 407},
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

const auto& Sendings()
{
    const QByteArray page = "GET /api/v1/jobs?page=3&pageSize=18";
    const QByteArray tooLong = '"' + QByteArray(4200, 'x') + '"';
    const QByteArray ids = R"({"id[0]": "a", "id[1]": "b", "id[3]": "d"})";
    const QByteArray twoIds = R"({"ids":["a","b"]})";
    static const Sending rows[] = {
        {"filtered jobs", &Service::GetJobList, Search("\"{a+b&c=%41#\u00e9}\""),
            page + "&conditions=%7Ba%2Bb%26c%3D%2541%23%C3%A9%7D"},
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
    return rows;
}

/// Successful answers that the service takes or refuses.
const auto& Bodies()
{
    static const std::tuple<Check, QByteArray, bool> rows[] = {
        {IsSession, Session().replace("abc", ""), false},
        {IsSession, Session().replace("abc", "a\\r\\nX: y"), false},
        {IsJobList, R"({"data": {"total": 1001, "list": [)" + QByteArray("{},").repeated(1000) + "{}]}}",
            false},
        {IsJobList, R"({"data": {"total": 1e18, "list": []}})", false},
        {IsUserInfo, R"({"data": {"userInfo": []}})", false},
        {IsJobInfo, R"({"data": {"jobDatas": {"jobStatus": 4}}})", true},
        {IsJobInfo, R"({"data": {"jobStatus": 4}})", false},
    };
    return rows;
}

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

QVariantMap Json(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object().toVariantMap();
}

/// The service with the session "abc", and its answers.
struct Client
{
    explicit Client(const QUrl& server, int attemptTime = Patience)
        : service(QuickLimits(attemptTime))
    {
        service.SetServerUrl(server);
        service.Initialize({});
        service.Show(status, {});
    }

    /// Sends a request with the members of a JSON object.
    int Send(Operation operation, const QByteArray& json = "{}")
    {
        QVariantHash request = QJsonDocument::fromJson(json).object().toVariantHash();
        request.insert("token"_s, "abc"_s);
        return (service.*operation)(status, request);
    }

    CommunicationService service;
    QVariant status;
    QSignalSpy signIns {&service, &VTCommunicationInterface::SignInResponse};
    QSignalSpy signOuts {&service, &VTCommunicationInterface::SignOutResponse};
    QSignalSpy accounts {&service, &VTCommunicationInterface::UserInfoResponse};
    QSignalSpy lists {&service, &VTCommunicationInterface::JobListResponse};
    QSignalSpy jobs {&service, &VTCommunicationInterface::JobInfoResponse};
    QSignalSpy expiries {&service, &CommunicationService::SessionExpired};
};

} // namespace

/// The communication service against a real server on a real socket.
class TestHostCommunication : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_server = std::make_unique<StandInServer>();
        m_client = std::make_unique<Client>(m_server->Url());
    }

    void cleanup() { m_client.reset(); }

    void AnswersWhateverTheServerDoes_data() { AddRows(Behaviours()); }
    void AnswersWhateverTheServerDoes()
    {
        const Behaviour& row = Row(Behaviours());
        CheckAnswer(
            row, [](Client& client) { client.Send(&Service::GetJobList); }, true);
        init();
        CheckAnswer(
            row, [](Client& client) { client.Send(&Service::RestartJobs); }, false);
        init();
        CheckAnswer(
            row, [](Client& client) { client.service.SignIn("demo"_s, "secret"_s); }, false);
    }

    void RefusesIncompleteAnswers()
    {
        for (const auto& [check, body, isComplete] : Bodies())
            QVERIFY2(check(QJsonDocument::fromJson(body).object()) == isComplete, body.left(100));
    }

    void TrustsNoUnknownCertificate()
    {
        const QString file = QFINDTESTDATA("self_signed.pem");
        StandInServer server(file);
        server.SetReplies({good});
        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        const auto restore = qScopeGuard([&] { QSslConfiguration::setDefaultConfiguration(before); });
        for (const bool isTrusted : {false, true}) {
            QSslConfiguration tls = before;
            if (isTrusted)
                tls.addCaCertificates(file);
            QSslConfiguration::setDefaultConfiguration(tls);
            Client client(server.Url());
            client.service.SignIn("demo"_s, "secret"_s);
            EVENTUALLY_COMPARE(client.signIns.count(), 1);
            QCOMPARE(client.signIns[0][0].toInt(), isTrusted ? 200 : FarmFault::Untrusted);
            QCOMPARE(server.Requests().size(), isTrusted ? 1 : 0);
        }
        QVERIFY(server.Requests().constFirst().contains("secret"));
    }

    void PassesAProxyThatAsks_data() { AddRows(logins); }
    void PassesAProxyThatAsks()
    {
        const auto& [name, set, typed, code] = Row(logins);
        const auto restore = qScopeGuard([] { QNetworkProxyFactory::setUseSystemConfiguration(true); });
        for (int request = 0; request < 3; ++request) {
            StandInServer proxy;
            proxy.AskFor("ann:secret");
            proxy.SetReplies({good});
            QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, "127.0.0.1"_s,
                quint16(proxy.Url().port()), qstrlen(set) > 0 ? "ann"_s : QString(), QLatin1String(set)});
            Client client(QUrl("http://farm.example"_s));
            QSignalSpy restarts(&client.service, &VTCommunicationInterface::RestartJobResponse);
            if (qstrlen(typed) > 0)
                client.service.SetProxyLogin({"ann"_s, QLatin1String(typed)});
            if (request == 0)
                client.service.SignIn("demo"_s, "demo"_s);
            else
                client.Send(request == 1 ? &Service::GetUserInfo : &Service::RestartJobs);
            EVENTUALLY_COMPARE(client.signIns.count() + client.accounts.count() + restarts.count(), 1);
            const auto answers = client.signIns + client.accounts + restarts;
            QCOMPARE(answers.at(0).at(0).toInt(), code);
            QCOMPARE(proxy.Requests().size(), code == 200 ? 1 : 0);
        }
    }

    void SignsIn()
    {
        m_server->SetReplies({StandInServer::Http(200, Session())});
        m_client->service.SignIn("demo"_s, "secret"_s);
        EVENTUALLY_COMPARE(m_client->signIns.count(), 1);
        QCOMPARE(m_client->signIns[0][1].toMap(), Json(Session()));
        QVERIFY(m_server->Requests().constFirst().startsWith("POST /api/v1/session "));
        QVERIFY(m_server->Requests().constFirst().endsWith(R"({"password":"secret","username":"demo"})"));
    }

    void SendsRequests_data() { AddRows(Sendings()); }
    void SendsRequests()
    {
        m_server->SetReplies({StandInServer::Http(404)});
        Ask(Row(Sendings()).operation, Row(Sendings()).request);
        const QByteArray sent = m_server->Requests().constFirst();
        QCOMPARE(sent.left(sent.indexOf(" HTTP/1.1")), Row(Sendings()).line);
        QCOMPARE(sent.mid(sent.indexOf("\r\n\r\n") + 4), Row(Sendings()).body);
        QVERIFY(sent.contains("\r\nAuthorization: Bearer abc\r\n"));
        QCOMPARE(sent.count("abc"), 1);
    }

    void EchoesTheRequestAlsoWhenItFails()
    {
        const QByteArray why = R"("message": "Arrears.", "data": {"notAllowedJobs": ["7"]})";
        const QByteArray echo = R"("identifier": 1)";
        const QByteArray echoOfJob = echo + R"(, "jobId": "j")";
        m_server->SetReplies(
            {StandInServer::Http(409, R"({"identifier": 9, "jobId": "forged", )" + why + "}")});
        const QByteArray echoOfList = echo + R"(, "conditions": "{}")";
        m_client->Send(&Service::GetJobList, "{" + echoOfList + "}");
        m_client->Send(&Service::GetJobInfo, "{" + echoOfJob + "}");
        EVENTUALLY(m_client->lists.count() == 1 && m_client->jobs.count() == 1);
        QCOMPARE(m_client->lists[0], QVariantList({409, Json("{" + echoOfList + "," + why + "}")}));
        QCOMPARE(m_client->jobs[0], QVariantList({409, Json("{" + echoOfJob + "," + why + "}")}));
    }

    void DropsTheOlderOfTwoJobLists()
    {
        const Reply list = StandInServer::Http(200, Jobs());
        m_server->SetReplies({StandInServer::Held(list), StandInServer::Held(list), list});
        Ask(&Service::GetJobList, R"({"identifier": 0, "page": 1})");
        Ask(&Service::GetJobList, R"({"identifier": 1, "page": 1})");
        Ask(&Service::GetJobList, R"({"identifier": 0, "page": 2})");
        EVENTUALLY_COMPARE(m_client->lists.count(), 1);
        m_server->Release(0);
        m_server->Release(1);
        EVENTUALLY_COMPARE(m_client->lists.count(), 2);
        for (const int identifier : {0, 1})
            QCOMPARE(m_client->lists[identifier][1].toMap().value("identifier"_s).toInt(), identifier);
    }

    void AnswersARefreshOnceWhileTheListArrives()
    {
        QSignalSpy stops(&m_client->service, &VTCommunicationInterface::StopJobResponse);
        const Reply list = StandInServer::Http(200, Jobs());
        m_server->SetReplies({StandInServer::Held(list), StandInServer::Http(200), list});
        Ask(&Service::GetJobList);
        m_client->Send(&Service::GetJobList);
        Ask(&Service::StopJobs);
        EVENTUALLY_COMPARE(stops.count(), 1);
        m_client->Send(&Service::GetJobList); // the list on its way may show the job as running
        EVENTUALLY_COMPARE(m_client->lists.count(), 1);
        QCOMPARE(m_server->Requests().size(), 3);
    }

    void DropsAnswersOfAnEndedSession()
    {
        const Reply held = StandInServer::Held(StandInServer::Http(200, Account()));
        m_server->SetReplies({held, StandInServer::Http(200), held, StandInServer::Http(200, Session())});
        Ask(&Service::GetUserInfo);
        Ask(&Service::SignOut);
        EVENTUALLY_COMPARE(m_client->signOuts.count(), 1);
        Ask(&Service::GetUserInfo);
        m_client->service.SignIn("demo"_s, "demo"_s);
        EVENTUALLY_COMPARE(m_client->signIns.count(), 1);

        m_server->Release(0);
        m_server->Release(2);
        Ask(&Service::GetUserInfo);
        EVENTUALLY_COMPARE(m_client->accounts.count(), 1);
        QCOMPARE(m_client->accounts[0][0].toInt(), FarmFault::NotJson);
    }

    void ReportsAnExpiredSessionOnce()
    {
        m_server->SetReplies({StandInServer::Http(401)});
        m_client->Send(&Service::GetUserInfo);
        m_client->Send(&Service::GetUserInfo);
        EVENTUALLY_COMPARE(m_client->accounts.count(), 2);
        QCOMPARE(m_client->expiries.count(), 1);
        m_client->service.SignIn("demo"_s, "wrong"_s);
        m_client->Send(&Service::GetUserInfo);
        EVENTUALLY_COMPARE(m_client->expiries.count(), 2);
    }

private:
    /// Sends one request, which is answered once, in a sentence unless it succeeds.
    void CheckAnswer(const Behaviour& row, const std::function<void(Client&)>& send, bool isRepeatable)
    {
        Client client(m_server->Url(), row.attemptTime);
        QSignalSpy restarts(&client.service, &VTCommunicationInterface::RestartJobResponse);
        m_server->SetReplies(row.replies);
        if (row.replies.isEmpty())
            m_server->Refuse();
        send(client);
        const auto answers = [&] { return QList<QVariantList>(client.lists + client.signIns + restarts); };
        QCOMPARE(answers().size(), 0);
        EVENTUALLY_COMPARE(answers().size(), 1);
        const int code = isRepeatable || row.codeOfOne == 0 ? row.code : row.codeOfOne;
        QCOMPARE(answers().constFirst()[0].toInt(), code);
        const int requests = isRepeatable ? row.requests : qMin(1, qAbs(row.requests));
        QVERIFY(requests == AnyNumber || m_server->Requests().size() == requests);
        const QString message = answers().constFirst()[1].toMap().value("message"_s).toString();
        QVERIFY2(code == 200 ? message.isEmpty() : message.endsWith(QLatin1Char('.')), qPrintable(message));
        QVERIFY(m_server->Flooded() < 32'000'000); // most of it in the sockets' buffers
    }

    /// Sends a request and waits until the server has it.
    void Ask(Operation operation, const QByteArray& json = "{}")
    {
        const int before = m_server->Requests().size();
        QCOMPARE(m_client->Send(operation, json), 0);
        EVENTUALLY_COMPARE(m_server->Requests().size(), before + 1);
    }

    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<Client> m_client;
};

QTEST_GUILESS_MAIN(TestHostCommunication)
#include "tst_host_communication.moc"
