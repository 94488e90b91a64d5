#include "farm/base/errors.h"
#include "farm/base/local_time.h"
#include "farm/http/read_conditions.h"
#include "farm/jobs/frame_store.h"
#include "farm/jobs/job_actions.h"
#include "farm/jobs/job_filter.h"
#include "tests/farm/farm_fixture.h"

#include <random>

using namespace farm;

namespace {

// Ann's jobs, numbered from 1: name, type, status, whether it is rendering work and in the project, submission and end.
const std::tuple<const char*, const char*, JobStatus, bool, bool, const char*, const char*> GivenJobs[] = {
    {"Harbour_dawn", "povray", JobStatus::Finished, true, true, "2026-03-01 10:00:00", "2026-03-01 12:00:00"},
    {"harbour-DAWN 100%", "maya", JobStatus::Running, true, false, "2026-03-02 10:00:00", ""},
    {"Überflug", "povray", JobStatus::Failed, false, true, "2026-03-03 10:00:00", "2026-03-03 10:30:00"},
    {"gone", "povray", JobStatus::Deleted, true, false, "2026-03-04 10:00:00", ""},
    {"titles_v2", "povray", JobStatus::Waiting, false, false, "2026-03-05 10:00:00", ""},
    {"it's \"x\"", "blend", JobStatus::Finished, true, false, "2026-03-06 10:00:00", "2026-03-07 00:00:00"},
};

struct Search
{
    const char* name;
    QByteArray conditions; ///< in which ID1 stands for the id of job 1
    const char* numbers;
    int page = 1;
    int pageSize = 100;
};
const Search Searches[] = {
    {"empty values and unknown keys", R"({"job_name":"","status":null,"job_guid":"","colour":[1]})",
        "6 5 3 2 1 of 5"},
    {"part of a name, any case", R"({"job_name":" BOUR "})", "2 1 of 2"},
    {"other alphabets, any case", R"({"job_name":"über"})", "3 of 1"},
    {"quotes stand for themselves", "{\"job_name\":\"'s \\\"x\"}", "6 of 1"},
    {"type as three parts", R"({"job_type":"g@povray@POV-Ray"})", "5 3 1 of 3"},
    {"status 0 is a status", R"({"status":0})", "5 of 1"},
    {"deleted when asked for", R"({"status":"5"})", "4 of 1"},
    {"pool of the own project", R"({"pool_id":"pool-a"})", "3 1 of 2"},
    {"other work", R"({"job_business_type":"0"})", "5 3 of 2"},
    {"among ids", R"({"job_guid":"ID1, ID5,x,"})", "5 1 of 2"},
    {"id of another account", R"({"job_guid":"ID7"})", "of 0"},
    {"submission bounds included",
        R"({"start_min_time":"2026-03-02 10:00:00","start_max_time":"2026-03-03 10:00:00"})", "3 2 of 2"},
    {"end bounds included", R"({"end_min_time":"2026-03-01 12:00:00","end_max_time":"2026-03-03 10:30:00"})",
        "3 1 of 2"},
    {"all must hold", R"({"status":4,"job_type":"povray","job_name":"dawn"})", "1 of 1"},
    {"number", R"({"job_increasement":"3"})", "3 of 1"},
    {"after an end", R"({"end_min_time":"2026-03-03 10:30:01"})", "6 of 1"},
    {"last page, not full", "", "1 of 5", 3, 2},
    {"page among ids", R"({"job_guid":"ID1,ID3,ID5"})", "3 of 3", 2, 1},
};

const QString ManyJobs = QStringLiteral(R"(
WITH RECURSIVE counter(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM counter WHERE i < 9000)
INSERT INTO jobs(id, account, number, project, type, name, folded_name, business, status, scene, width, height,
    submitted_at, ended_at)
SELECT 'job' || i, %1, i, iif(i % 7 = 0, %2, NULL), iif(i % 3 = 0, 'maya', 'povray'), '', 'shot_' || i || ' "q" é', 1,
    iif(i % 50 = 1, 7, i % 5), 's', 1, 1, i * 10 + i * 7919 % 300, iif(i % 9 = 0, NULL, i * 10 + i * 31 % 900)
FROM counter)");

const std::tuple<const char*> Unreadable[] = {"[]", R"({"status":1e300})",
    R"({"job_increasement":"99999999999999999999"})", R"({"start_min_time":"yesterday"})"};

} // namespace

