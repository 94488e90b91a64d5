#include "host/farmclient/connection_text.h"
#include "host/mainform/connection_strip.h"
#include "host/services/communication_service.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

namespace {

QDateTime Start()
{
    return QDateTime(QDate(2026, 11, 22), QTime(22, 43));
}

/// Milliseconds after the start, the request, and the status that it meets.
using Event = std::tuple<int, QByteArray, int>;
using Story = std::tuple<const char*, QVector<Event>, int, const char*, int>;

/// Exchanges, a time after the start, the text at this time, and the number of failures that can be read.
const auto& Stories()
{
    const Event listed {0, "GET /jobs?page=1", 0};
    const Event lost {60'000, "GET /account", FarmFault::Unreachable};
    const Event lostAgain {62'000, "GET /jobs?page=1", FarmFault::Unreachable};
    static const Story rows[] = {
        {"nothing yet", {}, 0, "Connected", 0},
        {"a failure", {listed, lost}, 64'000, "Trying again…", 1},
        {"an outage", {listed, lost, lostAgain}, 66'000, "Not reachable since 22:44, list as of 22:43", 1},
        {"an outage by several causes", {lost, {61'000, "GET /account", FarmFault::TimedOut}, lostAgain},
            66'000, "Not reachable since 22:44", 2},
        {"an outage overnight", {listed, lost}, 90'000'000,
            "Not reachable since 11-22 22:44, list as of 11-22 22:43", 1},
        {"the farm is back", {lost, {70'000, "GET /account", 0}}, 71'000, "Connected", 1},
        {"it is lost twice", {lost, {61'000, "GET /account", 0}, lostAgain}, 63'000, "Trying again…", 2},
        {"it refuses a request", {lost, {61'000, "POST /jobs", 400}}, 70'000, "Connected", 2},
        {"it refuses what the client expects",
            {{0, "GET /account", 401}, {0, "POST /jobs", 409}, {0, "GET /jobs/7", 404},
                {0, "PUT /uploads/7?x", 404}},
            6000, "Connected", 0},
        {"it refuses a deleted job", {{0, "POST /jobs/stop", 404}, {9, "POST /jobs/stop", 404}}, 6000,
            "Connected", 1},
        {"a proxy answers", {{0, "GET /account", 407}}, 6000, "Not reachable since 22:43", 1},
        {"a gateway answers", {{0, "GET /account", 502}}, 6000, "Not reachable since 22:43", 1},
    };
    return rows;
}

ConnectionState Told(const QVector<Event>& events)
{
    ConnectionState state;
    for (const auto& [ms, request, status] : events) {
        const int blank = request.indexOf(' ');
        state.Apply(
            {Start().addMSecs(ms), request.left(blank), request.mid(blank + 1), {status, 1, "words"_s}});
    }
    return state;
}

} // namespace

/// The state of the connection as the user is told of it.
class TestHostConnection : public QObject
{
    Q_OBJECT

private slots:
    void SaysHowItIs_data() { AddRows(Stories()); }
    void SaysHowItIs()
    {
        const auto& [name, events, ms, text, entries] = Row(Stories());
        const ConnectionState state = Told(events);
        const QDateTime now = Start().addMSecs(ms);
        QCOMPARE(ConnectionText::Status(state, now), QString::fromUtf8(text));
        QCOMPARE(state.Entries().size(), entries);
        const QDateTime next = state.NextChange(now);
        QVERIFY(!next.isValid() || next > now);
        QCOMPARE(ConnectionText::History(state, now).count("\n\n"_s), qMax(0, entries - 1));
    }

    void TellsARefusalForAWhile()
    {
        ConnectionState state = Told({{0, "POST /jobs", 400}});
        QCOMPARE(ConnectionText::Failure(state.News(Start())->latest), "Submitting a job: words."_s);
        QCOMPARE(state.NextChange(Start()), Start().addMSecs(ConnectionState::RecentTime));
        QVERIFY(!state.News(Start().addMSecs(ConnectionState::RecentTime)));
        state.MarkRead();
        QVERIFY(!state.News(Start()));
        for (int i = 0; i < 50; ++i)
            state.Apply({Start(), "POST", "/jobs", {500, 0, QString::number(i)}});
        QCOMPARE(state.Entries().size(), ConnectionState::MostEntries);
        QCOMPARE(state.Entries().constFirst().latest.fault.words, "49"_s);
    }

    void FollowsTheFarm()
    {
        StandInServer server;
        ConnectionFeed feed;
        HttpLimits limits;
        limits.attempts = 1;
        CommunicationService service(limits);
        service.SetFeed(&feed);
        service.SetServerUrl(server.Url());
        service.Initialize({});
        server.SetReplies({StandInServer::Data("{'list': [], 'total': 0}")});
        server.SetReplyTo("/jobs/stop", StandInServer::Http(500, R"({"message": "<b>No &more"})"));
        ConnectionStrip strip(&feed, nullptr);
        strip.show();
        QCOMPARE(strip.text(), "Connected"_s);

        server.Refuse();
        service.GetJobList(1, {});
        EVENTUALLY_COMPARE(strip.text(), "Trying again…"_s);
        QCOMPARE(strip.property("phase").toString(), "trying"_s);
        server.Listen();
        service.GetJobList(1, {});
        EVENTUALLY_COMPARE(strip.text(), "Connected"_s);
        QVERIFY(strip.Picture().state.ListTime().isValid());
        service.StopJobs(1, {});
        EVENTUALLY_COMPARE(strip.text(), "Stopping jobs: <b>No &&more."_s);
        QVERIFY(strip.toolTip().contains("&lt;b&gt;No"_s));
        QCOMPARE(strip.accessibleName(), "Stopping jobs: <b>No &more."_s);
        feed.MarkRead();
        EVENTUALLY_COMPARE(strip.text(), "Connected"_s);
    }

    void TakesNoLateReportsOfAnEndedSession()
    {
        ConnectionFeed feed;
        const auto reported = [&feed](const QByteArray& token) {
            feed.Report("POST", "/jobs", {400, 0, "words"_s}, token);
            return feed.Look().state.Entries().size();
        };
        feed.BeginSession("old");
        QCOMPARE(reported("old"), 1);
        feed.EndSession();
        QCOMPARE(reported("old"), 0);
        feed.BeginSession("new");
        QCOMPARE(reported("old"), 0);
        QCOMPARE(reported({}), 1); // a request for a session
    }

    void LooksAtMostOnceASecondAndOnlyWhileItIsVisible()
    {
        ConnectionFeed feed;
        ConnectionStrip strip(&feed, nullptr);
        strip.show();
        QSignalSpy updates(&strip, &ConnectionStrip::Updated);
        {
            const ConnectionFeed::Transfer up(&feed, ConnectionFeed::Up, "harbour"_s);
            const ConnectionFeed::Transfer down(&feed, ConnectionFeed::Down, "1.png"_s);
            const ConnectionFeed::Transfer other(&feed, ConnectionFeed::Down, "2.png"_s);
            QElapsedTimer time;
            time.start();
            while (updates.count() < 2) {
                up.Count(2000);
                feed.Report("GET", "/account", {});
                QTest::qWait(1);
            }
            QVERIFY2(time.elapsed() >= 1000, QByteArray::number(time.elapsed()));
            QVERIFY(QRegularExpression("^Connected · ↑ [0-9.]+ [kM]B/s harbour · ↓ 2 frames$"_s)
                        .match(strip.text())
                        .hasMatch());
        }
        EVENTUALLY_COMPARE(strip.text(), "Connected"_s);
        strip.hide();
        updates.clear();
        feed.Report("GET", "/account", {FarmFault::TimedOut});
        QCoreApplication::processEvents();
        QVERIFY(updates.isEmpty());
        strip.show();
        QCOMPARE(strip.text(), "Trying again…"_s);
    }
};

QTEST_MAIN(TestHostConnection)
#include "tst_host_connection.moc"
