#include "farm/jobs/job_actions.h"

#include "farm/accounts/account_terms.h"
#include "farm/base/errors.h"
#include "farm/jobs/frame_ranges.h"
#include "farm/jobs/job_status.h"
#include "farm/jobs/job_turn.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <stdexcept>
#include <utility>

namespace farm {

namespace {

struct Rule
{
    /// A condition over `jobs`; its numbers are codes of JobStatus.
    const char* appliesTo;
    JobStatus next;
    /// Whether the action makes the farm render the jobs again.
    bool sendsToWork;
    /// Its name in the audit.
    const char* words;
};

Rule RuleOf(JobAction action)
{
    switch (action) {
    case JobAction::Stop:
        return {"status IN (0, 1, 3, 6)", JobStatus::Paused, false, "job stop"};
    case JobAction::Recover:
        return {"status IN (2, 7, 8, 9)", JobStatus::Waiting, true, "job recover"};
    case JobAction::Restart:
        return {"status <> 5", JobStatus::Waiting, true, "job restart"};
    case JobAction::Delete:
        return {"status <> 5", JobStatus::Deleted, false, "job delete"};
    case JobAction::FullRender:
        return {"status <> 5 AND (SELECT frames FROM job_sums WHERE job = jobs.key) < "
                "(SELECT sum((last - first) / step + 1) FROM frame_ranges WHERE job = jobs.key)",
            JobStatus::ToFullRender, true, "job full-render"};
    }
    throw std::logic_error("no such action");
}

/// The keys of the jobs to which the action applies, as a JSON array.
QString AffectedJobs(
    SQLite::Database& connection, const char* appliesTo, std::int64_t account, const QStringList& ids)
{
    // Without the plus, SQLite would go through all jobs of the account.
    SQLite::Statement query(connection,
        std::string("SELECT count(*), json_group_array(key) FILTER (WHERE ") + appliesTo
            + ") FROM jobs WHERE +account = ? AND id IN (SELECT value FROM json_each(?))");
    Bind(query, account,
        QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(ids)).toJson(QJsonDocument::Compact)));
    query.executeStep();
    if (query.getColumn(0).getInt() != ids.size())
        throw NotFound("there is no such job");
    return Text(query.getColumn(1));
}

void ForgetFrames(SQLite::Database& connection, const QString& jobs, std::int64_t now)
{
    Execute(connection,
        "UPDATE frames SET finished_at = NULL, file = NULL, size = NULL, checksum = NULL, changed_at = ?2 "
        "WHERE job IN (SELECT value FROM json_each(?1))",
        jobs, now);
    Execute(connection, "DELETE FROM frame_logs WHERE job IN (SELECT value FROM json_each(?))", jobs);
    // A frame that is being rendered at the moment belongs to the earlier run and does not count for the new one.
    Execute(connection,
        "UPDATE jobs SET run = run + 1, picture_bytes = 0 WHERE key IN (SELECT value FROM json_each(?))",
        jobs);
}

void SendToWork(SQLite::Database& connection, const QString& jobs, std::int64_t now)
{
    Execute(connection,
        "UPDATE frames SET failures = 0, retry_at = NULL, changed_at = ?2 WHERE finished_at IS NULL "
        "AND (failures <> 0 OR retry_at IS NOT NULL) AND job IN (SELECT value FROM json_each(?1))",
        jobs, now);
    Execute(connection,
        "UPDATE jobs SET ended_at = NULL, message = '' WHERE key IN (SELECT value FROM json_each(?))", jobs);
    // A job that was stopped while its last frame ended has nothing left to render and ends now.
    const QJsonArray keys = QJsonDocument::fromJson(jobs.toUtf8()).array();
    for (const QJsonValue& key : keys)
        UpdateTurn(connection, std::int64_t(key.toDouble()), now);
}

