// The stages of a submission, against a scripted server and on broken files.
#include "host/rendercore/submit/job_body.h"
#include "host/rendercore/submit/local_stages.h"
#include "host/rendercore/submit/submit_worker.h"
#include "host/rendercore/submit/task_packages.h"
#include "host/rendercore/submit/transfer_meter.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

using HttpReply = StandInServer::Reply;

namespace {

using Kind = StageOutcome::Kind;
using Stage = SubmitStage;

constexpr char FirstSum[] = "1111111111111111111111111111111111111111111111111111111111111111";
constexpr char SecondSum[] = "2222222222222222222222222222222222222222222222222222222222222222";

/// The farm's answer about an upload.
HttpReply Upload(int offset, int chunkSize = 4, const char* more = "", const char* id = "u")
{
    return StandInServer::Data("{'id': '" + QByteArray(id) + "', 'offset': " + QByteArray::number(offset)
        + ", 'chunkSize': " + QByteArray::number(chunkSize) + more + '}');
}

HttpReply Known(const char* checksum)
{
    const char* const quote = *checksum ? "'" : "";
    return StandInServer::Data("{'known': [" + QByteArray(quote) + checksum + quote + "]}");
}

HttpReply Unpacked(const char* path, const char* checksum)
{
    return StandInServer::Data(
        "{'files': [{'path': '" + QByteArray(path) + "', 'checksum': '" + checksum + "'}]}");
}

HttpReply Status(int status, const char* headers = "")
{
    return StandInServer::Http(status, R"({"error": "quota_exceeded", "message": "So it is."})", headers);
}

const char* const Unreadable
    = "failed 3 a wanted refused: /a: The farm's answer about an upload cannot be read.";
const char* const Damaged = "failed 3 a wanted refused: /a: The file arrived damaged at the farm.";
const char* const Refused = "failed 3 a wanted refused: /a: So it is.";
const char* const Incomplete
    = "failed 6 a wanted: The farm's answer is incomplete. Please continue the submission later.";
const char* const ToUpload = "again farm 0 s to upload a wanted";
const char* const Sent = "done to uncompress a wanted sent";
const char* const SentNow = "done to uncompress a wanted sent advanced";

struct StageCase
{
    const char* name;
    Stage stage;
    QList<HttpReply> replies;
    const char* outcome;
    const char* requests = nullptr; ///< verb, target and the body of a PUT; null where they do not matter
};

/// Two files, "a" with a package of ten bytes and "b" with one of three; the farm wants the first unless the stage asks.
const auto& StageCases()
{
    static const StageCase rows[] = {
        {"no scene", Stage::Analyze, {}, "failed 1: The scene file cannot be read."},
        {"no source", Stage::Compress, {}, "failed 2 a wanted: A file cannot be read*\n/a"},
        {"no package", Stage::Checksum, {}, "failed 2 a wanted: *0000.zip*"},
        {"one known", Stage::CopySame, {Known(FirstSum)}, "done to upload b wanted", "POST /contents/known"},
        {"busy", Stage::CopySame, {Status(503, "Retry-After: 7\r\n")},
            "again request 7 s to copysame a wanted"},
        {"too many", Stage::CopySame, {Status(429, "Retry-After: 7\r\n")},
            "again farm 7 s to copysame a wanted"},
        {"signed out", Stage::CopySame, {Status(401)}, "again session 0 s to copysame a wanted"},
        {"another shape", Stage::CopySame, {StandInServer::Data("[7]")}, Incomplete},
        {"uploads in chunks", Stage::Upload, {Upload(0), Upload(4), Upload(8), Upload(10)}, SentNow,
            "POST /uploads PUT /uploads/u?offset=0 0123 PUT /uploads/u?offset=4 4567 PUT /uploads/u?offset=8 "
            "89"},
        {"resumes", Stage::Upload, {Upload(6, 100), Upload(10)}, SentNow,
            "POST /uploads PUT /uploads/u?offset=6 6789"},
        {"sent before", Stage::Upload, {Upload(10)}, Sent, "POST /uploads"},
        {"unpacked before", Stage::Upload, {Upload(0, 4, ", 'unpacked': true")}, Sent, "POST /uploads"},
        {"another offset", Stage::Upload, {Upload(0), Status(409), Upload(8), Upload(10)}, SentNow,
            "POST /uploads PUT /uploads/u?offset=0 0123 GET /uploads/u PUT /uploads/u?offset=8 89"},
        {"stores nothing twice", Stage::Upload, {Upload(9), Upload(9), Upload(9), Upload(10)}, SentNow},
        {"stores nothing", Stage::Upload, {Upload(9)},
            "failed 3 a wanted refused: /a: The farm did not store the uploaded data.*"},
        {"ends in the middle", Stage::Upload, {Upload(0), Upload(4), Status(500)},
            "again request 0 s to upload a wanted advanced"},
        {"forgotten", Stage::Upload, {Upload(0), Status(404)}, "again request 0 s to upload a wanted"},
        {"beyond the end later", Stage::Upload, {Upload(0), Upload(11)}, Unreadable},
        {"quota", Stage::Upload, {Status(507)}, Refused},
        {"cut off", Stage::Upload, {Upload(0), HttpReply {Upload(4).bytes.chopped(9)}}, ToUpload},
        {"stalled", Stage::Upload,
            {Upload(0), HttpReply {Upload(4).bytes.chopped(9), false, 0, StandInServer::Stall}}, ToUpload},
        {"endless", Stage::Upload,
            {Upload(0), HttpReply {"HTTP/1.1 200 OK\r\n\r\n", false, 0, StandInServer::Flood}},
            "failed 3 a wanted refused: /a: The server's answer is too large."},
        {"a portal", Stage::Upload, {StandInServer::Http(200, "<html>")}, "failed 3*/a: *cannot be read."},
        {"beyond the end", Stage::Upload, {Upload(11)}, Unreadable},
        {"before the beginning", Stage::Upload, {Upload(-1)}, Unreadable},
        {"empty chunks", Stage::Upload, {Upload(0, 0)}, Unreadable},
        {"no id", Stage::Upload, {Upload(0, 4, "", "")}, Unreadable},
        {"an id to climb with", Stage::Upload, {Upload(0, 100, "", "../x?"), Upload(10)}, SentNow,
            "POST /uploads PUT /uploads/..%2Fx%3F?offset=0 0123456789"},
        {"unpacked", Stage::Uncompress, {Unpacked("a", FirstSum)}, "done to submit advanced",
            "POST /uploads/u/unpack"},
        {"unpacked to another content", Stage::Uncompress, {Unpacked("a", SecondSum)}, Damaged},
        {"another shape of files", Stage::Uncompress, {StandInServer::Data("{'files': 7}")}, Incomplete},
        {"unpacked to another place", Stage::Uncompress, {Unpacked("b", FirstSum)}, Damaged},
        {"package refused", Stage::Uncompress, {Status(422)}, Refused},
        {"upload forgotten", Stage::Uncompress, {Status(404)}, "again request 0 s to upload a wanted"},
        {"another is unpacked", Stage::Uncompress, {Status(409), Upload(10)},
            "again farm 0 s to uncompress a wanted", "POST /uploads/u/unpack GET /uploads/u"},
        {"upload not complete", Stage::Uncompress, {Status(409)}, "again request 0 s to upload a wanted"},
        {"submitted", Stage::Submit, {StandInServer::Data("{'job_increasement': '12'}")},
            "done to submit a wanted: 12", "POST /jobs"},
        {"half an answer", Stage::Submit, {StandInServer::Http(200, "{\"da")}, "failed 6*cannot be read."},
        {"no job", Stage::Submit, {StandInServer::Data("[7]")}, Incomplete},
        {"contents gone", Stage::Submit, {Status(409)}, "again request 0 s to copysame a wanted"},
        {"job refused", Stage::Submit, {Status(400)}, "failed 6 a wanted: So it is."},
    };
    return rows;
}

/// The percentages that a stage reports on two files of ten and three bytes. Only the first is packed, and sent early.
const std::tuple<const char*, Stage, QList<HttpReply>, const char*> ProgressCases[] = {
    {"analysis", Stage::Analyze, {}, "100"},
    {"packing", Stage::Compress, {}, "0 100"},
    {"checksums", Stage::Checksum, {}, "76 100"},
    {"known contents", Stage::CopySame, {Known("")}, "100"},
    {"upload", Stage::Upload, {Upload(1, 1), Upload(2, 1), Upload(3, 1)}, "76 92 100"},
    {"unpacking", Stage::Uncompress, {Unpacked("a", FirstSum), Unpacked("b", SecondSum)}, "50 100"},
};

QString Summary(const StageOutcome& outcome)
{
    static const char* const kinds[] = {"done", "interrupted", "again", "failed"};
    static const char* const obstacles[] = {"request", "farm", "session"};
    static const char* const stages[]
        = {"wait", "analyze", "compress", "checksum", "copysame", "upload", "uncompress", "submit"};
    QString text = QString::fromLatin1(kinds[int(outcome.kind)]);
    if (outcome.kind == Kind::TryAgain)
        text += " %1 %2 s"_s.arg(QLatin1String(obstacles[int(outcome.obstacle)])).arg(outcome.retryAfter);
    text += outcome.kind == Kind::Failed ? " %1"_s.arg(int(outcome.error))
                                         : " to %1"_s.arg(QLatin1String(stages[int(outcome.next)]));
    for (const PackedFile& file : outcome.work.files) {
        const bool isSent = outcome.work.packages.value(file.package).isSent;
        text += file.isWanted || isSent ? QString(" "_s + file.path) : QString();
        text += QLatin1String(file.isWanted ? " wanted" : "") + QLatin1String(isSent ? " sent" : "");
    }
    for (const QString& file : outcome.refused)
        text += " refused: "_s + file;
    text += QLatin1String(outcome.advanced ? " advanced" : "");
    const QString reason = outcome.kind != Kind::TryAgain ? outcome.message.Text() + outcome.job : QString();
    return reason.isEmpty() ? text : QString(text + ": "_s + reason);
}

/// Verb and target of each request, and the body of a PUT.
QString Brief(const QList<QByteArray>& requests)
{
    QByteArray brief;
    for (const QByteArray& request : requests) {
        const QList<QByteArray> words = request.split(' ');
        brief += ' ' + words.at(0) + ' ' + QByteArray(words.at(1)).replace("/api/v1", "");
        brief += words.at(0) == "PUT" ? ' ' + request.mid(request.indexOf("\r\n\r\n") + 4) : QByteArray();
    }
    return QString::fromLatin1(brief.mid(1));
}

} // namespace

