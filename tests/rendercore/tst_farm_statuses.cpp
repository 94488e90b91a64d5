// Submissions and downloads with each HTTP status that the farm may answer.
#include "host/rendercore/download/download_queue.h"
#include "host/rendercore/submit/submit_worker.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

namespace {

using Obstacle = StageOutcome::Obstacle;

enum DownloadStatus { Finished = 2, Failed = 3 };
enum class Effect { Told, WaitsForFarm, WaitsAlone, WaitsToldWhy };

struct Status
{
    const char* name;
    int status;
    Effect effect;
    const char* headers = "";
    const char* word = "";
};
const Status statuses[] = {
    {"no content", 204, Effect::Told},
    {"moved", 301, Effect::WaitsToldWhy, "Location: /elsewhere\r\n"},
    {"redirected", 302, Effect::WaitsToldWhy, "Location: http://127.0.0.1:1/elsewhere\r\n"},
    {"nowhere to go", 307, Effect::WaitsToldWhy},
    {"bad request", 400, Effect::Told},
    {"to be paid for", 402, Effect::Told},
    {"forbidden", 403, Effect::Told},
    {"of a proxy", 407, Effect::WaitsToldWhy, "Proxy-Authenticate: Basic realm=\"x\"\r\n"},
    {"of a proxy, without its header", 407, Effect::WaitsToldWhy},
    {"timed out", 408, Effect::WaitsAlone},
    {"gone", 410, Effect::Told},
    {"teapot", 418, Effect::Told},
    {"refused content", 422, Effect::Told},
    {"too early", 425, Effect::WaitsAlone},
    {"too many requests", 429, Effect::WaitsForFarm, "Retry-After: 1\r\n"},
    {"for legal reasons", 451, Effect::Told},
    {"internal", 500, Effect::WaitsAlone},
    {"not implemented", 501, Effect::Told},
    {"bad gateway", 502, Effect::WaitsAlone},
    {"not available", 503, Effect::WaitsAlone, "Retry-After: 1\r\n"},
    {"gateway timed out", 504, Effect::WaitsAlone},
    {"HTTP version", 505, Effect::Told},
    {"disk full", 507, Effect::WaitsForFarm, "", "disk_full"},
    {"quota", 507, Effect::Told, "", "quota_exceeded"},
    {"from no list", 999, Effect::Told},
};

constexpr char Content[] = "a frame";

StandInServer::Reply Answer(const Status& row)
{
    const QByteArray body = R"({"error": ")" + QByteArray(row.word) + R"(", "message": "So it is."})";
    return StandInServer::Http(row.status, row.status == 204 ? QByteArray() : body, row.headers);
}

QByteArray Entry(const char* name)
{
    return R"({"name": ")" + QByteArray(name) + R"(", "size": 7, "checksum": ")"
        + QCryptographicHash::hash(Content, QCryptographicHash::Sha256).toHex() + "\"}";
}

} // namespace

class FarmStatusesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_server = std::make_unique<StandInServer>();
        m_access = {FarmApiRoot(m_server->Url()), "abc"_s, "farm/ann"_s, m_folder->filePath("frames"_s)};
        m_access.feed = &m_feed;
        m_feed.EndSession();
        m_feed.BeginSession("abc");
        m_feed.Look();
    }

    void EndsOrPostponesASubmission_data() { AddRows(statuses); }
    void EndsOrPostponesASubmission()
    {
        const Status& row = Row(statuses);
        m_server->SetReplies({Answer(row)});
        StageRequest request;
        request.task.next = SubmitStage::Submit;
        request.access = m_access;
        request.interrupted = std::make_shared<std::atomic<bool>>(false);
        const StageOutcome outcome = SubmitWorker().Run(request, [](int, const QString&) {});
        const bool isTold = row.effect == Effect::Told;
        QCOMPARE(outcome.kind, isTold ? StageOutcome::Kind::Failed : StageOutcome::Kind::TryAgain);
        const bool isAlone = isTold || row.effect == Effect::WaitsAlone;
        QCOMPARE(outcome.obstacle, isAlone ? Obstacle::Request : Obstacle::Farm);
        const QString reason = outcome.message.Text();
        QCOMPARE(IsTold(reason), isTold || row.effect == Effect::WaitsToldWhy);
        QCOMPARE(m_server->Requests().size(), 1);
        QCOMPARE(m_feed.Look().state.Entries().size(), 1);
    }

    void EndsOrPostponesADownload_data() { AddRows(statuses); }
    void EndsOrPostponesADownload()
    {
        const Status& row = Row(statuses);
        const auto whole = StandInServer::Http(200, Content);
        const auto list
            = StandInServer::Http(200, R"({"data": {"list": [)" + Entry("a") + "," + Entry("b") + "]}}");
        // The order is refused or postponed, then one of the two frames is.
        m_server->SetReplies({Answer(row), list, Answer(row), whole});
        DownloadLimits limits;
        limits.transfers = limits.lists = 1; // the server's replies come in order
        limits.http.attempts = 1;
        limits.firstPause = 5;
        DownloadQueue queue(m_folder->filePath("transfer"_s), limits);
        queue.SetAccess(m_access);
        const QSignalSpy notices(&queue, &DownloadQueue::Notice);
        const QVariantMap order {{"subDir"_s, "12_shot"_s}, {"manual"_s, 1}};
        queue.Order({{"j0"_s, order}});
        const bool isTold = row.effect == Effect::Told;
        if (isTold) {
            const QString store = m_folder->filePath("transfer/downloads.sqlite"_s);
            EVENTUALLY(m_server->Requests().size() == 1
                && DownloadStore(store).OpenOrders(m_access.owner, 2).isEmpty());
            EVENTUALLY_COMPARE(notices.count(), 1);
            const QString notice = notices[0][0].toString();
            QVERIFY2(notice.contains("12_shot"_s) && IsTold(notice), qPrintable(notice));
            queue.Order({{"j1"_s, order}});
        }
        const auto task = [&queue](int i) { return queue.Tasks()->values().value(i).toMap(); };
        EVENTUALLY_COMPARE(task(1).value("status"_s).toInt(), Finished);
        EVENTUALLY_COMPARE(task(0).value("status"_s).toInt(), isTold ? Failed : Finished);
        const QString message = task(0).value("msg"_s).toString();
        QVERIFY2(!isTold || IsTold(message), qPrintable(message));
        QCOMPARE(m_server->Requests().size(), isTold ? 4 : 5);
        QCOMPARE(notices.count(), int(isTold));
        const ConnectionPicture picture = m_feed.Look();
        QVERIFY(!picture.state.Entries().isEmpty() && !picture.state.FailingSince().isValid());
        QCOMPARE(picture.down.count, 1);
    }

private:
    static bool IsTold(const QString& message)
    {
        const Status& row = Row(statuses);
        return message.contains("So it is."_s) || (row.status == 204 && message.contains("204"_s));
    }

    ConnectionFeed m_feed;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StandInServer> m_server;
    FarmAccess m_access;
};

QTEST_GUILESS_MAIN(FarmStatusesTest)
#include "tst_farm_statuses.moc"