class JobsTest : public QObject
{
    Q_OBJECT

private slots:
    // Bob, who works on the same project, has a job with the name of ann's first.
    void initTestCase()
    {
        const std::int64_t bob = m_data.Add("bob", "x");
        const std::int64_t titles = m_data.AddProject("Titles", "pool-a", {"ann"_s, "bob"_s});
        for (const auto& [name, type, status, rendering, inTitles, submitted, ended] : GivenJobs) {
            NewJob job = m_data.Job(QString::fromUtf8(name));
            job.type = QString::fromLatin1(type);
            job.status = status;
            job.rendering = rendering;
            job.project = inTitles ? std::optional(titles) : std::nullopt;
            job.submittedAt = *TimeFromText(QString::fromLatin1(submitted));
            m_ids.append(m_data.jobs.Add(job).id);
            const auto end = TimeFromText(QString::fromLatin1(ended));
            const QString change = "UPDATE jobs SET ended_at = %1 WHERE id = '%2'"_s;
            m_data.Change(qPrintable(change.arg(end ? QString::number(*end) : "NULL"_s, m_ids.last())));
        }
        NewJob foreign = m_data.Job("Harbour_dawn"_s);
        foreign.account = bob;
        foreign.project = titles;
        m_ids.append(m_data.jobs.Add(foreign).id);
    }

    void FindsJobsThatMeetTheConditions_data() { AddRows(Searches); }
    void FindsJobsThatMeetTheConditions()
    {
        auto [name, conditions, expected, page, pageSize] = Row(Searches);
        for (int job = 1; job <= m_ids.size(); ++job)
            conditions.replace("ID" + QByteArray::number(job), m_ids.at(job - 1).toLatin1());
        const JobPage found = m_data.jobs.List(m_data.account, ReadJobConditions(conditions), page, pageSize);
        QString numbers;
        for (const JobRecord& job : found.jobs)
            numbers += QString::number(job.number) + QLatin1Char(' ');
        QCOMPARE(numbers + "of %1"_s.arg(found.total), QString::fromLatin1(expected));
    }

    // Compares with a search through all jobs, while jobs change. Most submissions and ends are in the order of the
    // numbers.
    void FindsAmongManyWhatASearchThroughAllFinds()
    {
        const QTemporaryDir folder;
        FarmData data(folder.path());
        const std::int64_t pool = data.AddProject("Titles", "pool-a", {"ann"_s});
        data.Change(qPrintable(ManyJobs.arg(data.account).arg(pool)));
        std::mt19937 random(7);
        const auto any = [&random](int least, int most) {
            return std::uniform_int_distribution<int>(least, most)(random);
        };
        const auto maybe
            = [&any](const auto& value) { return any(0, 3) == 0 ? value : std::decay_t<decltype(value)>(); };
        for (int round = 0; round < 200; ++round) {
            const QString change = "UPDATE jobs SET status = %1, ended_at = %2 WHERE number % %3 = 0"_s;
            if (round % 20 == 0)
                data.Change(qPrintable(change.arg(any(0, 7))
                                           .arg(any(0, 1) ? "NULL"_s : "submitted_at + 9"_s)
                                           .arg(any(50, 900))));
            if (round % 100 == 50)
                data.Change("DELETE FROM jobs WHERE number % 900 = 3 OR number > 8990");
            JobConditions conditions;
            conditions.nameContains
                = maybe(QStringList {"a"_s, "10"_s, "ot_1"_s, "\"Q\" é"_s, "none"_s}.at(any(0, 4)));
            conditions.status = maybe(std::optional<std::int64_t>(any(0, 8)));
            conditions.type = maybe("maya"_s);
            conditions.pool = maybe("pool-a"_s);
            conditions.submittedFrom = maybe(std::optional<std::int64_t>(any(0, 90000)));
            conditions.submittedTo = maybe(std::optional<std::int64_t>(any(0, 90000)));
            conditions.endedFrom = maybe(std::optional<std::int64_t>(any(0, 90000)));
            conditions.endedTo = maybe(std::optional<std::int64_t>(any(0, 90000)));
            const int size = any(1, 200);
            const int page = any(1, 9000 / size / any(1, 20) + 1);
            const auto [total, numbers] = SearchThroughAll(data, conditions, (page - 1) * size, size);
            const JobPage found = data.jobs.List(data.account, conditions, page, size);
            const QByteArray where = QByteArray::fromStdString(FilterFor(data.account, conditions).where)
                + " round " + QByteArray::number(round);
            QVERIFY2(found.total == total, where);
            QVERIFY2(std::equal(found.jobs.begin(), found.jobs.end(), numbers.begin(), numbers.end(),
                         [](const JobRecord& job, std::int64_t number) { return job.number == number; }),
                where);
        }
        // A kept result cannot be refreshed when the database has forgotten the changes since.
        JobConditions kept;
        kept.nameContains = "sh"_s;
        kept.status = 7;
        data.jobs.List(data.account, kept, 1, 9);
        data.Change("UPDATE jobs SET status = 7 WHERE number < 100;"
                    "DELETE FROM job_changes WHERE place < (SELECT max(place) FROM job_changes)");
        QCOMPARE(data.jobs.List(data.account, kept, 1, 9).total, SearchThroughAll(data, kept, 0, 9).first);
    }

