#include "farm/jobs/job_actions.h"
#include "farm/rendering/job_pauses.h"
#include "farm/rendering/job_workers.h"
#include "farm/rendering/render_queue.h"
#include "farm/rendering/work_load.h"
#include "tests/farm/farm_fixture.h"

#include <cmath>
#include <ctime>
#include <functional>
#include <future>

using namespace farm;

namespace {

// Accounts as "core-seconds a frame/priority", and how many of a hundred frames each of them gets.
const std::tuple<const char*, const char*> Shares[] = {
    {"1/0 1/0", "50 50"},
    {"0/0 0/0 0/0", "34 33 33"},
    {"9/0 1/0", "10 90"},
    {"1/1 1/0", "66 34"},
    {"1/0 1/-2", "80 20"},
};

// The jobs in the order of their keys as "account:priority:frames", and the frames in the order of their turns.
const std::tuple<const char*, const char*, const char*> Turns[] = {
    {"early frames first", "a:0:6", "1.1 1.3 1.6 1.2 1.4 1.5"},
    {"the early ones of all jobs, then the oldest job", "a:0:5 a:0:4", "1.1 1.3 1.5 2.1 2.2 2.4 1.2 1.4 2.3"},
    {"accounts in turn", "a:0:4 b:0:2", "1.1 2.1 1.2 2.2 1.4 1.3"},
    {"priority first", "a:0:3 a:2:4 a:-1:1", "2.1 2.2 2.4 2.3 1.1 1.2 1.3 3.1"},
    {"priority within the account only", "a:0:2 b:9:2", "1.1 2.1 1.2 2.2"},
};

// Failures of frames as "job.frame" or with "!" after slow ones, successes as "+", and what became of the type.
const std::tuple<const char*, const char*> Healths[] = {
    {"1.1 1.2 1.3 2.1 2.2 3.1", "alive alive alive alive alive stopped"},
    {"1.1 1.2 1.3 2.1 2.2 2.3 2.4", "alive alive alive alive alive alive alive"},
    {"1.1 2.1 3.1 4.1 5.1 + 6.1", "alive alive alive alive alive - alive"},
    {"1.1 2.1 3.1 4.1 5.1 6.1! 7.1", "alive alive alive alive alive alive alive"},
    {"1.1 2.1 3.1 4.1 5.1 6.1 6.2 7.1 8.1 + 1.1",
        "alive alive alive alive alive stopped sick confirmed sick on alive"},
};

QStringList Words(const char* text)
{
    return QString::fromLatin1(text).split(u' ');
}

std::optional<FrameTask> Next(RenderQueue& queue, const QStringList& types, int now,
    std::set<FrameKey> taken = {}, const std::set<std::int64_t>& paused = {})
{
    const std::vector<FrameTask> chosen = queue.Choose({types, 1, paused}, taken, now);
    return chosen.empty() ? std::nullopt : std::optional(chosen.front());
}

} // namespace

class QueueTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_data = std::make_unique<FarmData>(m_folder->path());
        m_settings = {std::chrono::hours(1), std::chrono::seconds(30)};
    }

    void AccountsShareTheFarm_data() { AddRows(Shares); }
    void AccountsShareTheFarm()
    {
        const auto& [accounts, expected] = Row(Shares);
        const QStringList given = Words(accounts);
        const RecentUse use(1'000'000);
        std::vector<std::optional<double>> levels(std::size_t(given.size()));
        std::vector<int> frames(levels.size());
        for (int frame = 0; frame < 100; ++frame) {
            std::vector<Contender> contenders;
            for (std::size_t at = 0; at < levels.size(); ++at)
                contenders.push_back({std::int64_t(at), given.at(int(at)).section(u'/', 1).toInt(),
                    use.CoreSeconds(levels[at], frame)});
            const auto turn = std::size_t(FirstInTurn(contenders)->account);
            levels[turn] = use.Add(levels[turn], given.at(int(turn)).section(u'/', 0, 0).toDouble(), frame);
            ++frames[turn];
        }
        QStringList shares;
        for (const int count : frames)
            shares.append(QString::number(count));
        QCOMPARE(shares, Words(expected));
    }

    void UseIsForgottenByHalves()
    {
        const RecentUse use(100);
        const double level = use.Add(use.Add({}, 60, 1000), 20, 1100);
        QCOMPARE(use.CoreSeconds(level, 1100), 50.0);
        QCOMPARE(use.CoreSeconds(level, 1300), 12.5);
        // A clock that was wrong for a time puts nobody last for ever.
        const double wrong = use.Add(level, 20, -1'000'000);
        QVERIFY(std::isfinite(wrong) && use.CoreSeconds(wrong, 1300) < 1);
        QCOMPARE(use.CoreSeconds(HUGE_VAL, 1300), 0.0);
        // Frames in work count before they are recorded.
        std::vector<Contender> contenders {{1, 0, 30, 2, 50}, {2, 0, 70, 0, 0}};
        QCOMPARE(FirstInTurn(contenders)->account, std::int64_t(2));
    }

    void JobsHaveTheirTurns_data() { AddRows(Turns); }
    void JobsHaveTheirTurns()
    {
        const auto& [name, jobs, expected] = Row(Turns);
        AddJobs(jobs);
        RenderQueue queue = Queue();
        QStringList turns;
        while (const auto task = Next(queue, {"povray"_s}, 1)) {
            turns.append(Name(task->key));
            queue.Start({task->key.job});
            queue.Finish(task->key, {}, 1000, 1);
        }
        QCOMPARE(turns.join(u' '), QString::fromLatin1(expected));
        QCOMPARE(m_data->Count("SELECT count(*) FROM jobs WHERE status <> 4"), 0);
    }

    void KeepsLimits()
    {
        AddJobs("a:0:9 b:0:9");
        m_settings.framesPerAccount = 2;
        QCOMPARE(Taken(), "1.1 2.1 1.5 2.5"_s);
        m_settings.framesPerType = {{"povray"_s, 3}, {"maya"_s, 1}};
        QCOMPARE(Taken(), "1.1 2.1 1.5"_s);
        m_data->Change("UPDATE jobs SET type = 'maya' WHERE key = 1");
        QCOMPARE(Taken(), "1.1 2.1 2.5"_s);
    }

    // A restarted farm knows frames in work by their keys only, and may hear of a start before that.
    void CountsTheFramesInWork()
    {
        AddJobs("a:0:3 b:0:3");
        const auto ann = m_data->Count("SELECT account FROM jobs WHERE key = 1");
        const auto bob = m_data->Count("SELECT account FROM jobs WHERE key = 2");
        WorkLoad load;
        const auto counts = [&](const std::set<FrameKey>& taken) {
            m_data->database.Read([&](SQLite::Database& connection) { load.Update(connection, taken); });
            return QVector<double> {double(load.FramesOfType("povray"_s)), double(load.FramesOf(ann)),
                load.SecondsOf(ann, 130), double(load.FramesOf(bob)), load.SecondsOf(bob, 130)};
        };
        load.Add({1, 1}, ann, "povray"_s);
        load.NoteStart({1, 1}, 90);
        load.NoteStart({2, 1}, 100);
        QCOMPARE(counts({{1, 1}, {2, 1}, {2, 2}}), (QVector<double> {3, 1, 40, 2, 30}));
        load.NoteStart({2, 2}, 120);
        QCOMPARE(counts({{2, 1}, {2, 2}}), (QVector<double> {2, 0, 0, 2, 40}));
        QCOMPARE(counts({{2, 2}}), (QVector<double> {1, 0, 0, 1, 10}));
    }

    void AFailedFrameIsTriedAgainLaterAndThenPassedBy()
    {
        AddJobs("a:0:3");
        RenderQueue queue = Queue();
        // The time, the frame that is rendered, and whether it fails.
        const std::tuple<int, const char*, bool> steps[] = {{100, "1.1", true}, {100, "1.2", false},
            {100, "1.3", true}, {129, "", true}, {130, "1.1", true}, {131, "1.3", true}, {189, "", true},
            {190, "1.1", true}, {191, "1.3", false}};
        for (const auto& [now, frame, fails] : steps) {
            const auto task = Next(queue, {"povray"_s}, now);
            QCOMPARE(task ? Name(task->key) : QString(), QString::fromLatin1(frame));
            if (!task)
                continue;
            QCOMPARE(Only().status, int(JobStatus::Waiting));
            if (fails)
                QVERIFY(!queue.Fail(task->key, "no sail of %1"_s.arg(now), now));
            else
                queue.Finish(task->key, {}, 1, now);
        }
        QCOMPARE(Only().status, int(JobStatus::Failed));
        QCOMPARE(Only().message, "1 of 3 frames failed. Frame 1: no sail of 190"_s);
        // Recovering renders only the missing frames. The farm's own faults cost no attempt.
        JobActions(m_data->database, m_data->feed, m_data->terms, [] {
        }).Apply(JobAction::Recover, m_data->account, {Only().id}, 200);
        for (int now = 200; now < 700; now += 100) {
            const auto task = Next(queue, {"povray"_s}, now);
            QVERIFY(task && Name(task->key) == "1.1"_s);
            queue.Postpone(task->key, "no node"_s, now);
            QCOMPARE(Only().message, "Frame 1 waits: no node."_s);
            QVERIFY(!Next(queue, {"povray"_s}, now + 29));
        }
        queue.Finish({1, 1}, {}, 1, 800);
        QCOMPARE(Only().status, int(JobStatus::Finished));
        QCOMPARE(Only().message, QString());
    }

    void AJobPausesAfterFaultsOfTheFarm()
    {
        JobPauses pauses(std::chrono::seconds(5));
        const auto isPaused = [&pauses](int now) {
            return pauses.Paused(JobPauses::Clock::time_point(std::chrono::seconds(now))).count(1) > 0;
        };
        std::vector<int> tries;
        for (int now = 1; now <= 40; ++now) {
            if (!isPaused(now))
                tries.push_back(now);
            pauses.AddFault(1, JobPauses::Clock::time_point(std::chrono::seconds(now)));
        }
        QCOMPARE(tries, (std::vector<int> {1, 2, 3, 8, 18, 38}));
        QVERIFY(isPaused(41));
        pauses.End(1);
        QVERIFY(!isPaused(41));
        AddJobs("a:0:1 a:0:1");
        RenderQueue queue = Queue();
        QCOMPARE(Next(queue, {"povray"_s}, 1, {}, {1})->key.job, std::int64_t(2));
    }

    void NoticesARendererThatFailsAtOnceEverywhere_data() { AddRows(Healths); }
    void NoticesARendererThatFailsAtOnceEverywhere()
    {
        const auto& [events, expected] = Row(Healths);
        TypeHealth health;
        QStringList verdicts;
        const QStringList given = Words(events);
        for (const QString& event : given) {
            if (event == "+"_s) {
                verdicts.append(health.Succeeded("povray"_s, {}) ? "on"_s : "-"_s);
                continue;
            }
            const FrameKey frame {event.section(u'.', 0, 0).toInt(), event.at(2).digitValue()};
            const auto verdict = health.Failed("povray"_s, {frame}, event.endsWith(u'!') ? 60 : 1, 100);
            verdicts.append(QStringList {"alive"_s, "stopped"_s, "confirmed"_s, "sick"_s}.at(int(verdict)));
        }
        QCOMPARE(verdicts, Words(expected));
    }

    // Ten jobs meet a broken renderer; another type is not affected.
    void ABrokenRendererStopsItsTypeAndFailsNoJob()
    {
        AddJobs("a:0:2 a:0:2 a:0:2 a:0:2 b:0:2 b:0:2 b:0:2 b:0:2 a:0:1 b:0:1");
        m_data->Change("UPDATE jobs SET type = 'maya' WHERE key = 9");
        const auto attempts = [this](RenderQueue& queue, int from, int to) {
            int failures = 0;
            for (int now = from; now <= to; ++now) {
                while (const auto task = Next(queue, {"povray"_s}, now)) {
                    queue.Fail(task->key, "no licence"_s, now);
                    ++failures;
                }
            }
            return failures;
        };
        RenderQueue queue = Queue();
        // Failures whose records are lost come again, and count only then.
        for (int failure = 0; failure < 9; ++failure) {
            const auto failing = [&](SQLite::Database&) {
                queue.Fail({failure % 3 + 1, 1}, "no licence"_s, 1);
                throw std::runtime_error("the disk is full");
            };
            QVERIFY_EXCEPTION_THROWN(m_data->database.Write(failing), std::runtime_error);
        }
        // Everybody hears that a type stops and goes on, since all its jobs say so.
        const auto everybody = m_data->feed.Subscribe(m_data->Add("eve", "x"));
        const auto hears = [&everybody] { return !everybody->Wait(std::chrono::milliseconds(0))->IsEmpty(); };
        QCOMPARE(
            attempts(queue, 1, 1), TypeHealth::FailuresToStop + 1); // with a trial of another job at once
        QVERIFY(hears());
        QCOMPARE(attempts(queue, 2, 600), 9);
        QVERIFY(!hears());
        QVERIFY(Only().message.endsWith(" Last failure: no licence"_s));
        QCOMPARE(m_data->Count("SELECT count(*) FROM jobs WHERE status <> 0"), 0);
        QCOMPARE(m_data->Count("SELECT sum(failures) FROM frames"), 0);
        QVERIFY(Next(queue, {"povray"_s, "maya"_s}, 600)->type == "maya"_s);
        // A restarted farm still knows that the type is stopped.
        RenderQueue next = Queue();
        const auto task = Next(next, {"povray"_s}, 601);
        QVERIFY(!Next(next, {"povray"_s}, 602));
        next.Finish(task->key, {}, 1, 603);
        QVERIFY(hears());
        QVERIFY(Next(next, {"povray"_s}, 603));
        QCOMPARE(Only().message, QString());
    }

    // The processor time of a choice must depend on none of these numbers. It is compared with itself, so the speed of
    // the machine matters little.
    void ChoosingCostsTheSameHoweverManyThereAre()
    {
        const auto microseconds = [](int times, const std::function<void()>& work) {
            const std::clock_t begin = std::clock();
            for (int time = 0; time < times; ++time)
                work();
            return std::int64_t(std::clock() - begin) * 1'000'000 / CLOCKS_PER_SEC / times;
        };
        const auto choice = [&] {
            RenderQueue queue = Queue();
            return microseconds(200, [&] { Next(queue, {"maya"_s, "povray"_s}, 100); });
        };
        AddJobs("a:0:9 a:0:9 a:0:9 b:0:9 b:0:9 b:0:9");
        const auto few = choice();
        AddJobs("a:5:20000 b:0:20000");
        m_data->Change(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 10000) "
            "INSERT INTO jobs(id, account, number, type, name, folded_name, business, status, scene, "
            "width, height, submitted_at, resume_at, early) SELECT 'x' || i, 1 + i % 2, 1000 + i, "
            "iif(i % 3 = 0, 'blend', 'povray'), 'x', 'x', 1, 0, 'x', 1, 1, 1, iif(i % 5 = 0, 9e9, 0), 0 "
            "FROM n; INSERT INTO frames(job, number) SELECT key, 1 FROM jobs WHERE id LIKE 'x%'");
        const auto many = choice();
        QVERIFY2(
            many < 4 * few + 200, qPrintable("%1 us among 6 jobs, %2 us among 10,008"_s.arg(few).arg(many)));
        // Frames in work, all chosen at once.
        RenderQueue queue = Queue();
        std::set<FrameKey> taken;
        const auto frames = [&](std::size_t most) {
            return microseconds(1, [&] {
                queue.Choose({{"povray"_s}, most}, taken, 100);
            }) / std::int64_t(most);
        };
        const auto first = frames(100);
        const auto later = frames(8000);
        QCOMPARE(taken.size(), std::size_t(8100));
        QVERIFY2(later < 2 * first + 20, qPrintable("%1 us a frame, then %2 us"_s.arg(first).arg(later)));
    }

    // There is one thread, which is busy with ann's first job while the others arrive.
    void AccountsTakeTurnsAtTheWorkersOfJobs()
    {
        std::promise<void> begin;
        QStringList done;
        JobWorkers workers(1);
        workers.Add(1, 1, [&] { begin.get_future().wait(); });
        const std::tuple<int, int> added[] = {{1, 1}, {1, 1}, {1, 2}, {2, 7}, {2, 8}, {3, 9}};
        for (const auto& [account, job] : added)
            workers.Add(account, job, [&, job = job] { done.append(QString::number(job)); });
        std::promise<void> end;
        workers.Add(1, 4, [&] { end.set_value(); });
        begin.set_value();
        end.get_future().wait();
        QCOMPARE(done.join(u' '), "7 9 1 8 1 2"_s);
    }

    void AThreadWithAReaderOfItsOwnWaitsForNobody()
    {
        Database database(m_folder->filePath("farm.sqlite"_s), Schema(), {1, false});
        database.ReserveReader();
        std::promise<void> reading;
        std::promise<void> read;
        const auto reader = std::async(std::launch::async, [&] {
            database.Read([&](SQLite::Database&) {
                reading.set_value();
                read.get_future().wait_for(std::chrono::seconds(10));
            });
        });
        reading.get_future().wait();
        database.Read([](SQLite::Database&) {});
        QCOMPARE(reader.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
        read.set_value();
    }

private:
    RenderQueue Queue() { return RenderQueue(m_data->database, m_data->feed, m_data->terms, m_settings); }

    static QString Name(const FrameKey& frame) { return "%1.%2"_s.arg(frame.job).arg(frame.number); }

    /// Ann's newest job of type "povray".
    JobRecord Only()
    {
        JobConditions povray;
        povray.type = "povray"_s;
        return m_data->jobs.List(m_data->account, povray, 1, 1).jobs.at(0);
    }

    /// Adds jobs of ann (a) and bob (b).
    void AddJobs(const char* jobs)
    {
        const auto bob = m_data->accounts.Find("bob"_s);
        const std::int64_t other = bob ? *bob : m_data->Add("bob", "x");
        const QStringList given = Words(jobs);
        for (const QString& text : given) {
            NewJob job = m_data->Job(text, text.section(u':', 2).toInt());
            job.priority = text.section(u':', 1, 1).toInt();
            if (text.startsWith(u'b'))
                job.account = other;
            m_data->jobs.Add(job);
        }
    }

    /// Chooses frames until none is left; returns the frames in work.
    QString Taken()
    {
        RenderQueue queue = Queue();
        std::set<FrameKey> taken;
        QStringList names;
        for (const FrameTask& task : queue.Choose({{"povray"_s, "maya"_s}, 100}, taken, 1))
            names.append(Name(task.key));
        return names.join(u' ');
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FarmData> m_data;
    QueueSettings m_settings;
};

QTEST_GUILESS_MAIN(QueueTest)
#include "tst_farm_queue.moc"
