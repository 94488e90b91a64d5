#include "farm/base/errors.h"
#include "farm/base/local_time.h"
#include "farm/http/read_conditions.h"
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
    // Six jobs of ann's and one of bob's, who has the same pool and a job with the same name.
    void initTestCase()
    {
        m_data = std::make_unique<FarmData>(m_folder.path());
        const std::int64_t bob = m_data->accounts.Add({"bob"_s, "bob@example.org"_s, "x"_s, true, 0, 0});
        const std::int64_t titles = m_data->accounts.AddProject(m_data->account, {"Titles"_s, "pool-a"_s});
        m_data->accounts.AddProject(bob, {"Other"_s, "pool-a"_s});

        const auto add = [&](const QString& name, const char* type, JobStatus status, bool rendering,
                             bool inTitles, const char* submitted, const char* ended = nullptr) {
            NewJob job = m_data->Job(name);
            job.type = QString::fromLatin1(type);
            job.status = status;
            job.rendering = rendering;
            job.project = inTitles ? std::optional(titles) : std::nullopt;
            job.submittedAt = Time(submitted);
            m_ids.append(m_data->jobs.Add(job).id);
            if (ended)
                m_data->Change(qPrintable(
                    "UPDATE jobs SET ended_at = %1 WHERE id = '%2'"_s.arg(Time(ended)).arg(m_ids.last())));
        };
        const char* const firstEnd = "2026-03-01 12:00:00";
        add("Harbour_dawn"_s, "povray", JobStatus::Finished, true, true, "2026-03-01 10:00:00", firstEnd);
        add("harbour-DAWN 100%"_s, "maya", JobStatus::Running, true, false, "2026-03-02 10:00:00");
        add("Überflug"_s, "povray", JobStatus::Failed, false, true, "2026-03-03 10:00:00",
            "2026-03-03 10:30:00");
        add("gone"_s, "povray", JobStatus::Deleted, true, false, "2026-03-04 10:00:00");
        add("titles_v2"_s, "povray", JobStatus::Waiting, false, false, "2026-03-05 10:00:00");
        add("it's \"quoted\""_s, "blend'; --", JobStatus::Finished, true, false, "2026-03-06 10:00:00",
            "2026-03-07 00:00:00");
        NewJob foreign = m_data->Job("Harbour_dawn"_s);
        foreign.account = bob;
        m_ids.append(m_data->jobs.Add(foreign).id);
    }

    void FindsJobsThatMeetTheConditions_data()
    {
        QTest::addColumn<QByteArray>("conditions");
        QTest::addColumn<QString>("numbers");
        QTest::addColumn<int>("page");
        QTest::addColumn<int>("pageSize");
        const char* const all = "6 5 3 2 1 of 5";
        const auto row = [](const char* name, const QByteArray& conditions, const char* numbers, int page = 1,
                             int pageSize = 100) {
            QTest::newRow(name) << conditions << QString::fromLatin1(numbers) << page << pageSize;
        };
        row("none given: all but the deleted", "", all);
        row("empty values and unknown keys", R"({"job_name":"","status":null,"job_guid":"","colour":[1]})",
            all);
        row("number", R"({"job_increasement":"3"})", "3 of 1");
        row("part of a name, any case", R"({"job_name":" BOUR "})", "2 1 of 2");
        row("other alphabets, any case", R"({"job_name":"über"})", "3 of 1");
        row("percent stands for itself", R"({"job_name":"%"})", "2 of 1");
        row("underscore stands for itself", R"({"job_name":"r_d"})", "1 of 1");
        row("quotes stand for themselves", R"({"job_name":"'s \"q"})", "6 of 1");
        row("type by name", R"({"job_type":"maya"})", "2 of 1");
        row("type as three parts", R"({"job_type":"g@povray@POV-Ray"})", "5 3 1 of 3");
        row("type with SQL in it", R"({"job_type":"blend'; --"})", "6 of 1");
        row("status as number", R"({"status":4})", "6 1 of 2");
        row("status 0 is a status", R"({"status":0})", "5 of 1");
        row("deleted when asked for", R"({"status":"5"})", "4 of 1");
        row("pool of the own project", R"({"pool_id":"pool-a"})", "3 1 of 2");
        row("rendering work", R"({"job_business_type":"1"})", "6 2 1 of 3");
        const QByteArray ids = (m_ids.at(0) + ", "_s + m_ids.at(4) + ",x,"_s).toUtf8();
        row("among ids", "{\"job_guid\":\"" + ids + "\"}", "5 1 of 2");
        row("id of another account", "{\"job_guid\":\"" + m_ids.at(6).toUtf8() + "\"}", "of 0");
        row("submission bounds included",
            R"({"start_min_time":"2026-03-02 10:00:00","start_max_time":"2026-03-03 10:00:00"})", "3 2 of 2");
        row("submitted up to", R"({"start_max_time":"2026-03-02 09:59:59"})", "1 of 1");
        row("end bounds included",
            R"({"end_min_time":"2026-03-03 10:30:00","end_max_time":"2026-03-07 00:00:00"})", "6 3 of 2");
        row("all must hold", R"({"status":4,"job_type":"povray","job_name":"dawn"})", "1 of 1");
        row("first page", "", "6 5 of 5", 1, 2);
        row("last page, not full", "", "1 of 5", 3, 2);
        row("past the end", "", "of 5", 4, 2);
    }

    void FindsJobsThatMeetTheConditions()
    {
        QFETCH(QByteArray, conditions);
        QFETCH(int, page);
        QFETCH(int, pageSize);
        const JobPage found
            = m_data->jobs.List(m_data->account, ReadJobConditions(conditions), page, pageSize);
        QString numbers;
        for (const JobRecord& job : found.jobs)
            numbers += QString::number(job.number) + QLatin1Char(' ');
        numbers += "of %1"_s.arg(found.total);
        QTEST(numbers, "numbers");
    }

    void RefusesUnreadableConditions_data()
    {
        QTest::addColumn<QByteArray>("conditions");
        const char* const texts[] = {"[]", "{", R"({"status":"running"})", R"({"status":1.5})",
            R"({"status":1e300})", R"({"status":true})", R"({"job_increasement":"99999999999999999999"})",
            R"({"job_type":"a@b"})", R"({"job_business_type":"2"})", R"({"start_min_time":"yesterday"})",
            R"({"end_max_time":"2026-02-30 10:00:00"})", "{\"job_name\":\"\xff\"}"};
        for (const char* text : texts)
            QTest::newRow(text) << QByteArray(text);
        QTest::newRow("deep") << QByteArray(100000, '[');
    }

    void RefusesUnreadableConditions()
    {
        QFETCH(QByteArray, conditions);
        QVERIFY_EXCEPTION_THROWN(ReadJobConditions(conditions), InvalidInput);
    }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<FarmData> m_data;
    QStringList m_ids;
};

QTEST_GUILESS_MAIN(JobsTest)
#include "tst_farm_jobs.moc"
