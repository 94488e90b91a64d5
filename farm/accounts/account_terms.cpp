#include "farm/accounts/account_terms.h"

#include "farm/accounts/audit.h"

namespace farm {

namespace {

std::int64_t OwnOr(
    SQLite::Database& connection, const char* column, std::int64_t account, std::int64_t otherwise)
{
    SQLite::Statement query(connection, std::string("SELECT ") + column + " FROM accounts WHERE key = ?");
    Bind(query, account);
    return query.executeStep() && !query.isColumnNull(0) ? query.getColumn(0).getInt64() : otherwise;
}

} // namespace

AccountTerms::AccountTerms(Micros price, std::int64_t quota)
    : m_price(price)
    , m_quota(quota)
{
}

void AccountTerms::Change(Database& database, Micros price, std::int64_t quota, std::int64_t now)
{
    database.Write([&](SQLite::Database& connection) {
        const auto record = [&](const char* action, const QString& details) {
            RecordChange(connection, now, {QStringLiteral("the farm"), QStringLiteral("its settings")},
                QLatin1String(action), QStringLiteral("all accounts"), details);
        };
        if (price != m_price)
            record("default price", AmountText(price));
        if (quota != m_quota)
            record("default quota", QStringLiteral("%1 bytes").arg(quota));
    });
    m_price = price;
    m_quota = quota;
}

Micros AccountTerms::PriceFor(SQLite::Database& connection, std::int64_t account) const
{
    return OwnOr(connection, "price", account, m_price);
}

std::int64_t AccountTerms::QuotaFor(SQLite::Database& connection, std::int64_t account) const
{
    return OwnOr(connection, "quota", account, m_quota);
}

std::string AccountTerms::AccountsInArrears() const
{
    return "SELECT key FROM accounts WHERE balance <= 0 AND coalesce(price, " + std::to_string(m_price)
        + ") > 0";
}

bool AccountTerms::IsInArrears(SQLite::Database& connection, std::int64_t account) const
{
    SQLite::Statement query(connection, "SELECT ? IN (" + AccountsInArrears() + ")");
    Bind(query, account);
    return query.executeStep() && query.getColumn(0).getInt() != 0;
}

} // namespace farm
