#include "farm/http/account_turns.h"
#include "tests/farm/farm_at_work.h"

#include <future>

using namespace farm;

namespace {

QByteArray Post()
{
    return "POST /api/v1/session HTTP/1.1\r\nHost: x\r\n";
}

const auto& Beginnings()
{
    static const std::tuple<const char*, QByteArray> rows[] = {
        {"part of the headers", "GET /api/v1/health HTTP/1.1\r\nHo"},
        {"part of a body", Post() + "Content-Length: 1000\r\n\r\n{"},
        {"part of a long body", Post() + "Content-Length: 500000\r\n\r\n" + QByteArray(40000, ' ')},
        {"a body that waits to be asked for", Post() + "Content-Length: 1000\r\nExpect: x\r\n\r\n"},
    };
    return rows;
}

constexpr qint64 LargeBytes = 6'000'000;
// A path below a job of two frames, what makes the answer large, and the number of clients.
const std::tuple<const char*, const char*, const char*, int> LargeAnswers[] = {
    {"a picture", "/files/frame_0001.png",
        "UPDATE frames SET finished_at = 1, file = 'frame_0001.png', size = 6000000, checksum = 'x' WHERE "
        "number = 1",
        400},
    {"a long log", "/frames/1/log",
        "INSERT INTO frame_logs(job, frame, text) VALUES (1, 1, hex(zeroblob(3500000)))", 1},
};

} // namespace

/// Connections whose clients are slow. There are more of them than the farm has threads.
class ConnectionsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_farm = std::make_unique<FarmAtWork>();
        m_farm->settings.limits = {{1000, 100}, {1000, 100}, {1000, 100}, {1000, 100}};
    }

    // The rest of their requests never comes; the farm gives them up.
    void ClientsThatNeverFinishTakeNoThreads_data() { AddRows(Beginnings()); }
    void ClientsThatNeverFinishTakeNoThreads()
    {
        m_farm->Start();
        const qint64 alone = TimeOfRequests();
        std::vector<std::unique_ptr<QTcpSocket>> clients(400);
        for (auto& client : clients)
            client = m_farm->SendRaw(std::get<1>(Row(Beginnings())));
        QVERIFY(TimeOfRequests() < 4000 + 10 * alone);
        clients.front()->waitForDisconnected(Patience);
        QCOMPARE(clients.front()->state(), QAbstractSocket::UnconnectedState);
    }

    void AnAccountLeavesRoomForOthers()
    {
        m_farm->data.Add("bob", "b");
        m_farm->settings.limits.requestsAtOnce = 1;
        m_farm->settings.limits.requestsWaiting = 0;
        const QByteArray body = "{\"ids\":[\"" + m_farm->Add(1).toLatin1() + "\"]}";
        m_farm->Start();
        const QString ann = m_farm->token;
        const QString bob = m_farm->SignIn("bob", "b");
        std::unique_ptr<QTcpSocket> client;
        // Ann's action waits for the end of this change.
        m_farm->data.database.Write([&](SQLite::Database&) {
            client
                = m_farm->SendRaw("POST /api/v1/jobs/stop HTTP/1.1\r\nAuthorization: Bearer " + ann.toLatin1()
                    + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
            m_farm->token = ann;
            EVENTUALLY_COMPARE(m_farm->Get("/account"_s).status, 429);
            QCOMPARE(m_farm->Post("/jobs"_s, {}).status, 429);
            QCOMPARE(m_farm->Get("/jobs/x/files"_s).status, 429);
            QCOMPARE(m_farm->Get("/uploads/x"_s).status, 404);
            m_farm->token = bob;
            QCOMPARE(m_farm->Get("/account"_s).status, 200);
        });
        EVENTUALLY(client->peek(100).startsWith("HTTP/1.1 200"));
        m_farm->token = ann;
        EVENTUALLY_COMPARE(m_farm->Get("/account"_s).status, 200);

        AccountTurns turns(1, 1);
        AccountTurns::Turn first = turns.Take(1);
        auto second = std::async(std::launch::async, [&turns] { return turns.Take(1); });
        QVERIFY(turns.Take(2));
        first.reset();
        QVERIFY(second.get());
    }

    void ClientsThatTakeTheirAnswersSlowlyTakeNoThreads_data() { AddRows(LargeAnswers); }
    void ClientsThatTakeTheirAnswersSlowlyTakeNoThreads()
    {
        const auto& [name, path, change, count] = Row(LargeAnswers);
        const QString id = m_farm->Add(2);
        m_farm->data.Change(change);
        QFile picture(m_farm->Path("jobs/%1/frame_0001.png"_s.arg(id)));
        QVERIFY(QDir().mkpath(QFileInfo(picture).path()) && picture.open(QIODevice::WriteOnly)
            && picture.resize(LargeBytes));
        m_farm->Start();
        const QByteArray request = "GET /api/v1/jobs/" + id.toLatin1() + path
            + " HTTP/1.1\r\nAuthorization: Bearer " + m_farm->token.toLatin1() + "\r\n\r\n";
        const qint64 alone = TimeOfRequests();
        std::vector<std::unique_ptr<QTcpSocket>> clients;
        clients.resize(std::size_t(count));
        for (auto& client : clients) {
            client = m_farm->SendRaw(request);
            client->setReadBufferSize(1000);
        }
        QVERIFY(TimeOfRequests() < 4000 + 10 * alone);
        // Nothing is missing in the end.
        qint64 bytes = 0;
        QTcpSocket& client = *clients.back();
        client.setReadBufferSize(0);
        QByteArray last;
        EVENTUALLY(
            (last = client.readAll(), bytes += last.size(), client.state() == QTcpSocket::UnconnectedState));
        bytes += client.readAll().size();
        QVERIFY2(bytes > LargeBytes, qPrintable(QString::number(bytes)));
    }

private:
    /// @return ms that twenty requests of another client take; each failed one counts as a minute.
    qint64 TimeOfRequests()
    {
        QElapsedTimer clock;
        clock.start();
        qint64 failed = 0;
        for (int request = 0; request < 20; ++request)
            failed += m_farm->Get("/health"_s).status == 200 ? 0 : 60000;
        return clock.elapsed() + failed;
    }

    std::unique_ptr<FarmAtWork> m_farm;
};

QTEST_GUILESS_MAIN(ConnectionsTest)
#include "tst_farm_connections.moc"
