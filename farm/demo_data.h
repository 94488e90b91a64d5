#pragma once

#include "farm/base/schema.h"

#include <QStringList>

#include <cstdint>

namespace farm {

class AccountStore;
class JobStore;

/// The names of the demo accounts, which are also their passwords.
QStringList DemoAccounts();

/// Fills an empty farm with the accounts "demo", "studio" and "arrears" and three weeks of their jobs. If "demo" has no open
/// job left, its latest ones are restarted, so that there is always something to see. A farm without these accounts stays
/// as it is.
void ProvideDemo(Database& database, AccountStore& accounts, JobStore& jobs, std::int64_t now);

} // namespace farm