    void RecordsWhoSetsAPriority()
    {
        const QString id = m_ids.first();
        JobActions(m_data.database, m_data.feed, m_data.terms, [] {
        }).SetPriority(m_data.account, {id}, 7, 5, "::1"_s);
        QCOMPARE(m_data.jobs.Plan(m_data.account, id).priority, 7);
        QCOMPARE(SentenceOf(LastAuditEntries(m_data.database, id, 1).at(0)),
            "job priority %1 (7) by ann from ::1"_s.arg(id));
    }

    // Others use the database between large jobs, so a fault at one of them leaves those before it changed.
    void ActsOnLargeJobsOneAfterAnother()
    {
        const QTemporaryDir folder;
        FarmData data(folder.path());
        QStringList ids;
        for (int job = 1; job <= 4; ++job)
            ids.append(data.jobs.Add(data.Job("job"_s)).id);
        data.Change("UPDATE frame_ranges SET last = 15000 WHERE job < 4; "
                    "CREATE TRIGGER fails BEFORE UPDATE OF run ON jobs WHEN NEW.key = 3 "
                    "BEGIN SELECT raise(ABORT, 'the disk is full'); END");
        const auto changes = data.feed.Subscribe(data.account);
        JobActions actions(data.database, data.feed, data.terms, [] {});
        QVERIFY_EXCEPTION_THROWN(actions.Apply(JobAction::Restart, data.account, ids, 8), SQLite::Exception);
        QCOMPARE(data.Count("SELECT sum(run * key * key) FROM jobs"), 2 + 2 * 4 + 9 + 16);
        QCOMPARE(changes->Wait(std::chrono::milliseconds(0))->jobs, (QSet<QString> {ids[0], ids[1]}));
        // An id that is not the account's is noticed before anything is changed.
        QVERIFY_EXCEPTION_THROWN(
            actions.Apply(JobAction::Restart, data.account, {ids[0], ids[1], "x"_s}, 8), NotFound);
        QCOMPARE(data.Count("SELECT sum(run) FROM jobs"), 6);
        data.Change("DROP TRIGGER fails");
        actions.Apply(JobAction::Delete, data.account, ids, 9);
        QCOMPARE(data.Count("SELECT count(*) FROM jobs WHERE status = 5"), 4);
    }

    void PicturesAndLogsGoWithTheirRun()
    {
        const QString id = m_data.jobs.Add(m_data.Job("job"_s, 1)).id;
        JobActions actions(m_data.database, m_data.feed, m_data.terms, [] {});
        FrameStore frames(m_data.database);
        const auto finish = [&]() -> QString {
            m_data.Change(qPrintable(
                "UPDATE frames SET finished_at = 7, file = 'frame_0001.png' WHERE job = (SELECT key FROM "
                "jobs WHERE id = '%1');"
                "INSERT INTO frame_logs SELECT key, 1, 'done' FROM jobs WHERE id = '%1'"_s.arg(id)));
            return frames.List(m_data.account, id, 0).frames.at(0).file + frames.Log(m_data.account, id, 1);
        };
        QCOMPARE(finish(), "frame_0001.pngdone"_s);
        actions.Apply(JobAction::Restart, m_data.account, {id}, 8);
        QCOMPARE(frames.Log(m_data.account, id, 1), QString());
        QCOMPARE(finish(), "frame_0001.pngdone"_s);
        actions.Apply(JobAction::Delete, m_data.account, {id}, 9);
        QCOMPARE(frames.List(m_data.account, id, 0).frames.at(0).file, QString());
    }

    void RefusesUnreadableConditions_data() { AddRows(Unreadable); }
    void RefusesUnreadableConditions()
    {
        QVERIFY_EXCEPTION_THROWN(ReadJobConditions(std::get<0>(Row(Unreadable))), InvalidInput);
    }

private:
    static std::pair<std::int64_t, std::vector<std::int64_t>> SearchThroughAll(
        FarmData& data, const JobConditions& conditions, int offset, int count)
    {
        return data.database.Read([&](SQLite::Database& connection) {
            const JobFilter filter = FilterFor(data.account, conditions);
            SQLite::Statement query(connection,
                "SELECT number, count(*) OVER () FROM jobs WHERE " + filter.where + " ORDER BY number DESC");
            filter.BindTo(query);
            std::pair<std::int64_t, std::vector<std::int64_t>> found;
            for (int place = 0; query.executeStep(); ++place) {
                found.first = query.getColumn(1).getInt64();
                if (place >= offset && place < offset + count)
                    found.second.push_back(query.getColumn(0).getInt64());
            }
            return found;
        });
    }

    QTemporaryDir m_folder;
    FarmData m_data {m_folder.path()};
    QStringList m_ids;
};

QTEST_GUILESS_MAIN(JobsTest)
#include "tst_farm_jobs.moc"
