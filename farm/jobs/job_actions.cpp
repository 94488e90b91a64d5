#include "farm/jobs/job_actions.h"

#include "farm/jobs/frame_ranges.h"
#include "farm/jobs/job_status.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <stdexcept>
#include <utility>

namespace farm {

namespace {

/// What an action does to which jobs, and whether they go on rendering by it.
struct Rule
{
    const char* appliesTo;
    JobStatus next;
    bool sendsToWork;
};

// The codes are those of JobStatus.
Rule RuleOf(JobAction action)
{
    switch (action) {
    case JobAction::Stop:
        return {"status IN (0, 1, 3, 6)", JobStatus::Paused, false};
    case JobAction::Recover:
        return {"status IN (2, 7, 8, 9)", JobStatus::Waiting, true};
    case JobAction::Restart:
        return {"status <> 5", JobStatus::Waiting, true};
    case JobAction::Delete:
        return {"status <> 5", JobStatus::Deleted, false};
    case JobAction::FullRender:
        return {"status <> 5 AND (SELECT count(*) FROM frames WHERE job = jobs.key) < "
                "(SELECT sum(last - first + 1) FROM frame_ranges WHERE job = jobs.key)",
            JobStatus::ToFullRender, true};
    }
    throw std::logic_error("no such action");
}

/// The keys of the jobs to which the action applies, as a JSON array; nothing when an id is not the account's.
std::optional<QString> AffectedJobs(
    SQLite::Database& connection, const char* appliesTo, std::int64_t account, const QStringList& ids)
{
    SQLite::Statement query(connection,
        std::string("SELECT count(*), json_group_array(key) FILTER (WHERE ") + appliesTo
            + ") FROM jobs WHERE account = ? AND id IN (SELECT value FROM json_each(?))");
    Bind(query, account,
        QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(ids)).toJson(QJsonDocument::Compact)));
    query.executeStep();
    if (query.getColumn(0).getInt() != ids.size())
        return std::nullopt;
    return Text(query.getColumn(1));
}

void ForgetFrames(SQLite::Database& connection, const QString& jobs)
{
    Execute(connection,
        "UPDATE frames SET finished_at = NULL, file = NULL, size = NULL, checksum = NULL WHERE job IN "
        "(SELECT value FROM json_each(?))",
        jobs);
    // A frame that is just being rendered belongs to the earlier run and is not counted for this one.
    Execute(connection, "UPDATE jobs SET run = run + 1 WHERE key IN (SELECT value FROM json_each(?))", jobs);
}

void SendToWork(SQLite::Database& connection, const QString& jobs, std::int64_t now)
{
    Execute(connection,
        "UPDATE frames SET failures = 0 WHERE finished_at IS NULL AND job IN (SELECT value FROM "
        "json_each(?))",
        jobs);
    Execute(connection,
        "UPDATE jobs SET ended_at = NULL, message = '' WHERE key IN (SELECT value FROM json_each(?))", jobs);
    // The last frame may have been finished just when the job was stopped.
    Execute(connection,
        "UPDATE jobs SET status = ?2, ended_at = ?3 WHERE key IN (SELECT value FROM json_each(?1)) "
        "AND NOT EXISTS (SELECT 1 FROM frames WHERE job = jobs.key AND finished_at IS NULL)",
        jobs, static_cast<int>(JobStatus::Finished), now);
}

} // namespace

bool IsInArrears(SQLite::Database& connection, std::int64_t account)
{
    SQLite::Statement query(connection, "SELECT 1 FROM accounts WHERE key = ? AND balance <= 0");
    Bind(query, account);
    return query.executeStep();
}

JobActions::JobActions(Database& database, std::function<void()> changed)
    : m_database(database)
    , m_changed(std::move(changed))
{
}

std::optional<QStringList> JobActions::Do(
    JobAction action, std::int64_t account, QStringList ids, std::int64_t now)
{
    ids.removeDuplicates();
    const Rule rule = RuleOf(action);
    const auto act = [&](SQLite::Database& connection) -> std::optional<QStringList> {
        const auto jobs = AffectedJobs(connection, rule.appliesTo, account, ids);
        if (!jobs)
            return std::nullopt;
        if (rule.sendsToWork && IsInArrears(connection, account))
            return ids;
        Execute(connection, "UPDATE jobs SET status = ?2 WHERE key IN (SELECT value FROM json_each(?1))",
            *jobs, static_cast<int>(rule.next));
        if (action == JobAction::Restart)
            ForgetFrames(connection, *jobs);
        if (action == JobAction::FullRender)
            AddMissingFrames(connection, *jobs);
        if (rule.sendsToWork)
            SendToWork(connection, *jobs, now);
        return QStringList();
    };
    const auto refused = m_database.Write(act);
    if (refused)
        m_changed();
    return refused;
}

} // namespace farm
