#pragma once

#include "farm/base/schema.h"
#include "farm/jobs/job_conditions.h"

#include <string>
#include <vector>

namespace farm {

/// A condition in SQL with a placeholder for each of `texts`, in order.
struct JobFilter
{
    std::string where;
    std::vector<std::string> texts;

    void Add(const std::string& term);
    void Add(const std::string& term, const QString& text);
    /// Binds the texts to the first placeholders of a statement.
    void BindTo(SQLite::Statement& statement) const;
};

/// Selects the account's rows in `jobs` that meet the conditions; deleted jobs only when the conditions ask for their
/// status.
JobFilter FilterFor(std::int64_t account, const JobConditions& conditions);

/// The same for the rows of `job_counts`, each of which counts several jobs; conditions on number, name and ids are not
/// considered.
struct CountFilter
{
    /// Selects the rows among whose jobs some may meet the conditions.
    JobFilter some;
    /// An SQL expression that tells whether all jobs of such a row meet the conditions.
    std::string all;
};
CountFilter CountFilterFor(std::int64_t account, const JobConditions& conditions);

} // namespace farm
