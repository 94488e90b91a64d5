#pragma once

#include "farm/base/schema.h"

#include <QStringList>

#include <cstdint>
#include <functional>

namespace farm {

enum class JobAction { Stop, Recover, Restart, Delete, FullRender };

/// The actions of accounts on their jobs. Each is one transaction; applying one a second time changes nothing more, except
/// for Restart. May be used by several threads at a time.
class JobActions
{
public:
    /// @param changed is called after each action, in the thread that asked for it.
    JobActions(Database& database, std::function<void()> changed);

    /// Applies the action to the account's jobs with these ids; jobs whose status does not allow it are left as they are.
    /// `now` is in seconds since the epoch. Returns the ids that are refused, all of them or none: an account in arrears
    /// may not send jobs to work. Throws NotFound, and does nothing, when an id is none of the account's jobs.
    QStringList Apply(JobAction action, std::int64_t account, QStringList ids, std::int64_t now);

private:
    Database& m_database;
    std::function<void()> m_changed;
};

} // namespace farm
