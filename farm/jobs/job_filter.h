#pragma once

#include "farm/jobs/job_conditions.h"

#include <string>
#include <variant>
#include <vector>

namespace farm {

/// A WHERE clause over `jobs` with a placeholder for each of `values`, in order.
struct JobFilter
{
    std::string where;
    std::vector<std::variant<std::int64_t, std::string>> values;
};

/// Selects the account's jobs that meet the conditions; deleted jobs only when the conditions ask for their status.
JobFilter FilterFor(std::int64_t account, const JobConditions& conditions);

} // namespace farm
