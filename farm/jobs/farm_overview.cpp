#include "farm/jobs/farm_overview.h"

namespace farm {

FarmOverview::FarmOverview(Database& database)
    : m_database(database)
{
}

bool FarmOverview::IsAdministrator(std::int64_t account)
{
    return m_database.Read([account](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT 1 FROM accounts WHERE key = ? AND administrator");
        Bind(query, account);
        return query.executeStep();
    });
}

// There are few kept counts of the largest blocks. CROSS JOIN makes SQLite look them up account by account.
std::vector<AccountQueue> FarmOverview::Queues()
{
    return m_database.Read([](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT name, sum(iif(status IN (0, 6), jobs, 0)), sum(iif(status = 1, jobs, 0)), "
            "sum(iif(status IN (2, 3), jobs, 0)), sum(iif(status IN (8, 9), jobs, 0)), "
            "sum(iif(status = 7, jobs, 0)) "
            "FROM accounts CROSS JOIN job_counts ON account = accounts.key AND shift = 24 "
            "WHERE status NOT IN (4, 5) GROUP BY accounts.key ORDER BY name");
        std::vector<AccountQueue> queues;
        while (query.executeStep())
            queues.push_back({Text(query.getColumn(0)), query.getColumn(1).getInt64(),
                query.getColumn(2).getInt64(), query.getColumn(3).getInt64(), query.getColumn(4).getInt64(),
                query.getColumn(5).getInt64()});
        return queues;
    });
}

std::vector<FailedJob> FarmOverview::Failures(int most)
{
    return m_database.Read([most](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT accounts.name, id, jobs.name, iif(message <> '', message, hindrance), coalesce(ended_at, "
            "0), "
            "coalesce((SELECT min(number) FROM frames "
            "WHERE job = jobs.key AND finished_at IS NULL AND retry_at IS NOT NULL), 0) "
            "FROM jobs INDEXED BY jobs_in_trouble JOIN accounts ON accounts.key = account "
            "WHERE (message <> '' OR hindrance <> '') AND status <> 5 "
            "ORDER BY ifnull(ended_at, 9000000000000) DESC LIMIT ?");
        Bind(query, most);
        std::vector<FailedJob> failures;
        while (query.executeStep())
            failures.push_back(
                {{Text(query.getColumn(0)), Text(query.getColumn(1)), Text(query.getColumn(2))},
                    Text(query.getColumn(3)), query.getColumn(5).getInt(), query.getColumn(4).getInt64()});
        return failures;
    });
}

std::map<QString, QString> FarmOverview::HinderedTypes()
{
    return m_database.Read([](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT type, message FROM hindered_types UNION ALL SELECT type, message FROM stopped_types");
        std::map<QString, QString> types;
        while (query.executeStep())
            types[Text(query.getColumn(0))] = Text(query.getColumn(1));
        return types;
    });
}

std::map<std::int64_t, NamedJob> FarmOverview::Jobs(const std::set<std::int64_t>& keys)
{
    return m_database.Read([&keys](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT accounts.name, id, jobs.name FROM jobs JOIN accounts ON accounts.key = account "
            "WHERE jobs.key = ?");
        std::map<std::int64_t, NamedJob> jobs;
        for (const std::int64_t key : keys) {
            query.reset();
            Bind(query, key);
            if (query.executeStep())
                jobs[key] = {Text(query.getColumn(0)), Text(query.getColumn(1)), Text(query.getColumn(2))};
        }
        return jobs;
    });
}

std::map<int, std::int64_t> FarmOverview::JobsByStatus()
{
    return m_database.Read([](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT status, sum(jobs) FROM accounts CROSS JOIN job_counts "
            "ON account = accounts.key AND shift = 24 GROUP BY status");
        std::map<int, std::int64_t> jobs;
        while (query.executeStep())
            jobs[query.getColumn(0).getInt()] = query.getColumn(1).getInt64();
        return jobs;
    });
}

} // namespace farm
