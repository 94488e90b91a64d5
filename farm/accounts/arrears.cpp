#include "farm/accounts/arrears.h"

#include <string>

namespace farm {

bool IsInArrears(SQLite::Database& connection, std::int64_t account)
{
    SQLite::Statement query(connection, std::string("SELECT ? IN (") + AccountsInArrears + ")");
    Bind(query, account);
    return query.executeStep() && query.getColumn(0).getInt() != 0;
}

} // namespace farm
