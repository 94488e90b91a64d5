#include "farm_protocol.h"

#include <QJsonDocument>
#include <QtTest>

using namespace FarmProtocol;

Q_DECLARE_METATYPE(FarmProtocol::Check)

/// What passes for an answer and what does not.
class TestHostProtocol : public QObject
{
    Q_OBJECT

private slots:
    void ChecksSuccesses_data();
    void ChecksSuccesses();
    void KeepsRefusedJobsOfAFailure();
    void KeepsDotsInsideThePath_data();
    void KeepsDotsInsideThePath();
    void SendsLongConditionsInABody_data();
    void SendsLongConditionsInABody();
};

void TestHostProtocol::ChecksSuccesses_data()
{
    QTest::addColumn<Check>("check");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("sound");
    const auto session = [](const QByteArray& token) {
        return QByteArray(R"({"loginname": "demo", "username": "u", "data": {"token": ")" + token + R"("}})");
    };
    const auto row = [](const char* name, Check check, const QByteArray& body, bool sound) {
        QTest::newRow(name) << check << body << sound;
    };
    row("session", IsSession, session("abc"), true);
    row("session, empty token", IsSession, session(""), false);
    row("session, token with a line end", IsSession, session("abc\\r\\nX: y"), false);
    row("session, huge token", IsSession, session(QByteArray(5000, 'x')), false);
    row("session, numeric name", IsSession, R"({"loginname": 5, "username": "u", "data": {"token": "a"}})",
        false);
    row("session, data as text", IsSession, R"({"loginname": "d", "username": "u", "data": "token"})", false);
    row("jobs", IsJobList, R"({"data": {"list": [], "total": 0}})", true);
    row("jobs, no total", IsJobList, R"({"data": {"list": []}})", false);
    row("jobs, negative total", IsJobList, R"({"data": {"list": [], "total": -1}})", false);
    row("jobs, huge total", IsJobList, R"({"data": {"list": [], "total": 1e18}})", false);
    row("jobs, list as map", IsJobList, R"({"data": {"list": {}, "total": 0}})", false);
    row("jobs, data as null", IsJobList, R"({"data": null})", false);
    row("jobs, more than one may ask for", IsJobList,
        R"({"data": {"total": 1001, "list": [)" + QByteArray("{},").repeated(1000) + "{}]}}", false);
    row("account", IsUserInfo, R"({"data": {"userInfo": {}}})", true);
    row("account, userInfo as list", IsUserInfo, R"({"data": {"userInfo": []}})", false);
    row("projects", IsProjectList, R"({"data": []})", true);
    row("projects, data as map", IsProjectList, R"({"data": {}})", false);
    row("job", IsJobInfo, R"({"data": {"jobDatas": {"jobStatus": 4}}})", true);
    row("job, flat", IsJobInfo, R"({"data": {"jobStatus": 4}})", false);
}

void TestHostProtocol::ChecksSuccesses()
{
    QFETCH(Check, check);
    QFETCH(QByteArray, body);
    QFETCH(bool, sound);
    const QJsonObject object = QJsonDocument::fromJson(body).object();
    QVERIFY(!object.isEmpty());
    const Answer answer = Decode({200, object, {}}, check, {});
    QCOMPARE(answer.code, sound ? 200 : HttpResult::NotJson);
    QCOMPARE(answer.map.contains(QStringLiteral("data")), sound);
}

void TestHostProtocol::KeepsRefusedJobsOfAFailure()
{
    const QJsonObject body {{QStringLiteral("message"), QStringLiteral("Arrears.")},
        {QStringLiteral("data"),
            QJsonObject {{QStringLiteral("notAllowedJobs"), QJsonArray {QStringLiteral("7")}}}}};
    const Answer answer = Decode({409, body, QStringLiteral("Arrears.")}, IsAnyObject, {});
    QCOMPARE(answer.code, 409);
    QCOMPARE(answer.map.value(QStringLiteral("data"))
                 .toMap()
                 .value(QStringLiteral("notAllowedJobs"))
                 .toList()
                 .size(),
        1);
    QCOMPARE(answer.map.value(QStringLiteral("message")).toString(), QStringLiteral("Arrears."));
}

void TestHostProtocol::KeepsDotsInsideThePath_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("parent") << QStringLiteral("..") << QByteArray("/jobs/%2E%2E");
    QTest::newRow("version") << QStringLiteral("a.1") << QByteArray("/jobs/a.1");
}

void TestHostProtocol::KeepsDotsInsideThePath()
{
    QFETCH(QString, id);
    QFETCH(QByteArray, target);
    QCOMPARE(JobInfoRequest({{QStringLiteral("id"), id}}).target, target);
}

void TestHostProtocol::SendsLongConditionsInABody_data()
{
    QTest::addColumn<int>("idCount");
    QTest::addColumn<bool>("inBody");
    QTest::newRow("a few ids") << 18 << false;
    QTest::newRow("as many as a URL holds") << 140 << false;
    QTest::newRow("more than a URL holds") << 1000 << true;
}

void TestHostProtocol::SendsLongConditionsInABody()
{
    QFETCH(int, idCount);
    QFETCH(bool, inBody);
    const QStringList ids = QVector<QString>(idCount, QStringLiteral("0123456789abcdef01234567")).toList();
    const QString conditions = QStringLiteral("{\"job_guid\":\"%1\"}").arg(ids.join(QLatin1Char(',')));
    const HttpRequest request = JobListRequest({{QStringLiteral("page"), 2}, {QStringLiteral("pageSize"), 18},
        {QStringLiteral("conditions"), conditions}, {QStringLiteral("token"), QStringLiteral("abc")}});
    QCOMPARE(request.token, QByteArray("abc"));
    QVERIFY(request.repeatable);
    QVERIFY(request.target.size() < 8000);
    QCOMPARE(request.verb, QByteArray(inBody ? "POST" : "GET"));
    if (inBody) {
        QCOMPARE(request.target, QByteArray("/jobs/search"));
        const QJsonObject body {{QStringLiteral("page"), 2}, {QStringLiteral("pageSize"), 18},
            {QStringLiteral("conditions"), conditions}};
        QCOMPARE(QJsonDocument::fromJson(request.body).object(), body);
    } else {
        QVERIFY(request.body.isEmpty());
        QVERIFY(request.target.contains("%2C0123456789abcdef01234567%22%7D"));
    }
}

QTEST_GUILESS_MAIN(TestHostProtocol)
#include "tst_host_protocol.moc"
