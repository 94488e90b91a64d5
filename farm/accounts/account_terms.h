#pragma once

#include "farm/base/money.h"
#include "farm/base/schema.h"

#include <atomic>
#include <cstdint>
#include <string>

namespace farm {

/// The price that accounts pay for a core-second, and the bytes that they may keep on the farm. An account without
/// terms of its own has the farm's. Thread-safe.
class AccountTerms
{
public:
    AccountTerms(Micros price, std::int64_t quota);

    /// Sets the farm's terms, which hold from the next frame and request on. Differences are recorded in the audit.
    void Change(Database& database, Micros price, std::int64_t quota, std::int64_t now);

    Micros PriceFor(SQLite::Database& connection, std::int64_t account) const;
    std::int64_t QuotaFor(SQLite::Database& connection, std::int64_t account) const;

    /// An SQL query for the keys of the accounts in arrears: those whose balance is zero or less, unless they render
    /// for free.
    std::string AccountsInArrears() const;
    bool IsInArrears(SQLite::Database& connection, std::int64_t account) const;

private:
    std::atomic<Micros> m_price;
    std::atomic<std::int64_t> m_quota;
};

} // namespace farm
