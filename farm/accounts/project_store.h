#pragma once

#include "farm/accounts/audit.h"

#include <QStringList>

#include <optional>
#include <vector>

namespace farm {

/// A group of accounts that work together.
struct Project
{
    QString name;
    /// The GUID by which clients and jobs name the project.
    QString pool;
};

struct ProjectEntry
{
    Project project;
    QStringList members;
    std::int64_t jobs = 0;
};

/// Projects and their members. Functions accept a project's pool or its name. Changes are recorded in
/// the audit. Thread-safe.
class ProjectStore
{
public:
    explicit ProjectStore(Database& database, const Actor& actor = {});

    /// Returns the project's key. Throws Conflict when the name or the pool is taken, and InvalidInput.
    std::int64_t Add(const Project& project, std::int64_t now);
    void Rename(const QString& project, const QString& name, std::int64_t now);
    /// Its jobs no longer belong to a project. Throws Conflict when there are such jobs and `evenWithJobs` is not set.
    void Remove(const QString& project, bool evenWithJobs, std::int64_t now);
    void Assign(const QString& project, const QString& account, std::int64_t now);
    void Unassign(const QString& project, const QString& account, std::int64_t now);

    /// The projects of an account, sorted by name.
    std::vector<Project> OfAccount(std::int64_t account);
    /// All projects, sorted by name.
    std::vector<ProjectEntry> List();

private:
    void Record(SQLite::Database& connection, const char* action, const QString& project, std::int64_t now,
        const QString& details = {});

    Database& m_database;
    Actor m_actor;
};

/// The account's project with this pool; nothing when the account does not belong to it.
std::optional<std::int64_t> FindProject(
    SQLite::Database& connection, std::int64_t account, const QString& pool);

} // namespace farm
