#pragma once

#include "farm/base/schema.h"

#include <map>
#include <set>
#include <vector>

namespace farm {

/// The number of jobs of an account in each state.
struct AccountQueue
{
    QString account;
    std::int64_t waiting = 0;
    std::int64_t running = 0;
    std::int64_t paused = 0;
    std::int64_t inArrears = 0;
    std::int64_t failed = 0;
};

struct NamedJob
{
    QString account;
    QString id;
    QString name;
};

/// A job that has failed frames, or frames that wait because the farm was at fault.
struct FailedJob
{
    NamedJob job;
    QString message;
    /// The number of the first such frame; 0 when there is none.
    int frame = 0;
    std::int64_t endedAt = 0; // seconds since the epoch; 0 while the job goes on
};

/// The administrators' view of all accounts. Quick, however many jobs there are. Thread-safe.
class FarmOverview
{
public:
    explicit FarmOverview(Database& database);

    bool IsAdministrator(std::int64_t account);
    /// Accounts that have jobs in one of these states, sorted by name.
    std::vector<AccountQueue> Queues();
    /// Failures of open jobs come first, then the latest ones.
    std::vector<FailedJob> Failures(int most);
    /// The job types whose frames do not start, each with the reason.
    std::map<QString, QString> HinderedTypes();
    /// The jobs with these keys.
    std::map<std::int64_t, NamedJob> Jobs(const std::set<std::int64_t>& keys);
    /// The number of jobs of each status.
    std::map<int, std::int64_t> JobsByStatus();

private:
    Database& m_database;
};

} // namespace farm
