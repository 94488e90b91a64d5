#include "farm/jobs/account_storage.h"

#include "farm/uploads/content_store.h"

namespace farm {

namespace {

std::int64_t Sum(SQLite::Database& connection, const std::string& sql, std::int64_t account)
{
    SQLite::Statement query(connection, sql);
    Bind(query, account);
    return query.executeStep() ? query.getColumn(0).getInt64() : 0;
}

std::vector<AccountStorage::Job> LargestJobs(SQLite::Database& connection, std::int64_t account, int most)
{
    SQLite::Statement query(connection,
        "SELECT id, number, name, status, scene_bytes, picture_bytes FROM jobs INDEXED BY jobs_by_bytes "
        "WHERE account = ? AND files > 0 ORDER BY scene_bytes + picture_bytes DESC LIMIT ?");
    Bind(query, account, most);
    std::vector<AccountStorage::Job> jobs;
    while (query.executeStep())
        jobs.push_back({Text(query.getColumn(0)), query.getColumn(1).getInt64(), Text(query.getColumn(2)),
            query.getColumn(3).getInt(), query.getColumn(4).getInt64(), query.getColumn(5).getInt64()});
    return jobs;
}

} // namespace

AccountStorage StorageOf(Database& database, std::int64_t account, int mostJobs)
{
    return database.Read([account, mostJobs](SQLite::Database& connection) {
        AccountStorage storage;
        const std::string contents = "SELECT coalesce(sum(size), 0) FROM contents WHERE account = ?";
        storage.contents = Sum(connection, contents, account);
        storage.unneeded = Sum(connection, contents + " AND " + NoJobNeedsTheContent, account);
        storage.uploads = Sum(connection,
            "SELECT coalesce(sum(size), 0) FROM uploads WHERE account = ? AND unpacked IS NULL", account);
        storage.pictures = Sum(connection,
            "SELECT coalesce(sum(picture_bytes), 0) FROM jobs WHERE account = ? AND files > 0", account);
        storage.jobs = LargestJobs(connection, account, mostJobs + 1);
        storage.hasMoreJobs = storage.jobs.size() > std::size_t(mostJobs);
        if (storage.hasMoreJobs)
            storage.jobs.pop_back();
        return storage;
    });
}

} // namespace farm
