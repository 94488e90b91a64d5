#include "farm/base/local_time.h"
#include "farm/base/errors.h"
#include "tests/farm/farm_fixture.h"

#include <QtTest>

using namespace farm;

namespace {

std::int64_t Time(const char* text)
{
    return *TimeFromText(QString::fromLatin1(text));
}

} // namespace

class JobsTest : public QObject
{
    Q_OBJECT

private slots:
    // Six jobs of ann and one of bob, who has the same pool and a job with the same name.
    void initTestCase()
    {
        m_data = std::make_unique<FarmData>(m_folder.path());
        const std::int64_t bob = m_data->accounts.Add(
            {QStringLiteral("bob"), QStringLiteral("bob@example.org"), QStringLiteral("x"), true, 0, 0});
        const std::int64_t titles = m_data->accounts.AddProject(
            m_data->account, {QStringLiteral("Titles"), QStringLiteral("pool-a")});
        m_data->accounts.AddProject(bob, {QStringLiteral("Other"), QStringLiteral("pool-a")});

        struct Row
        {
            const char* name;
            const char* type;
            JobStatus status;
            bool rendering;
            bool titles;
            const char* submitted;
            const char* ended;
        };
        const Row rows[] = {
            {"Harbour_dawn", "povray", JobStatus::Finished, true, true, "2026-03-01 10:00:00",
                "2026-03-01 12:00:00"},
            {"harbour-DAWN 100%", "maya", JobStatus::Running, true, false, "2026-03-02 10:00:00", nullptr},
            {"Überflug", "povray", JobStatus::Failed, false, true, "2026-03-03 10:00:00",
                "2026-03-03 10:30:00"},
            {"gone", "povray", JobStatus::Deleted, true, false, "2026-03-04 10:00:00", nullptr},
            {"titles_v2", "povray", JobStatus::Waiting, false, false, "2026-03-05 10:00:00", nullptr},
            {"it's \"quoted\"", "blend'; --", JobStatus::Finished, true, false, "2026-03-06 10:00:00",
                "2026-03-07 00:00:00"},
        };
        for (const Row& row : rows) {
            NewJob job = m_data->Job(QString::fromUtf8(row.name));
            job.type = QString::fromLatin1(row.type);
            job.status = row.status;
            job.rendering = row.rendering;
            job.project = row.titles ? std::optional(titles) : std::nullopt;
            job.submittedAt = Time(row.submitted);
            const AddedJob added = m_data->jobs.Add(job);
            m_ids.append(added.id);
            if (row.ended) {
                m_data->database.Write([&](SQLite::Database& connection) {
                    Execute(
                        connection, "UPDATE jobs SET ended_at = ? WHERE key = ?", Time(row.ended), added.key);
                });
            }
        }
        NewJob foreign = m_data->Job(QStringLiteral("Harbour_dawn"));
        foreign.account = bob;
        m_ids.append(m_data->jobs.Add(foreign).id);
    }

