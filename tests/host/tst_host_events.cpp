#include "host/farmclient/connection_feed.h"
#include "host/farmclient/farm_events.h"
#include "host/services/communication_service.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/waiting.h"

using Reply = StandInServer::Reply;

namespace {

/// The bytes of a stream, and the data of the events in it.
const auto& Streams()
{
    static const std::tuple<const char*, QByteArray, QByteArrayList> rows[] = {
        {"every end of line", "data:1\n\ndata: 2\r\n\r\ndata:  3\r\r", {"1", "2", " 3"}},
        {"several lines", "data: a\ndata\ndata: b: c\n\n", {"a\n\nb: c"}},
        {"other fields", ":\n\nevent: x\nid: 1\ndatas: 2\n\n\n\ndata: 3\n\n", {"3"}},
        {"incomplete", "data: 1\n\ndata: 2\n", {"1"}},
        {"too long", "data: 1\n\ndata: " + QByteArray(EventStream::Longest, 'x') + "\n\ndata: 2\n\n", {"1"}},
        {"too long in lines", QByteArray("data: xxxxxx\n").repeated(EventStream::Longest / 6) + '\n', {}},
    };
    return rows;
}

QByteArray Head()
{
    return "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n";
}

/// How a farm answers the request for its events, and whether it is asked again.
const std::tuple<const char*, Reply, bool> endings[] = {
    {"no events", StandInServer::Http(404), false},
    {"another method", StandInServer::Http(405), false},
    {"session over", StandInServer::Http(401), false},
    {"a portal's page", StandInServer::Http(200), false},
    {"busy", StandInServer::Http(503), true},
    {"ended", Reply {Head()}, true},
    {"endless line", Reply {Head(), false, 0, StandInServer::Flood}, true},
};

/// An event, the page that is asked for after it, the progress that the list then shows, and whether the farm is asked.
const std::tuple<const char*, QByteArray, int, int, bool> announcements[] = {
    {"a listed job", R"({"jobs":["7"],"records":[{"job_id":"7","job_progress":50}]})", 1, 50, false},
    {"a listed job and another",
        R"({"jobs":["6","7"],"records":[{"job_id":"6"},{"job_id":"7","job_progress":60}]})", 1, 60, false},
    {"another job", R"({"jobs":["6"],"records":[{"job_id":"6"}]})", 1, -1, false},
    {"another page", R"({"jobs":["7"],"records":[{"job_id":"7","job_progress":50}]})", 2, -1, true},
    {"a record is missing", R"({"jobs":["6","7"],"records":[{"job_id":"7","job_progress":50}]})", 1, -1,
        true},
    {"other lists", R"({"jobs":["7"],"list":true,"records":[{"job_id":"7","job_progress":50}]})", 1, -1,
        true},
};

struct Listener
{
    explicit Listener(const Reply& reply, int longestSilence = FarmEvents::LongestSilence)
        : events(&transport, "abc", nullptr, longestSilence)
    {
        server.SetReplies({reply});
        feed.BeginSession("abc");
        transport.SetFeed(&feed);
        transport.SetBaseUrl(server.Url());
    }

    int Requests() const { return server.Requests().size(); }
    bool IsFailing() { return feed.Look().state.FailingSince().isValid(); }

    StandInServer server;
    ConnectionFeed feed;
    HttpTransport transport;
    FarmEvents events;
};

} // namespace

class TestHostEvents : public QObject
{
    Q_OBJECT

private slots:
    void ReadsEventsInPieces_data() { AddRows(Streams()); }
    void ReadsEventsInPieces()
    {
        const auto& [name, bytes, events] = Row(Streams());
        EventStream stream;
        QByteArrayList read;
        for (const char byte : bytes)
            read += stream.Read(QByteArray(1, byte));
        QCOMPARE(read, events);
        QCOMPARE(stream.IsTooLong(), QByteArray(name).startsWith("too long"));
    }

