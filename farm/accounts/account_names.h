#pragma once

#include "farm/base/schema.h"

#include <cstdint>
#include <optional>

namespace farm {

struct NamedAccount
{
    std::int64_t key = 0;
    QString name;
};

/// The account with this name or e-mail address, ignoring case.
std::optional<NamedAccount> FindAccount(SQLite::Database& connection, const QString& name);
/// The same; throws NotFound, which quotes the name.
NamedAccount RequireAccount(SQLite::Database& connection, const QString& name);
/// The account's name; empty when there is no such account.
QString AccountName(SQLite::Database& connection, std::int64_t account);

/// Refuses a name that is empty, longer than 64 characters, begins or ends with a space, or contains control
/// characters. Throws InvalidInput, whose text begins with `what`.
void CheckPlainName(const QString& name, const char* what);

} // namespace farm
