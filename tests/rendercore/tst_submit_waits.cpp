// Submissions that wait: for the farm, for the user, for the database.
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_queue.h"
#include "host/rendercore/submit/submit_records.h"
#include "host/rendercore/submit/submit_schema.h"
#include "host/rendercore/submit/submit_text.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

using HttpReply = StandInServer::Reply;

namespace {

constexpr char Scene[] = "sphere{0,1}";
constexpr char KnownTarget[] = "POST /api/v1/contents/known";
constexpr char JobTarget[] = "POST /api/v1/jobs";

/// The farm knows the contents of the scene.
HttpReply Known()
{
    const QByteArray sum = QCryptographicHash::hash(Scene, QCryptographicHash::Sha256).toHex();
    return StandInServer::Data("{'known': ['" + sum + "']}");
}

HttpReply Job()
{
    return StandInServer::Data("{'job_increasement': '7'}");
}

HttpReply Refusal(int status, const char* word = "")
{
    return StandInServer::Http(status, R"({"error": ")" + QByteArray(word) + R"(", "message": "So it is."})");
}

/// Answers of the farm, and what the task says until it is tried again.
const std::tuple<const char*, HttpReply, const char*> Waits[] = {
    {"busy", Refusal(503), SubmitText::Busy},
    {"too many requests", Refusal(429), SubmitText::Busy},
    {"disk full", Refusal(507, "disk_full"), SubmitText::FarmFull},
    {"signed out", Refusal(401), SubmitText::SessionEnded},
    {"cut off", {"HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{"}, SubmitText::Unreachable},
};

/// Changes of the access while a request is under way, and whether the request is made again.
const std::tuple<const char*, void (*)(FarmAccess& access, const QUrl& other), bool> Changes[] = {
    {"token", [](FarmAccess& access, const QUrl&) { access.token = "def"_s; }, true},
    {"farm", [](FarmAccess& access, const QUrl& other) { access.apiRoot = FarmApiRoot(other); }, true},
    {"folder", [](FarmAccess& access, const QUrl&) { access.folder = "/x"_s; }, false},
};

} // namespace

