#pragma once

#include "farm/base/money.h"
#include "farm/base/schema.h"

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

struct Session
{
    QString accountName;
    QString token;
};

/// Accounts, their sessions and their projects. Times are seconds since the epoch.
class AccountStore
{
public:
    /// Sessions end `sessionSeconds` after sign-in.
    AccountStore(Database& database, std::int64_t sessionSeconds);

    /// Returns the account's key; throws SQLite::Exception when name or e-mail address is taken.
    std::int64_t Add(const NewAccount& account);
    std::int64_t AddProject(std::int64_t account, const Project& project);

    /// `name` is the account's name or e-mail address, in any case. Nothing when it or the password is wrong.
    std::optional<Session> SignIn(const QString& name, const QString& password, std::int64_t now);
    /// Harmless when the session has ended already.
    void SignOut(const QString& token);
    /// The key of the account whose session this is, while the session lasts.
    std::optional<std::int64_t> AccountOf(const QString& token, std::int64_t now);

    bool IsEmpty();
    /// The key of the account with this name.
    std::optional<std::int64_t> Find(const QString& name);
    Account Info(std::int64_t account);
    /// Pays the amount in; returns the new balance, or nothing when there is no account with this name.
    std::optional<Micros> Credit(const QString& name, Micros amount);
    std::vector<Project> Projects(std::int64_t account);

    std::int64_t SessionSeconds() const { return m_sessionSeconds; }

private:
    Database& m_database;
    std::int64_t m_sessionSeconds;
};

} // namespace farm
