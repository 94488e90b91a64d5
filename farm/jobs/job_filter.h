#pragma once

#include "farm/jobs/job_conditions.h"

#include <string>
#include <variant>
#include <vector>

namespace farm {

/// A WHERE clause over `jobs` (and `projects`) with a placeholder for each of `values`, in order.
struct JobFilter
{
    std::string where;
    std::vector<std::variant<std::int64_t, std::string>> values;
};

/// The jobs of the account that meet the conditions; deleted ones only when their status is asked for.
JobFilter FilterFor(std::int64_t account, const JobConditions& conditions);

} // namespace farm