    void AnswersWithAnnouncedRecords_data() { AddRows(announcements); }
    void AnswersWithAnnouncedRecords()
    {
        const auto& [name, event, page, progress, isAsked] = Row(announcements);
        StandInServer server;
        server.SetReplies({StandInServer::Data("{'list': [{'job_id': '7'}], 'total': 1}")});
        server.SetReplyTo("/events",
            {"HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n", false, 0, StandInServer::Stall});
        ConnectionFeed feed;
        CommunicationService service;
        service.SetFeed(&feed);
        service.SetServerUrl(server.Url());
        service.Initialize({});
        QSignalSpy changes(&service, &CommunicationService::FarmChanged);
        QSignalSpy lists(&service, &CommunicationService::JobListResponse);
        service.FollowChanges("abc"_s);
        EVENTUALLY_COMPARE(changes.count(), 1);
        service.GetJobList(1, {{"page"_s, 1}});
        EVENTUALLY_COMPARE(lists.count(), 1);

        const QDateTime listed = feed.Look().state.ListTime();
        QTest::qWait(2);
        server.Continue(0, "data: " + event + "\n\n");
        EVENTUALLY_COMPARE(changes.count(), 2);
        const bool isKnown = !isAsked || page != 1;
        QCOMPARE(feed.Look().state.ListTime() > listed, isKnown);
        // While the farm announces changes, it is not asked twice for one list, unless the user wants that.
        for (const int requests : {isAsked ? 3 : 2, isAsked ? 3 : 2, isAsked ? 4 : 3}) {
            const int answers = lists.count();
            if (answers == 3)
                service.DistrustAnnouncements();
            service.GetJobList(1, {{"page"_s, page}});
            EVENTUALLY_COMPARE(lists.count(), answers + 1);
            QCOMPARE(server.Requests().size(), requests);
        }
        const QVariantMap data = lists[1][1].toMap().value("data"_s).toMap();
        const QVariantMap job = data.value("list"_s).toList().value(0).toMap();
        QCOMPARE(job.value("job_progress"_s, -1).toInt(), progress);
        QCOMPARE(data.value("total"_s).toInt(), 1);
    }

    void AsksAgainWhereThatHelps()
    {
        std::vector<std::unique_ptr<Listener>> listeners;
        for (const auto& [name, reply, asksAgain] : endings)
            listeners.push_back(std::make_unique<Listener>(reply));
        // By the time the others have been asked three times, any further request of the rest would have been made,
        // too.
        const auto isExpected = [&](std::size_t at) {
            const int requests = listeners[at]->Requests();
            return std::get<bool>(endings[at]) ? requests > 2 : requests == 1;
        };
        for (std::size_t at = 0; at < listeners.size(); ++at)
            EVENTUALLY(isExpected(at));
        for (std::size_t at = 0; at < listeners.size(); ++at) {
            const QByteArray name = std::get<0>(endings[at]);
            QVERIFY2(isExpected(at), name);
            QCOMPARE(listeners[at]->feed.Look().state.Entries().isEmpty(), name != "busy");
        }
    }

    // A farm that hangs keeps its connections open.
    void NoticesAFarmThatFallsSilent()
    {
        Listener listener({Head(), false, 0, StandInServer::Stall}, 1000);
        EVENTUALLY(listener.Requests() > 1);
        QVERIFY(!listener.IsFailing());
        listener.server.SetReplies({Reply {{}, true}});
        EVENTUALLY(listener.IsFailing() && !listener.events.IsAnnouncing());
    }

    void FollowsTheServer()
    {
        Listener listener(StandInServer::Http(404));
        EVENTUALLY_COMPARE(listener.Requests(), 1);
        listener.server.Refuse();
        listener.events.Reopen();
        EVENTUALLY(listener.IsFailing());
        StandInServer other;
        other.SetReplies({Reply {
            Head() + "data: {\"jobs\":[\"7\"],\"account\":{\"x\":1}}\n\n", false, 0, StandInServer::Stall}});
        QList<FarmChanges> changes;
        connect(&listener.events, &FarmEvents::Changed, this,
            [&changes](const FarmChanges& announced) { changes.append(announced); });
        listener.events.Reopen();
        listener.transport.SetBaseUrl(other.Url());
        EVENTUALLY_COMPARE(changes.size(), 2);
        QVERIFY(!listener.IsFailing());
        QVERIFY(changes[0].list && changes[0].money);
        QVERIFY(changes[1].jobs == QStringList("7"_s) && !changes[1].list && changes[1].money);
        QVERIFY(other.Requests().constFirst().contains("\r\nAuthorization: Bearer abc\r\n"));
    }
};

QTEST_GUILESS_MAIN(TestHostEvents)
#include "tst_host_events.moc"
