#pragma once

#include "farm/base/schema.h"

#include <cstdint>

namespace farm {

class AccountStore;
class JobStore;

/// Fills an empty farm with the accounts "demo", "studio" and "arrears" and three weeks of their jobs. Gives "demo" jobs
/// to render whenever it has none left, so that there is always something to see. Other farms are left alone.
void ProvideDemo(Database& database, AccountStore& accounts, JobStore& jobs, std::int64_t now);

} // namespace farm