    void ConditionsFindTheirJobs_data()
    {
        QTest::addColumn<QByteArray>("conditions");
        QTest::addColumn<QString>("numbers");
        QTest::addColumn<int>("page");
        QTest::addColumn<int>("pageSize");
        const char* const all = "6 5 3 2 1 of 5";
        const char* const none = "of 0";
        const auto row = [](const char* name, const QByteArray& conditions, const char* numbers, int page = 1,
                             int pageSize = 100) {
            QTest::newRow(name) << conditions << QString::fromLatin1(numbers) << page << pageSize;
        };
        row("none given: all but the deleted", "", all);
        row("empty object", "{}", all);
        row("empty values and unknown keys", R"({"job_name":"","status":null,"job_guid":"","colour":[1]})",
            all);
        row("number", R"({"job_increasement":"3"})", "3 of 1");
        row("part of a name, any case", R"({"job_name":"BOUR"})", "2 1 of 2");
        row("other alphabets, any case", R"({"job_name":"über"})", "3 of 1");
        row("percent stands for itself", R"({"job_name":"%"})", "2 of 1");
        row("underscore stands for itself", R"({"job_name":"r_d"})", "1 of 1");
        row("quotes stand for themselves", R"({"job_name":"'s \"q"})", "6 of 1");
        row("type by name", R"({"job_type":"maya"})", "2 of 1");
        row("type as three parts", R"({"job_type":"g@povray@POV-Ray"})", "5 3 1 of 3");
        row("type with SQL in it", R"({"job_type":"blend'; --"})", "6 of 1");
        row("status as number", R"({"status":4})", "6 1 of 2");
        row("status as text", R"({"status":"7"})", "3 of 1");
        row("status 0 is a status", R"({"status":0})", "5 of 1");
        row("deleted when asked for", R"({"status":"5"})", "4 of 1");
        row("status that nobody has", R"({"status":42})", none);
        row("pool of the own project", R"({"pool_id":"pool-a"})", "3 1 of 2");
        row("normal work", R"({"job_business_type":"0"})", "5 3 of 2");
        row("rendering work", R"({"job_business_type":"1"})", "6 2 1 of 3");
        const QByteArray ids
            = (m_ids.at(0) + QStringLiteral(", ") + m_ids.at(4) + QStringLiteral(",x,")).toUtf8();
        row("among ids", "{\"job_guid\":\"" + ids + "\"}", "5 1 of 2");
        row("id of another account", "{\"job_guid\":\"" + m_ids.at(6).toUtf8() + "\"}", none);
        row("ids that name nothing", R"({"job_guid":"abcdefg"})", none);
        row("submission bounds included",
            R"({"start_min_time":"2026-03-02 10:00:00","start_max_time":"2026-03-03 10:00:00"})", "3 2 of 2");
        row("submitted up to", R"({"start_max_time":"2026-03-02 09:59:59"})", "1 of 1");
        row("end bounds included",
            R"({"end_min_time":"2026-03-03 10:30:00","end_max_time":"2026-03-07 00:00:00"})", "6 3 of 2");
        row("all must hold", R"({"status":4,"job_type":"povray","job_name":"dawn"})", "1 of 1");
        row("all must hold, one does not", R"({"status":4,"job_name":"titles"})", none);
        row("first page", "", "6 5 of 5", 1, 2);
        row("last page, not full", "", "1 of 5", 3, 2);
        row("past the end", "", "of 5", 4, 2);
        row("far past the end", "", "of 5", 1000000000, 1000);
    }

    void ConditionsFindTheirJobs()
    {
        QFETCH(QByteArray, conditions);
        QFETCH(int, page);
        QFETCH(int, pageSize);
        const JobPage found
            = m_data->jobs.List(m_data->account, ParseJobConditions(conditions), page, pageSize);
        QString numbers;
        for (const JobRecord& job : found.jobs)
            numbers += QString::number(job.number) + QLatin1Char(' ');
        numbers += QStringLiteral("of %1").arg(found.total);
        QTEST(numbers, "numbers");
    }

    void UnreadableConditionsAreRefused_data()
    {
        QTest::addColumn<QByteArray>("conditions");
        const char* const texts[] = {"[]", "7", "{", "null", "\"status\"", R"({"status":"running"})",
            R"({"status":1.5})", R"({"status":1e300})", R"({"status":[1]})", R"({"status":true})",
            R"({"job_name":{}})", R"({"job_increasement":"99999999999999999999"})", R"({"job_type":"a@b"})",
            R"({"job_business_type":"2"})", R"({"start_min_time":"yesterday"})",
            R"({"end_max_time":"2026-02-30 10:00:00"})", "{\"job_name\":\"\xff\"}"};
        for (const char* text : texts)
            QTest::newRow(text) << QByteArray(text);
        QTest::newRow("deep") << QByteArray(100000, '[');
    }

    void UnreadableConditionsAreRefused()
    {
        QFETCH(QByteArray, conditions);
        QVERIFY_EXCEPTION_THROWN(ParseJobConditions(conditions), BadInput);
    }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<FarmData> m_data;
    QStringList m_ids;
};

QTEST_GUILESS_MAIN(JobsTest)
#include "tst_farm_jobs.moc"