class SubmitStagesTest : public QObject
{
    Q_OBJECT

private:
    static PackedFile File(const QString& path, const QByteArray& checksum, int package)
    {
        return {path, "/"_s + path, QString::fromLatin1(checksum), package, false};
    }

    StageRequest Request(Stage stage) const
    {
        StageRequest request;
        request.task.next = stage;
        request.task.scene = m_folder->filePath("a.pov"_s);
        const bool isPacked = stage != Stage::Compress;
        request.task.work.files = {File("a"_s, isPacked ? FirstSum : "", 0), File("b"_s, SecondSum, 1)};
        request.task.work.files[0].isWanted = true;
        const QString sum = stage == Stage::Checksum ? QString() : QString::fromLatin1(FirstSum);
        request.task.work.packages = {{sum, 10, false, "u"_s}, {sum, 3, false, "u"_s}};
        request.access.apiRoot = FarmApiRoot(m_server->Url());
        request.access.token = "abc"_s;
        request.access.feed = m_feed.get();
        request.folder = m_folder->path();
        request.interrupted = std::make_shared<std::atomic<bool>>(false);
        return request;
    }

    static void Ignore(int /*percent*/, const QString& /*text*/) { }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<ConnectionFeed> m_feed;
    SubmitWorker m_worker {{}, {Patience, 300, Patience}}; // only chunks end by the limit

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_server = std::make_unique<StandInServer>();
        m_feed = std::make_unique<ConnectionFeed>();
        QVERIFY(WriteFile(TaskPackages::Path(m_folder->path(), 0), "0123456789"));
        QVERIFY(WriteFile(TaskPackages::Path(m_folder->path(), 1), "abc"));
    }

    void EndsAsTheFarmAnswers_data() { AddRows(StageCases()); }

    void EndsAsTheFarmAnswers()
    {
        const StageCase& row = Row(StageCases());
        m_server->SetReplies(row.replies);
        if (row.stage == Stage::Checksum)
            QVERIFY(QFile::remove(TaskPackages::Path(m_folder->path(), 0)));
        const StageOutcome outcome = m_worker.Run(Request(row.stage), Ignore);
        const QRegularExpression expected(
            QRegularExpression::wildcardToRegularExpression(QString::fromLatin1(row.outcome)));
        QVERIFY2(expected.match(Summary(outcome)).hasMatch(), qPrintable(Summary(outcome)));
        QCOMPARE(outcome.stage, row.stage);
        const bool isUpload = row.stage == Stage::Upload;
        const Flow up = m_feed->Look().up;
        QCOMPARE(up.name.isEmpty(), !isUpload);
        QVERIFY(up.speed > 0 || !isUpload || !outcome.advanced);
        if (row.requests)
            QCOMPARE(Brief(m_server->Requests()), QString::fromLatin1(row.requests));
        QVERIFY(
            row.replies.isEmpty() || m_server->Requests().at(0).contains("Authorization: Bearer abc\r\n"));
    }

    void ReportsItsProgress_data() { AddRows(ProgressCases); }

    void ReportsItsProgress()
    {
        const auto& [name, stage, replies, percents] = Row(ProgressCases);
        StageRequest request = Request(stage);
        WriteFile(request.task.scene, "sphere{0,1}");
        for (int index = 0; index < 2; ++index) {
            PackedFile& file = request.task.work.files[index];
            file.source = TaskPackages::Path(m_folder->path(), index);
            file.isWanted = true;
        }
        request.task.work.packages[0].isSent = stage == Stage::Upload;
        QStringList reports;
        const StageProgress report
            = [&reports](int percent, const QString&) { reports.append(QString::number(percent)); };
        ChecksumCache cache({});
        FarmStages farm({});
        m_server->SetReplies(replies);
        if (NeedsFarm(stage))
            farm.Run(request, report);
        else if (stage == Stage::Compress)
            CompressStage(request, report, cache);
        else if (stage == Stage::Analyze)
            AnalyzeStage(request, report);
        else
            ChecksumStage(request, report);
        reports.removeDuplicates();
        QCOMPARE(reports.join(QLatin1Char(' ')), QString::fromLatin1(percents));
        // The user sees progress less often.
        reports.clear();
        m_server->SetReplies(replies);
        QElapsedTimer clock;
        clock.start();
        m_worker.Run(request, report);
        QCOMPARE(reports.value(0), QString::fromLatin1(percents).section(QLatin1Char(' '), 0, 0));
        QVERIFY(reports.size() <= 1 + clock.elapsed() / 250);
    }

    void SendsEqualContentOnce()
    {
        m_server->SetReplies({Known("")});
        StageRequest request = Request(Stage::CopySame);
        request.task.work.files[1].checksum = QString::fromLatin1(FirstSum);
        QCOMPARE(Summary(m_worker.Run(request, Ignore)), "done to upload a wanted"_s);
        QCOMPARE(m_server->Requests().at(0).count(FirstSum), 1);
    }

    void WaitsForAFarmThatIsAway()
    {
        StageRequest request = Request(Stage::Upload);
        m_server.reset(); // nobody listens on its port
        QCOMPARE(Summary(m_worker.Run(request, Ignore)), "again farm 0 s to upload a wanted"_s);
    }

    void EndsEarly()
    {
        m_server->SetReplies({StandInServer::Held(Upload(0))});
        const StageRequest request = Request(Stage::Upload);
        QTimer poll;
        connect(&poll, &QTimer::timeout, this, [&] {
            m_worker.Interrupt(); // without the flag, the stage continues
            *request.interrupted = !m_server->Requests().isEmpty();
        });
        poll.start(1);
        QCOMPARE(Summary(m_worker.Run(request, Ignore)), "interrupted to wait a wanted"_s);
        QCOMPARE(Summary(m_worker.Run(request, Ignore)), "interrupted to wait a wanted"_s);
        QCOMPARE(m_server->Requests().size(), 1);
    }

    void RefusesAPackageThatIsGoneAndSendsTheOthers()
    {
        m_server->SetReplies({Upload(0), Upload(0), Upload(3)});
        QVERIFY(QFile::remove(TaskPackages::Path(m_folder->path(), 0)));
        StageRequest request = Request(Stage::Upload);
        request.task.work.files[1].isWanted = true;
        QCOMPARE(Summary(m_worker.Run(request, Ignore)),
            "failed 3 a wanted b wanted sent refused: /a advanced: The packed file cannot be read from the disk."_s);
    }

    /// Whole packages are kept, in the folders of known tasks.
    void PacksAgainWhatIsNotWhole()
    {
        for (const QByteArray& content : {QByteArray("0123456789"), QByteArray("012345678")}) {
            m_server->SetReplies({Known(SecondSum)});
            QVERIFY(WriteFile(TaskPackages::Path(m_folder->path(), 0), content));
            QCOMPARE(Summary(m_worker.Run(Request(Stage::CopySame), Ignore)),
                content.size() == 10 ? "done to upload a wanted"_s : "done to compress a wanted"_s);
        }
        const QString folder = TaskPackages::Folder(m_folder->path(), 7);
        QDir().mkpath(folder);
        TaskPackages::Sweep(m_folder->path(), {1, 7});
        QVERIFY(QFile::exists(folder));
        TaskPackages::Sweep(m_folder->path(), {1});
        QVERIFY(!QFile::exists(folder));
    }

    void PacksOnlyWhatIsNewOrWanted()
    {
        SubmitWorker worker(m_folder->filePath("submissions.sqlite"_s));
        PackedFile file {"a"_s, m_folder->filePath("a.txt"_s), {}, -1, false};
        const auto write = [&file](const QByteArray& content, int age) {
            QFile text(file.source);
            text.open(QIODevice::WriteOnly);
            text.write(content);
            text.flush();
            text.setFileTime(QDateTime::currentDateTime().addSecs(-age), QFileDevice::FileModificationTime);
        };
        const auto pack = [&](const QString& checksum = {}) {
            StageRequest request = Request(Stage::Compress);
            file.checksum = checksum;
            file.isWanted = !checksum.isEmpty();
            request.task.work.files = {file};
            request.task.work.packages.clear();
            const StageOutcome outcome = worker.Run(request, Ignore);
            return "%1 to %2"_s.arg(outcome.work.files.value(0).package).arg(int(outcome.next));
        };
        write("one", 60);
        QCOMPARE(pack(), "0 to 3"_s);
        QCOMPARE(pack(), "-1 to 3"_s);
        QCOMPARE(pack("of another content"_s), "0 to 1"_s);
        write("two", 60);
        QCOMPARE(pack(), "0 to 3"_s);
        write("now", 0);
        QCOMPARE(pack() + pack(), "0 to 30 to 3"_s); // another change might leave the time as it is
    }

    void FitsIntoOneRequest()
    {
        SubmitWork work;
        for (const int length : {1, 200}) {
            work.files.fill(File(QString(length, QLatin1Char('p')), {}, 0), 4000);
            QCOMPARE(AreTooManyFiles(work), length > 1);
        }
    }

    void MeasuresTheUpload()
    {
        TransferMeter meter(80'000'000);
        meter.Skip(20'000'000);
        QCOMPARE(meter.Text(), "20.0 of 80.0 MB"_s); // no speed
        meter.SetInFlight(10'000'000);
        meter.Add(20'000'000);
        QCOMPARE(meter.Percent(), 50);
        QVERIFY(QRegularExpression("^40.0 of 80.0 MB, .*MB/s$"_s).match(meter.Text()).hasMatch());
        const QString before = meter.Text();
        QTRY_VERIFY_WITH_TIMEOUT(meter.Text() != before, Patience); // the speed falls while nothing moves
        meter.Add(90'000'000);
        QCOMPARE(meter.Percent(), 100);
        QVERIFY(meter.Text().startsWith("80.0 of"_s));
        QCOMPARE(TransferMeter(999'999).Text(), "0.0 of 1000.0 kB"_s);
        QCOMPARE(TransferMeter(1'000'000'000).Text(), "0.0 of 1.0 GB"_s);
        QCOMPARE(TransferMeter(0).Percent(), 0);
    }
};

QTEST_GUILESS_MAIN(SubmitStagesTest)
#include "tst_submit_stages.moc"