void RecordAction(SQLite::Database& connection, const char* words, const QString& jobs, std::int64_t now,
    const QString& address, const QString& details = QLatin1String(""))
{
    Execute(connection,
        "INSERT INTO audit(at, who, origin, action, subject, details) "
        "SELECT ?2, iif(?3 = '', 'the farm', (SELECT name FROM accounts WHERE key = jobs.account)), ?3, ?4, "
        "id, ?5 FROM jobs WHERE key IN (SELECT value FROM json_each(?1))",
        jobs, now, address, QString::fromLatin1(words), details);
}

} // namespace

JobActions::JobActions(
    Database& database, ChangeFeed& feed, const AccountTerms& terms, std::function<void()> changed)
    : m_database(database)
    , m_feed(feed)
    , m_terms(terms)
    , m_changed(std::move(changed))
{
}

QStringList JobActions::Apply(
    JobAction action, std::int64_t account, QStringList ids, std::int64_t now, const QString& address)
{
    ids.removeDuplicates();
    const bool isRefused = m_database.Read([&](SQLite::Database& connection) {
        AffectedJobs(connection, RuleOf(action).appliesTo, account, ids); // refuses ids of others
        return RuleOf(action).sendsToWork && m_terms.IsInArrears(connection, account);
    });
    if (!isRefused) {
        for (const QStringList& some : Portions(action, ids)) {
            ApplyAtOnce(action, account, some, now, address);
            m_feed.Announce(account, {QSet<QString>(some.cbegin(), some.cend()), true});
        }
    }
    m_changed();
    return isRefused ? ids : QStringList();
}

/// Splits the jobs so that their frames do not keep the database from others for long.
std::vector<QStringList> JobActions::Portions(JobAction action, const QStringList& ids)
{
    constexpr std::int64_t MostFrames = 20'000;
    if (!RuleOf(action).sendsToWork)
        return {ids};
    return m_database.Read([&ids](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT sum((last - first) / step + 1) FROM frame_ranges "
            "WHERE job = (SELECT key FROM jobs WHERE id = ?)");
        std::vector<QStringList> portions;
        std::int64_t frames = 0;
        for (const QString& id : ids) {
            query.reset();
            Bind(query, id);
            const std::int64_t more = query.executeStep() ? query.getColumn(0).getInt64() : 0;
            if (portions.empty() || frames + more > MostFrames) {
                portions.emplace_back();
                frames = 0;
            }
            portions.back().append(id);
            frames += more;
        }
        return portions;
    });
}

void JobActions::ApplyAtOnce(
    JobAction action, std::int64_t account, const QStringList& ids, std::int64_t now, const QString& address)
{
    const Rule rule = RuleOf(action);
    m_database.Write([&](SQLite::Database& connection) {
        const QString jobs = AffectedJobs(connection, rule.appliesTo, account, ids);
        RecordAction(connection, rule.words, jobs, now, address);
        Execute(connection,
            "UPDATE jobs SET status = ?2, hindrance = '' WHERE key IN (SELECT value FROM json_each(?1))",
            jobs, static_cast<int>(rule.next));
        if (action == JobAction::Restart)
            ForgetFrames(connection, jobs, now);
        if (action == JobAction::FullRender)
            AddMissingFrames(connection, jobs, now);
        if (rule.sendsToWork)
            SendToWork(connection, jobs, now);
    });
}

void JobActions::SetPriority(
    std::int64_t account, QStringList ids, int priority, std::int64_t now, const QString& address)
{
    ids.removeDuplicates();
    m_database.Write([&](SQLite::Database& connection) {
        const QString jobs = AffectedJobs(connection, "status <> 5", account, ids);
        Execute(connection, "UPDATE jobs SET priority = ?2 WHERE key IN (SELECT value FROM json_each(?1))",
            jobs, priority);
        RecordAction(connection, "job priority", jobs, now, address, QString::number(priority));
    });
    m_feed.Announce(account, {QSet<QString>(ids.cbegin(), ids.cend())});
    m_changed();
}

} // namespace farm
