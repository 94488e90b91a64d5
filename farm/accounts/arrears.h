#pragma once

#include "farm/base/schema.h"

#include <cstdint>

namespace farm {

/// A query for the keys of the accounts in arrears: those whose balance is zero or less.
constexpr const char* AccountsInArrears = "SELECT key FROM accounts WHERE balance <= 0";

bool IsInArrears(SQLite::Database& connection, std::int64_t account);

} // namespace farm
