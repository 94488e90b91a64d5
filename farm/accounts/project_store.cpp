#include "farm/accounts/project_store.h"

#include "farm/accounts/account_names.h"
#include "farm/base/errors.h"

namespace farm {

namespace {

struct Found
{
    std::int64_t key = 0;
    QString name;
};

Found Find(SQLite::Database& connection, const QString& project)
{
    SQLite::Statement query(connection,
        "SELECT key, name FROM projects WHERE pool = ?1 OR name = ?1 COLLATE NOCASE ORDER BY pool = ?1 DESC");
    Bind(query, project);
    if (!query.executeStep())
        throw NotFound("there is no project \"" + project.toStdString() + '"');
    return {query.getColumn(0).getInt64(), Text(query.getColumn(1))};
}

void CheckName(SQLite::Database& connection, const QString& name, std::int64_t own)
{
    CheckPlainName(name, "the name of a project");
    SQLite::Statement query(connection, "SELECT 1 FROM projects WHERE name = ? COLLATE NOCASE AND key <> ?");
    Bind(query, name, own);
    if (query.executeStep())
        throw Conflict("there is a project \"" + name.toStdString() + "\" already");
}

QStringList MembersOf(SQLite::Database& connection, std::int64_t project)
{
    SQLite::Statement query(connection,
        "SELECT name FROM project_members JOIN accounts ON accounts.key = account WHERE project = ? ORDER BY "
        "name");
    Bind(query, project);
    QStringList members;
    while (query.executeStep())
        members.append(Text(query.getColumn(0)));
    return members;
}

} // namespace

ProjectStore::ProjectStore(Database& database, const Actor& actor)
    : m_database(database)
    , m_actor(actor)
{
}

std::int64_t ProjectStore::Add(const Project& project, std::int64_t now)
{
    return m_database.Write([&](SQLite::Database& connection) {
        CheckName(connection, project.name, 0);
        CheckPlainName(project.pool, "the pool of a project");
        if (Execute(connection, "INSERT OR IGNORE INTO projects(name, pool) VALUES (?, ?)", project.name,
                project.pool)
            == 0)
            throw Conflict("there is a project with this pool already");
        const std::int64_t key = connection.getLastInsertRowid();
        Record(connection, "project add", project.name, now, project.pool);
        return key;
    });
}

void ProjectStore::Rename(const QString& project, const QString& name, std::int64_t now)
{
    m_database.Write([&](SQLite::Database& connection) {
        const Found found = Find(connection, project);
        CheckName(connection, name, found.key);
        Execute(connection, "UPDATE projects SET name = ?2 WHERE key = ?1", found.key, name);
        Record(connection, "project rename", found.name, now, name);
    });
}

void ProjectStore::Remove(const QString& project, bool evenWithJobs, std::int64_t now)
{
    m_database.Write([&](SQLite::Database& connection) {
        const Found found = Find(connection, project);
        SQLite::Statement count(connection, "SELECT count(*) FROM jobs WHERE project = ?");
        Bind(count, found.key);
        count.executeStep();
        const int jobs = count.getColumn(0).getInt();
        if (jobs != 0 && !evenWithJobs)
            throw Conflict("the project has " + std::to_string(jobs)
                + " jobs; add --force to remove it nevertheless, which leaves them without a project");
        Execute(connection, "UPDATE jobs SET project = NULL WHERE project = ?", found.key);
        Execute(connection, "DELETE FROM projects WHERE key = ?", found.key);
        Record(connection, "project remove", found.name, now);
    });
}

void ProjectStore::Assign(const QString& project, const QString& account, std::int64_t now)
{
    m_database.Write([&](SQLite::Database& connection) {
        const Found found = Find(connection, project);
        const NamedAccount member = RequireAccount(connection, account);
        Execute(connection, "INSERT OR IGNORE INTO project_members(account, project) VALUES (?, ?)",
            member.key, found.key);
        Record(connection, "project assign", found.name, now, member.name);
    });
}

void ProjectStore::Unassign(const QString& project, const QString& account, std::int64_t now)
{
    m_database.Write([&](SQLite::Database& connection) {
        const Found found = Find(connection, project);
        const NamedAccount member = RequireAccount(connection, account);
        if (Execute(connection, "DELETE FROM project_members WHERE account = ? AND project = ?", member.key,
                found.key)
            == 0)
            throw NotFound(member.name.toStdString() + " does not belong to " + found.name.toStdString());
        Record(connection, "project unassign", found.name, now, member.name);
    });
}

std::vector<Project> ProjectStore::OfAccount(std::int64_t account)
{
    return m_database.Read([account](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT name, pool FROM projects JOIN project_members ON project = projects.key WHERE account = "
            "? "
            "ORDER BY name");
        Bind(query, account);
        std::vector<Project> projects;
        while (query.executeStep())
            projects.push_back({Text(query.getColumn(0)), Text(query.getColumn(1))});
        return projects;
    });
}

std::vector<ProjectEntry> ProjectStore::List()
{
    return m_database.Read([](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT key, name, pool, (SELECT count(*) FROM jobs WHERE project = projects.key) FROM projects "
            "ORDER BY name");
        std::vector<ProjectEntry> entries;
        while (query.executeStep())
            entries.push_back({{Text(query.getColumn(1)), Text(query.getColumn(2))},
                MembersOf(connection, query.getColumn(0).getInt64()), query.getColumn(3).getInt64()});
        return entries;
    });
}

void ProjectStore::Record(SQLite::Database& connection, const char* action, const QString& project,
    std::int64_t now, const QString& details)
{
    RecordChange(connection, now, m_actor, QLatin1String(action), project, details);
}

std::optional<std::int64_t> FindProject(
    SQLite::Database& connection, std::int64_t account, const QString& pool)
{
    SQLite::Statement query(connection,
        "SELECT projects.key FROM projects JOIN project_members ON project = projects.key "
        "WHERE account = ? AND pool = ?");
    Bind(query, account, pool);
    if (!query.executeStep())
        return std::nullopt;
    return query.getColumn(0).getInt64();
}

} // namespace farm
