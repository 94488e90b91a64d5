#pragma once

#include "farm/base/schema.h"

#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>

namespace farm {

enum class JobAction { Stop, Recover, Restart, Delete, FullRender };

/// Whether the account's balance is spent.
bool IsInArrears(SQLite::Database& connection, std::int64_t account);

/// What accounts do with their jobs. Each action is one transaction; doing it again changes nothing more.
class JobActions
{
public:
    /// `changed` is called after each change, in the thread that asked for it.
    JobActions(Database& database, std::function<void()> changed);

    /// Does it to all of the account's jobs named, as far as it applies to their states.
    /// Returns the ids that are refused because the account is in arrears, for which nothing is done. Nothing is
    /// returned, and nothing done at all, when an id is not the account's. `now` is in seconds since the epoch.
    std::optional<QStringList> Do(JobAction action, std::int64_t account, QStringList ids, std::int64_t now);

private:
    Database& m_database;
    std::function<void()> m_changed;
};

} // namespace farm
