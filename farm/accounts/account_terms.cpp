#include "farm/accounts/account_terms.h"

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

void AccountTerms::Change(Micros price, std::int64_t quota)
{
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

} // namespace farm
