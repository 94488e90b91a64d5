#pragma once

#include "farm/base/schema.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace farm {

/// The person or program that makes a change, and where it comes from.
struct Actor
{
    QString who;
    /// An address, or words such as "the command line".
    QString origin;
};

/// A change of an account, a project or a job.
struct AuditEntry
{
    std::int64_t key = 0;
    std::int64_t at = 0;
    Actor actor;
    /// Words such as "account disable".
    QString action;
    /// The account, project or job, by the name or id that administrators know.
    QString subject;
    QString details;
};

/// Records a change inside the transaction that makes it. The running farm logs it within a second.
void RecordChange(SQLite::Database& connection, std::int64_t now, const Actor& actor, const QString& action,
    const QString& subject, const QString& details = {});

/// The entry without its time, such as "account quota ann (1024 bytes) by root from the command line".
QString SentenceOf(const AuditEntry& entry);

/// Removes some of the entries that were made until `at`, but never the newest of all. Returns whether there may be
/// more.
bool ForgetAuditEntries(Database& database, std::int64_t at);

/// The key of the newest entry, 0 when there is none.
std::int64_t LastAuditKey(Database& database);

/// Calls `show` with each entry after the one with this key, the oldest first.
void ForEachAuditEntryAfter(
    Database& database, std::int64_t key, const std::function<void(const AuditEntry&)>& show);

/// The last `most` entries by or about this account, project or job, or of all if `name` is empty; the oldest first.
std::vector<AuditEntry> LastAuditEntries(Database& database, const QString& name, int most);

} // namespace farm
