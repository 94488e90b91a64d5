#pragma once

#include "farm/base/change_feed.h"
#include "farm/base/schema.h"

#include <QStringList>

#include <cstdint>
#include <functional>
#include <vector>

namespace farm {

class AccountTerms;

enum class JobAction { Stop, Recover, Restart, Delete, FullRender };

/// The actions of accounts on their jobs. When a fault keeps one from some of its jobs, the others may have changed. Except
/// for Restart, repeating an action has no further effect. Thread-safe.
class JobActions
{
public:
    /// @param changed is called after each action, in the thread that asked for it.
    JobActions(
        Database& database, ChangeFeed& feed, const AccountTerms& terms, std::function<void()> changed);

    /// Applies the action to the account's jobs with these ids; jobs whose status does not allow it are left as they
    /// are. `now` is in seconds since the epoch, and `address` is where the request comes from, empty when the farm
    /// itself acts. Returns the refused ids: all of them when the account is in arrears and the action would make jobs
    /// render, otherwise none. Throws NotFound, and does nothing, when an id is not one of the account's jobs.
    QStringList Apply(JobAction action, std::int64_t account, QStringList ids, std::int64_t now,
        const QString& address = {});

    /// Gives this priority to those of the jobs that are not deleted. Throws NotFound as Apply() does.
    void SetPriority(
        std::int64_t account, QStringList ids, int priority, std::int64_t now, const QString& address = {});

private:
    std::vector<QStringList> Portions(JobAction action, const QStringList& ids);
    void ApplyAtOnce(JobAction action, std::int64_t account, const QStringList& ids, std::int64_t now,
        const QString& address);

    Database& m_database;
    ChangeFeed& m_feed;
    const AccountTerms& m_terms;
    std::function<void()> m_changed;
};

} // namespace farm