class SubmitWaitsTest : public QObject
{
    Q_OBJECT

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }

    void StartQueue()
    {
        m_queue.reset();
        m_queue = std::make_unique<SubmitQueue>(Path("transfer"_s));
        m_lacking = std::make_unique<QSignalSpy>(m_queue.get(), &SubmitQueue::TexturesLacking);
        QSignalSpy loaded(m_queue.get(), &SubmitQueue::Loaded);
        m_queue->SetAccess(m_access);
        QVERIFY(loaded.wait(Patience));
    }

    /// @return the task's id.
    QString Submit(const QString& scene, const QByteArray& text = Scene)
    {
        WriteFile(Path(scene), text);
        QSignalSpy changed(m_queue.get(), &SubmitQueue::ListChanged);
        const bool isAccepted = m_queue->Submit(Path(scene)) == SubmitQueue::Answer::Accepted;
        return isAccepted && changed.wait(Patience) ? m_queue->Ids().constLast() : QString();
    }

    SubmitTask Task(const QString& id) const { return m_queue->Task(id) ? *m_queue->Task(id) : SubmitTask(); }

    /// Runs statements on the database, as if another program did.
    void Run(const char* sql) const
    {
        SQLite::Database other(
            Path("transfer/submissions.sqlite"_s).toStdString(), SQLite::OPEN_READWRITE, Patience);
        other.exec(sql);
    }

    bool AwaitRequests(int count) const
    {
        return QTest::qWaitFor([&] { return m_server->Requests().size() >= count; }, Patience);
    }
    bool AwaitDone(const QString& id) const
    {
        return QTest::qWaitFor([&] { return Task(id).isDone; }, Patience);
    }
    bool AwaitError(const QString& id, SubmitError error) const
    {
        return QTest::qWaitFor([&] { return Task(id).error == error; }, Patience);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<SubmitQueue> m_queue;
    std::unique_ptr<QSignalSpy> m_lacking;
    FarmAccess m_access;

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_server = std::make_unique<StandInServer>();
        m_server->SetReplyTo(KnownTarget, Known());
        m_server->SetReplyTo(JobTarget, Job());
        m_access = {FarmApiRoot(m_server->Url()), "abc"_s, "farm/ann"_s, {}};
        StartQueue();
    }
    void cleanup() { m_queue.reset(); }

    void ShowsWhatItWaitsFor_data() { AddRows(Waits); }

    void ShowsWhatItWaitsFor()
    {
        const auto& [name, reply, text] = Row(Waits);
        m_server->SetReplyTo(KnownTarget, reply);
        const QString id = Submit("a.pov"_s);
        EVENTUALLY_COMPARE(Task(id).message.Text(), QString::fromLatin1(text));
        QCOMPARE(Task(id).uploadText.Text(), QString::fromLatin1(text));
        QVERIFY(Task(id).IsRunnable());
        QCOMPARE(Task(id).stage, SubmitStage::CopySame);
        m_server->SetReplyTo(KnownTarget, Known());
        m_access.token = "def"_s; // does not wait any longer
        m_queue->SetAccess(m_access);
        QVERIFY(AwaitDone(id));
        QCOMPARE(Task(id).message.Text(), "Submitted as job 7."_s);
    }

    void TriesAgainByItself()
    {
        m_server->SetReplyTo(KnownTarget, Refusal(503));
        const QString id = Submit("a.pov"_s);
        EVENTUALLY_COMPARE(Task(id).message.Text(), QString::fromLatin1(SubmitText::Busy));
        m_server->SetReplyTo(KnownTarget, Known());
        QVERIFY(AwaitDone(id));
    }

    void OnlyTasksThatNeedTheFarmWaitForIt()
    {
        m_queue->SetAccess({{}, m_access.token, m_access.owner, {}});
        const QString stopped = Submit("a.pov"_s);
        const QString unreachable = QString::fromLatin1(SubmitText::Unreachable);
        EVENTUALLY_COMPARE(Task(stopped).message.Text(), unreachable);
        m_queue->StopAll();
        const QString id = Submit("b.pov"_s);
        EVENTUALLY_COMPARE(Task(id).message.Text(), unreachable);
        QCOMPARE(Task(id).stage, SubmitStage::CopySame);
        QCOMPARE(Task(stopped).message.Text(), "Stopped."_s);
        const QString lacking = Submit("c.pov"_s, "png \"gone.png\"");
        QVERIFY(AwaitError(lacking, SubmitError::AwaitsUser));
        QCOMPARE(Task(lacking).message.Text(), "gone.png"_s);
        m_queue->SetAccess(m_access);
        QVERIFY(AwaitDone(id));
        QVERIFY(!Task(stopped).isDone);
        QCOMPARE(m_server->Requests().size(), 2);
    }

    void RequestsFollowTheAccess_data() { AddRows(Changes); }

    void RequestsFollowTheAccess()
    {
        const auto& [name, change, isAgain] = Row(Changes);
        StandInServer other;
        other.SetReplyTo(KnownTarget, Known());
        other.SetReplyTo(JobTarget, Job());
        m_server->SetReplyTo(KnownTarget, StandInServer::Held(Known()));
        const QString id = Submit("a.pov"_s);
        QVERIFY(AwaitRequests(1));
        m_server->SetReplyTo(KnownTarget, Known());
        change(m_access, other.Url());
        m_queue->SetAccess(m_access);
        if (!isAgain)
            m_server->Release(0);
        QVERIFY(AwaitDone(id));
        const auto requests = m_server->Requests() + other.Requests();
        QCOMPARE(requests.size(), isAgain ? 3 : 2);
        QVERIFY(requests.constLast().contains("Authorization: Bearer " + m_access.token.toLatin1()));
        QCOMPARE(other.Requests().isEmpty(), m_access.apiRoot == FarmApiRoot(m_server->Url()));
    }

    void StopsAtOnceAndGoesOn()
    {
        m_server->SetReplyTo(KnownTarget, StandInServer::Held(Known()));
        const QString id = Submit("a.pov"_s);
        QVERIFY(AwaitRequests(1));
        const QString lacking = Submit("b.pov"_s, "png \"gone.png\"");
        const QString given = Submit("c.pov"_s, "png \"gone.png\"");
        m_queue->StopAll();
        m_queue->ResumeAll();
        QVERIFY(AwaitRequests(2));
        m_server->Release(1);
        QVERIFY(AwaitDone(id));
        QVERIFY(AwaitError(lacking, SubmitError::AwaitsUser));
        QVERIFY(AwaitError(given, SubmitError::AwaitsUser));
        EVENTUALLY_COMPARE(m_lacking->size(), 2);
        m_queue->AnswerMissingTextures(given, false);
        m_queue->StopAll();
        QCOMPARE(Task(lacking).error, SubmitError::Stopped);
        QCOMPARE(Task(given).error, SubmitError::TexturesMissing);
        QCOMPARE(Task(id).error, SubmitError::None);
        m_queue->ResumeAll();
        QVERIFY(AwaitError(lacking, SubmitError::AwaitsUser)); // and asks again
        EVENTUALLY_COMPARE(m_lacking->size(), 3);
        QCOMPARE(m_lacking->at(2).at(0).toString(), lacking);
        // The user agrees; the other one waits until told to go on.
        m_server->SetReplyTo(KnownTarget, Refusal(422));
        m_queue->AnswerMissingTextures(lacking, true);
        QVERIFY(AwaitError(lacking, SubmitError::FarmRefused));
        QVERIFY(Task(lacking).goesOnWithout);
        QCOMPARE(Task(lacking).message.Text(), "So it is."_s);
        QCOMPARE(Task(given).error, SubmitError::TexturesMissing);
        QCOMPARE(m_lacking->size(), 3);
        StartQueue();
        QCOMPARE(Task(lacking).error, SubmitError::FarmRefused);
        QVERIFY(Task(lacking).goesOnWithout);
        QCOMPARE(Task(given).error, SubmitError::TexturesMissing);
    }

    void TakesArgumentsUntilTheJobIsSent()
    {
        m_server->SetReplyTo(KnownTarget, StandInServer::Held(Known()));
        m_server->SetReplyTo(JobTarget, StandInServer::Held(Job()));
        const QString id = Submit("a.pov"_s);
        QVERIFY(AwaitRequests(1));
        const QVariantList arguments = MakeArguments(4, 4, 32, 16);
        m_queue->SetArguments(id, arguments);
        QCOMPARE(Task(id).arguments, arguments);
        m_server->Release(0);
        QVERIFY(AwaitRequests(2));
        QVERIFY(m_server->Requests().at(1).contains(R"([{"end":4,"start":4,"step":1}])"));
        m_queue->SetArguments(id, MakeArguments(5, 5, 32, 16)); // too late
        QCOMPARE(Task(id).arguments, arguments);
        m_queue->SetArguments("x"_s, arguments);
        m_queue->Continue("x"_s);
        m_queue->Continue(id); // has not halted
        m_server->Release(1);
        QVERIFY(AwaitDone(id));
        m_queue->Continue(id);
        QVERIFY(Task(id).isDone);
        QCOMPARE(m_server->Requests().size(), 2);
    }

    void AScenesMayBeSubmittedAgain()
    {
        const auto submit = [this] { return m_queue->Submit(Path("a.pov"_s)); };
        QSignalSpy refused(m_queue.get(), &SubmitQueue::SceneRefused);
        for (const int round : {1, 2}) {
            QCOMPARE(submit(), SubmitQueue::Answer::Accepted);
            QCOMPARE(submit(), SubmitQueue::Answer::Known);
            EVENTUALLY_COMPARE(refused.size(), round);
        }
        m_server->SetReplyTo(KnownTarget, StandInServer::Held(Known()));
        const QString first = Submit("a.pov"_s);
        QVERIFY(AwaitRequests(1));
        QCOMPARE(submit(), SubmitQueue::Answer::Known);
        m_queue->Remove({first});
        const QString second = Submit("a.pov"_s);
        QVERIFY(!second.isEmpty() && second != first);
        QVERIFY(AwaitRequests(2)); // the first one's request has been given up
        m_server->Release(1);
        QVERIFY(AwaitDone(second));
        const int before = m_server->Requests().size();
        Submit("b.pov"_s);
        QVERIFY(AwaitRequests(before + 1));                // still under way at the end of the session
        QCOMPARE(submit(), SubmitQueue::Answer::Accepted); // as another job
        // A task that is being added belongs to the session.
        m_access.owner = "farm/bob"_s;
        m_access.token = "def"_s;
        m_queue->SetAccess(m_access);
        QVERIFY(m_queue->Ids().isEmpty());
        QVERIFY(!Submit("a.pov"_s).isEmpty());
        QCOMPARE(m_queue->Ids().size(), 1);
        m_queue->EndSession();
        QCOMPARE(submit(), SubmitQueue::Answer::Refused);
    }

    void AsksForManyContentsInSeveralRequests()
    {
        m_server->SetReplyTo(KnownTarget, StandInServer::Data("{'known': []}"));
        StageRequest request;
        request.task.next = SubmitStage::CopySame;
        for (int file = 0; file < 1001; ++file)
            request.task.work.files.append({"a"_s, "/a"_s, QString::number(file), 0, false});
        request.access = m_access;
        request.interrupted = std::make_shared<std::atomic<bool>>(false);
        const StageOutcome outcome = SubmitWorker().Run(request, [](int, const QString&) {});
        QCOMPARE(outcome.next, SubmitStage::Compress);
        QVERIFY(outcome.work.files.constFirst().isWanted && outcome.work.files.constLast().isWanted);
        QCOMPARE(m_server->Requests().size(), 2);
        QVERIFY(
            m_server->Requests().at(0).contains("\"0\"") && m_server->Requests().at(0).contains("\"999\""));
        QVERIFY(m_server->Requests().at(1).contains("[\"1000\"]"));
    }

    void PassesAProxyThatAsks()
    {
        const auto restore = qScopeGuard([] { QNetworkProxyFactory::setUseSystemConfiguration(true); });
        m_server->AskFor("ann:secret");
        QNetworkProxy::setApplicationProxy(
            {QNetworkProxy::HttpProxy, "127.0.0.1"_s, quint16(m_server->Url().port())});
        m_server->SetReplyTo("/contents/known", Known());
        m_server->SetReplyTo("/api/v1/jobs", Job());
        m_access.apiRoot = FarmApiRoot(QUrl("http://farm.example"_s));
        m_access.proxy = {"ann"_s, "secret"_s};
        m_queue->SetAccess(m_access);
        QVERIFY(AwaitDone(Submit("a.pov"_s)));
    }

    void TheListIsReadOnceItCanBe()
    {
        Submit("a.pov"_s);
        m_queue.reset();
        Run("ALTER TABLE tasks RENAME TO away");
        SubmitLedger ledger(Path("transfer"_s));
        auto* pause = ledger.findChild<QTimer*>();
        QVector<int> sizes;
        connect(&ledger, &SubmitLedger::Loaded, this,
            [&sizes](const QVector<SubmitTask>& tasks) { sizes.append(tasks.size()); });
        ledger.Begin("farm/ann"_s);
        EVENTUALLY(pause->isActive());
        ledger.End();
        QVERIFY(!pause->isActive());
        ledger.Begin("farm/ann"_s);
        EVENTUALLY(pause->isActive());
        Run("ALTER TABLE away RENAME TO tasks");
        pause->setInterval(1); // does not wait any longer
        EVENTUALLY_COMPARE(sizes, QVector<int> {1});
        QVERIFY(!pause->isActive());
    }

    /// Changes that cannot be written at first are kept, read and written later.
    void ChangesAreWrittenLater()
    {
        m_queue.reset();
        const auto stored
            = [this] { return SubmitStore(Path("transfer/submissions.sqlite"_s)).Load("farm/ann"_s); };
        WriteFile(Path("a.pov"_s), Scene);
        TaskMessage error;
        SubmitRecords records(Path("transfer"_s));
        SubmitTask task = records.Add("farm/ann"_s, Path("a.pov"_s), 0, &error).value();
        const SubmitTask gone = records.Add("farm/ann"_s, Path("a.pov"_s), 0, &error).value();
        auto* retry = records.findChild<QTimer*>();
        QVERIFY(retry && !retry->isActive());
        Run("CREATE TRIGGER u BEFORE UPDATE ON tasks BEGIN SELECT RAISE(ABORT, 'not now'); END;"
            "CREATE TRIGGER d BEFORE DELETE ON tasks BEGIN SELECT RAISE(ABORT, 'not now'); END;"
            "CREATE TRIGGER i BEFORE INSERT ON tasks BEGIN SELECT RAISE(ABORT, 'not now'); END");
        task.work.scene = "new"_s;
        records.Save({task}, true);
        task.error = SubmitError::Stopped;
        records.Save({task}, false);
        records.Remove({gone.number});
        QVERIFY(!records.Add("farm/ann"_s, Path("a.pov"_s), 0, &error));
        QCOMPARE(error.Text(), QString::fromLatin1(SubmitText::NotRecorded));
        QCOMPARE(stored().size(), 2);
        const auto known = records.Load("farm/ann"_s).value();
        QCOMPARE(known.size(), 1);
        QCOMPARE(known.at(0).error, SubmitError::Stopped);
        QCOMPARE(records.Numbers().value(), QSet<qint64>({task.number, gone.number}));
        Run("DROP TRIGGER u; DROP TRIGGER d; DROP TRIGGER i");
        QVERIFY(retry->isActive());
        retry->setInterval(1); // does not wait any longer
        EVENTUALLY_COMPARE(stored().size(), 1);
        EVENTUALLY(!retry->isActive());
        QCOMPARE(stored().at(0).error, SubmitError::Stopped);
        QCOMPARE(stored().at(0).work.scene, "new"_s);
    }
};

QTEST_GUILESS_MAIN(SubmitWaitsTest)
#include "tst_submit_waits.moc"
