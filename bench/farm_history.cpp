#include "bench/farm_history.h"

#include "farm/accounts/secrets.h"
#include "farm/base/schema.h"

#include <QDir>

namespace {

constexpr qint64 End = 1'760'000'000; // seconds since the epoch
constexpr std::size_t FirstVersion = 4;

// Every 25th job is failed, every 20th deleted and every 100th paused; the newest ones wait, and all others are finished.
constexpr const char* AddJobs = R"sql(
WITH RECURSIVE counter(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM counter WHERE i < ?1)
INSERT INTO jobs(id, account, number, project, type, name, folded_name, business, status, scene, width, height,
    submitted_at, ended_at)
SELECT lower(hex(randomblob(16))), ?2, i,
    iif(?2 = 1 AND i % 7 < ?5, i % 7 + 1, NULL), iif(i % 3 = 0, 'maya', 'povray'),
    'Shot_' || printf('%07d', i) || '_' || iif(i % 5 = 0, 'Lighting', 'comp'),
    'shot_' || printf('%07d', i) || '_' || iif(i % 5 = 0, 'lighting', 'comp'),
    1, CASE WHEN i > ?1 - ?4 THEN 0 WHEN i * 7919 % 25 = 0 THEN 7 WHEN i * 7919 % 20 = 1 THEN 5
        WHEN i * 7919 % 100 = 2 THEN 2 ELSE 4 END,
    'scene.pov', 320, 180, ?3 + i * ?6, iif(i > ?1 - ?4, NULL, ?3 + i * ?6 + 60 + i * 31 % 7200)
FROM counter
)sql";

constexpr const char* AddFrames = R"sql(
INSERT INTO frame_ranges(job, first, last) SELECT key, 1, 2 FROM jobs;
INSERT INTO frames(job, number, finished_at, changed_at, file, size, checksum)
    SELECT jobs.key, value, ended_at, 1, iif(ended_at IS NULL, NULL, 'frame_000' || value || '.png'), 1000, 'x'
    FROM jobs, json_each('[1,2]');
INSERT INTO charges(account, job, frame, core_milliseconds, amount, charged_at)
    SELECT account, jobs.key, value, 1000, 10000, ended_at FROM jobs, json_each('[1,2]') WHERE ended_at IS NOT NULL;
)sql";

} // namespace

void FarmHistory::Write() const
{
    // An early schema is quick to fill; a farm then upgrades it as it does on a studio's disk.
    const auto all = farm::Schema();
    const storage::Migrations early(all.begin(), all.begin() + FirstVersion);
    const QString path = QDir(folder).filePath(QStringLiteral("farm.sqlite"));
    farm::Database(path, early).Write([this](SQLite::Database& connection) {
        using storage::Execute;
        const QString password = farm::HashPassword(QStringLiteral("secret"));
        for (const char* name : {"ann", "bob"})
            Execute(connection,
                "INSERT INTO accounts(name, email, password, bound, balance, second_balance) "
                "VALUES (?1, ?1 || '@example.org', ?2, 1, 1000000000, 0)",
                QString::fromLatin1(name), password);
        for (int project = 1; project <= Projects; ++project)
            Execute(connection,
                "INSERT INTO projects(account, name, pool) VALUES (1, 'Project ' || ?1, 'pool-' || ?1)",
                project);
        Execute(connection, AddJobs, jobs, 1, End - qint64(jobs) * Interval, WaitingJobs, Projects, Interval);
        Execute(connection, AddJobs, 100, 2, End - qint64(100) * Interval, 10, Projects, Interval);
        connection.exec(AddFrames);
    });
    // No job has a folder, and the farm would look for each folder during the measurement.
    farm::Database(path, all).Write(
        [](SQLite::Database& connection) { connection.exec("UPDATE jobs SET files = 0"); });
}

qint64 FarmHistory::SubmittedAt(int number) const
{
    return End - qint64(jobs) * Interval + qint64(number) * Interval;
}
