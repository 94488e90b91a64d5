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
    bool bound = false;
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

struct Project
{
    QString name;
    QString pool;
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

/// Accounts, their sessions and their projects. Accounts are identified by a key; times are seconds since the epoch.
/// Thread-safe.
class AccountStore
{
public:
    /// A session ends `sessionSeconds` after it began.
    AccountStore(Database& database, std::int64_t sessionSeconds);

    /// Returns the account's key; throws SQLite::Exception when the name or the e-mail address is taken.
    std::int64_t Add(const NewAccount& account);
    /// Returns the project's key.
    std::int64_t AddProject(std::int64_t account, const Project& project);

    /// `name` is the account's name or e-mail address, ignoring case. Nothing when the name or the password is wrong.
    std::optional<Session> SignIn(const QString& name, const QString& password, std::int64_t now);
    /// Does nothing when the session has ended already.
    void SignOut(const QString& token);
    /// The account whose session this is; nothing once the session has ended.
    std::optional<std::int64_t> AccountOf(const QString& token, std::int64_t now);

    bool IsEmpty();
    /// The account with this name or e-mail address.
    std::optional<std::int64_t> Find(const QString& name);
    Account Info(std::int64_t account);
    /// Pays the amount into the account with this name or e-mail address and returns the new balance.
    /// Throws NotFound.
    Micros Credit(const QString& name, Micros amount);
    /// The charges of the last `days` days, in the farm's local time, ending with `today`; days without any count 0.
    std::vector<DaysSpending> Spending(std::int64_t account, const QDate& today, int days);
    /// The projects of the account, sorted by name.
    std::vector<Project> Projects(std::int64_t account);

    std::int64_t SessionSeconds() const { return m_sessionSeconds; }

private:
    Database& m_database;
    std::int64_t m_sessionSeconds;
};

} // namespace farm
