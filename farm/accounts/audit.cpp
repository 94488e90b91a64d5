#include "farm/accounts/audit.h"

#include <algorithm>

namespace farm {

namespace {

constexpr const char* Columns = "key, at, who, origin, action, subject, details";

AuditEntry ReadEntry(SQLite::Statement& row)
{
    return {row.getColumn(0).getInt64(), row.getColumn(1).getInt64(),
        {Text(row.getColumn(2)), Text(row.getColumn(3))}, Text(row.getColumn(4)), Text(row.getColumn(5)),
        Text(row.getColumn(6))};
}

} // namespace

void RecordChange(SQLite::Database& connection, std::int64_t now, const Actor& actor, const QString& action,
    const QString& subject, const QString& details)
{
    Execute(connection,
        "INSERT INTO audit(at, who, origin, action, subject, details) VALUES (?, ?, ?, ?, ?, ?)", now,
        actor.who, actor.origin, action, subject, details);
}

QString SentenceOf(const AuditEntry& entry)
{
    QString sentence = entry.action + QLatin1Char(' ') + entry.subject;
    if (!entry.details.isEmpty())
        sentence += QStringLiteral(" (%1)").arg(entry.details);
    sentence += QStringLiteral(" by ") + entry.actor.who;
    return entry.actor.origin.isEmpty() ? sentence : sentence + QStringLiteral(" from ") + entry.actor.origin;
}

// The newest entry stays, so that no key is used twice. Keys follow the order of time unless the clock was wrong.
bool ForgetAuditEntries(Database& database, std::int64_t at)
{
    return database.Write([at](SQLite::Database& connection) {
        return Execute(connection,
                   "DELETE FROM audit WHERE key < (SELECT max(key) FROM audit) AND key <= (SELECT max(key) "
                   "FROM (SELECT key, at FROM audit ORDER BY key LIMIT 500) WHERE at <= ?)",
                   at)
            != 0;
    });
}

std::int64_t LastAuditKey(Database& database)
{
    return database.Read([](SQLite::Database& connection) {
        return std::int64_t(connection.execAndGet("SELECT coalesce(max(key), 0) FROM audit").getInt64());
    });
}

void ForEachAuditEntryAfter(
    Database& database, std::int64_t key, const std::function<void(const AuditEntry&)>& show)
{
    database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, std::string("SELECT ") + Columns + " FROM audit WHERE key > ? ORDER BY key");
        Bind(query, key);
        while (query.executeStep())
            show(ReadEntry(query));
    });
}

std::vector<AuditEntry> LastAuditEntries(Database& database, const QString& name, int most)
{
    std::vector<AuditEntry> entries;
    database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            std::string("SELECT ") + Columns
                + " FROM audit WHERE ?1 = '' OR who = ?1 COLLATE NOCASE OR subject = ?1 COLLATE NOCASE "
                  "ORDER BY key DESC LIMIT ?2");
        Bind(query, name, most);
        while (query.executeStep())
            entries.push_back(ReadEntry(query));
    });
    std::reverse(entries.begin(), entries.end());
    return entries;
}

} // namespace farm
