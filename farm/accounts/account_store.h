#pragma once

#include "farm/base/money.h"
#include "farm/base/schema.h"

#include <QDate>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace farm {

struct NewAccount
{
    QString name;
    QString email;
    QString password;
    /// Clients show the balance of other accounts as a single character.
    bool bound = false;
    /// Becomes the account's first payment.
    Micros balance = 0;
    /// Only bound accounts have one.
    Micros secondBalance = 0;
};

struct Account
{
    QString name;
    bool bound = false;
    Micros balance = 0;
    Micros secondBalance = 0;
};

/// An account's charges of one day.
struct DaysSpending
{
    QDate day;
    Micros amount = 0;
};

struct Session
{
    QString accountName;
    QString token;
};

/// Accounts and their sessions. Accounts are identified by a key; times are seconds since the epoch.
/// Thread-safe.
class AccountStore
{
public:
    /// A session ends `sessionSeconds` after it began.
    AccountStore(Database& database, std::int64_t sessionSeconds);

    /// Returns the account's key; throws SQLite::Exception when the name or the e-mail address is taken.
    std::int64_t Add(const NewAccount& account);

    /// `name` is the account's name or e-mail address, ignoring case; `address` is where the user signs in.
    /// Nothing when the name or the password is wrong or the account is disabled.
    std::optional<Session> SignIn(
        const QString& name, const QString& password, std::int64_t now, const QString& address = {});
    /// Does nothing when the session has ended already.
    void SignOut(const QString& token, std::int64_t now, const QString& address = {});
    /// Whether a session of the account that began at this address lasts.
    bool HasSessionAt(const QString& name, const QString& address, std::int64_t now);
    /// The account whose session this is; nothing once the session has ended or the account is disabled.
    std::optional<std::int64_t> AccountOf(const QString& token, std::int64_t now);

    /// Whether the account exists, is not disabled and has this password.
    bool IsPassword(const QString& name, const QString& password);

    bool IsEmpty();
    /// The account with this name or e-mail address.
    std::optional<std::int64_t> Find(const QString& name);
    Account Info(std::int64_t account);
    /// The charges of the last `days` days, in the farm's local time, ending with `today`; days without any count 0.
    std::vector<DaysSpending> Spending(std::int64_t account, const QDate& today, int days);

    std::int64_t SessionSeconds() const { return m_sessionSeconds; }

private:
    Database& m_database;
    std::int64_t m_sessionSeconds;
};

} // namespace farm
