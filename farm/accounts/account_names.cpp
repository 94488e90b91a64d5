#include "farm/accounts/account_names.h"

#include "farm/base/errors.h"

#include <algorithm>

namespace farm {

std::optional<NamedAccount> FindAccount(SQLite::Database& connection, const QString& name)
{
    SQLite::Statement query(connection, "SELECT key, name FROM accounts WHERE name = ?1 OR email = ?1");
    Bind(query, name);
    if (!query.executeStep())
        return std::nullopt;
    return NamedAccount {query.getColumn(0).getInt64(), Text(query.getColumn(1))};
}

NamedAccount RequireAccount(SQLite::Database& connection, const QString& name)
{
    const auto account = FindAccount(connection, name);
    if (!account)
        throw NotFound("there is no account \"" + name.toStdString() + '"');
    return *account;
}

QString AccountName(SQLite::Database& connection, std::int64_t account)
{
    SQLite::Statement query(connection, "SELECT name FROM accounts WHERE key = ?");
    Bind(query, account);
    return query.executeStep() ? Text(query.getColumn(0)) : QString();
}

void CheckPlainName(const QString& name, const char* what)
{
    constexpr int Longest = 64;
    const bool hasControls = std::any_of(
        name.cbegin(), name.cend(), [](QChar letter) { return !letter.isPrint() && !letter.isSurrogate(); });
    if (name.isEmpty() || name.size() > Longest || name != name.trimmed() || hasControls)
        throw InvalidInput(std::string(what)
            + " has 1 to 64 characters, none of which is a control character, and no space at either end");
}

} // namespace farm
