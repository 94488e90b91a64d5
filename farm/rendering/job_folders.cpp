#include "farm/rendering/job_folders.h"

#include "farm/base/random.h"
#include "farm/base/remove_tree.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <spdlog/spdlog.h>

#include <cstdio>

namespace farm {

namespace {

constexpr const char* DeletedJobs = "jobs INDEXED BY jobs_to_free WHERE status = 5 AND files > 0";
constexpr const char* UntidyJobs
    = "jobs INDEXED BY jobs_to_tidy WHERE status IN (2, 3, 4, 7, 8, 9) AND files = 2";
constexpr const char* JobsAtWork = "jobs INDEXED BY jobs_at_work WHERE status IN (0, 1, 6) AND files = 2";
constexpr const char* WithoutRuns = " AND NOT EXISTS (SELECT 1 FROM runs WHERE runs.job = jobs.key)";

} // namespace

JobFolders::JobFolders(Database& database, const QString& folder)
    : m_database(database)
    , m_folder(folder)
{
}

bool JobFolders::FreeDeleted(const GoOn& goOn)
{
    const bool areFreed = Each(DeletedJobs, goOn, [&](const Job& job) { return Free(job, goOn); });
    // An earlier round may have set aside files of jobs that are recorded as freed already.
    return RemoveSetAside(goOn) && areFreed;
}

bool JobFolders::Tidy(const GoOn& goOn)
{
    const bool areTidy = Each(UntidyJobs, goOn, [&](const Job& job) { return TidyOne(job); });
    return RemoveSetAside(goOn) && areTidy;
}

bool JobFolders::RemoveEndedRuns(const GoOn& goOn)
{
    return Each(JobsAtWork, goOn, [&](const Job& job) { return RemoveEndedRunsOf(job, goOn); });
}

bool JobFolders::RemoveEndedRunsOf(const Job& job, const GoOn& goOn)
{
    const QDir folder(m_folder + QLatin1Char('/') + job.id + QStringLiteral("/runs"));
    const QStringList runs = folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    // A run is recorded before it gets its folder, so one that begins meanwhile is known.
    const QStringList known = m_database.Read([&job](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT id FROM runs WHERE job = ?");
        Bind(query, job.key);
        QStringList ids;
        while (query.executeStep())
            ids.append(Text(query.getColumn(0)));
        return ids;
    });
    // Anything that cannot be removed waits for the end of the job.
    for (const QString& run : runs) {
        if (!known.contains(run))
            RemoveTree(folder.filePath(run), goOn);
    }
    return goOn();
}

bool JobFolders::Each(const char* jobs, const GoOn& goOn, const std::function<bool(const Job&)>& work)
{
    bool isDone = true;
    std::int64_t after = 0;
    while (const auto job = Next(jobs, after)) {
        if (!goOn())
            return false;
        isDone = work(*job) && isDone;
        after = job->key;
    }
    return isDone;
}

std::optional<JobFolders::Job> JobFolders::Next(const char* jobs, std::int64_t after)
{
    return m_database.Read([&](SQLite::Database& connection) -> std::optional<Job> {
        SQLite::Statement query(
            connection, std::string("SELECT key, id FROM ") + jobs + " AND key > ? ORDER BY key LIMIT 1");
        Bind(query, after);
        if (!query.executeStep())
            return std::nullopt;
        return Job {query.getColumn(0).getInt64(), Text(query.getColumn(1))};
    });
}

bool JobFolders::Free(const Job& job, const GoOn& goOn)
{
    return SetAside(DeletedJobs, job, {QString()}) && ForgetFiles(job.key, goOn);
}

bool JobFolders::TidyOne(const Job& job)
{
    // Early versions of the farm rendered into "unfinished".
    // The next frame of the job gets the scene anew.
    const QStringList leftovers {QStringLiteral("/runs"), QStringLiteral("/unfinished"),
        QStringLiteral("/scene.unfinished"), QStringLiteral("/scene")};
    return SetAside(UntidyJobs, job, leftovers);
}

/// Moves parts of the job's folder aside, unless the job has changed. Meanwhile no run of the job can begin, because
/// runs are recorded first.
bool JobFolders::SetAside(const char* jobs, const Job& job, const QStringList& names)
{
    const QDir aside(m_folder + QStringLiteral("/.removed"));
    return m_database.Write([&](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, std::string("SELECT 1 FROM ") + jobs + " AND key = ?" + WithoutRuns);
        Bind(query, job.key);
        if (!query.executeStep())
            return false;
        query.reset();
        for (const QString& name : names) {
            const QString from = m_folder + QLatin1Char('/') + job.id + name;
            const QString to = aside.filePath(NewId());
            if (!QFileInfo::exists(from))
                continue;
            if (!aside.mkpath(QStringLiteral("."))
                || ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0) {
                spdlog::error("{} cannot be removed; the farm tries again later", from.toStdString());
                return false;
            }
        }
        Execute(connection, "UPDATE jobs SET files = 1 WHERE key = ?", job.key);
        return true;
    });
}

/// Removes what was set aside. Something that cannot be removed is reported once and keeps nothing else from being
/// removed. Returns false when it was stopped.
bool JobFolders::RemoveSetAside(const GoOn& goOn)
{
    const std::lock_guard<std::mutex> lock(m_removing);
    QDir aside(m_folder + QStringLiteral("/.removed"));
    const QStringList entries
        = aside.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    for (const QString& entry : entries) {
        const QString path = aside.filePath(entry);
        if (RemoveTree(path, goOn))
            continue;
        if (!goOn())
            return false;
        if (m_unremovable.insert(path).second)
            spdlog::error("{} cannot be removed; the farm tries again later", path.toStdString());
    }
    QDir(m_folder).rmdir(QStringLiteral(".removed"));
    return true;
}

/// Forgets a job's files and frames in small steps, because nobody else can write to the database during each.
bool JobFolders::ForgetFiles(std::int64_t job, const GoOn& goOn)
{
    for (const char* forget :
        {"DELETE FROM frame_logs WHERE rowid IN (SELECT rowid FROM frame_logs WHERE job = ? LIMIT 500)",
            "DELETE FROM job_files WHERE job = ?1 AND path IN "
            "(SELECT path FROM job_files WHERE job = ?1 LIMIT 500)",
            "DELETE FROM frames WHERE job = ?1 AND number IN "
            "(SELECT number FROM frames WHERE job = ?1 LIMIT 500)"}) {
        int count = 1;
        while (count > 0) {
            if (!goOn())
                return false;
            count = m_database.Write(
                [&](SQLite::Database& connection) { return Execute(connection, forget, job); });
        }
    }
    m_database.Write([job](SQLite::Database& connection) {
        Execute(connection,
            "UPDATE jobs SET files = 0, picture_bytes = 0, scene_bytes = 0 WHERE key = ? AND files = 1", job);
    });
    return true;
}

} // namespace farm
