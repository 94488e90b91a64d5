#include "farm/accounts/account_store.h"

#include "farm/accounts/account_names.h"
#include "farm/accounts/audit.h"
#include "farm/accounts/ledger.h"
#include "farm/accounts/secrets.h"
#include "farm/base/local_time.h"

namespace farm {

namespace {

struct Credentials
{
    std::int64_t account = 0;
    QString name;
    QString password;
};

Credentials FindCredentials(Database& database, const QString& name)
{
    return database.Read([&name](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT key, name, password FROM accounts WHERE (name = ?1 OR email = ?1) AND disabled = 0");
        Bind(query, name);
        if (!query.executeStep())
            return Credentials {};
        return Credentials {
            query.getColumn(0).getInt64(), Text(query.getColumn(1)), Text(query.getColumn(2))};
    });
}

} // namespace

AccountStore::AccountStore(Database& database, std::int64_t sessionSeconds)
    : m_database(database)
    , m_sessionSeconds(sessionSeconds)
{
}

std::int64_t AccountStore::Add(const NewAccount& account)
{
    const QString password = HashPassword(account.password);
    return m_database.Write([&](SQLite::Database& connection) {
        Execute(connection,
            "INSERT INTO accounts(name, email, password, bound, balance, second_balance) VALUES (?, ?, ?, ?, "
            "0, ?)",
            account.name, account.email, password, int(account.bound), account.secondBalance);
        const std::int64_t key = connection.getLastInsertRowid();
        if (account.balance != 0)
            AddPayment(connection, key, account.balance, QStringLiteral("opening balance"), Now());
        return key;
    });
}

std::optional<Session> AccountStore::SignIn(
    const QString& name, const QString& password, std::int64_t now, const QString& address)
{
    const Credentials known = FindCredentials(m_database, name);
    if (!PasswordMatches(password, known.password))
        return std::nullopt;
    const QString token = NewToken();
    // In the meantime the password may have been changed or the account disabled, which ends its sessions.
    const bool isAdmitted = m_database.Write([&](SQLite::Database& connection) {
        Execute(connection, "DELETE FROM sessions WHERE expires_at <= ?", now);
        if (Execute(connection,
                "INSERT INTO sessions(token_hash, account, expires_at, began_at, address) "
                "SELECT ?3, key, ?4, ?5, ?6 FROM accounts WHERE key = ?1 AND password = ?2 AND disabled = 0",
                known.account, known.password, HashToken(token), now + m_sessionSeconds, now, address)
            == 0)
            return false;
        RecordChange(connection, now, {known.name, address}, QStringLiteral("session begin"), known.name);
        return true;
    });
    return isAdmitted ? std::optional(Session {known.name, token}) : std::nullopt;
}

void AccountStore::SignOut(const QString& token, std::int64_t now, const QString& address)
{
    m_database.Write([&](SQLite::Database& connection) {
        SQLite::Statement query(connection, "DELETE FROM sessions WHERE token_hash = ? RETURNING account");
        Bind(query, HashToken(token));
        if (!query.executeStep())
            return;
        const QString name = AccountName(connection, query.getColumn(0).getInt64());
        query.reset();
        RecordChange(connection, now, {name, address}, QStringLiteral("session end"), name);
    });
}

bool AccountStore::HasSessionAt(const QString& name, const QString& address, std::int64_t now)
{
    return m_database.Read([&](SQLite::Database& connection) {
        const auto account = FindAccount(connection, name);
        SQLite::Statement query(
            connection, "SELECT 1 FROM sessions WHERE account = ? AND address = ? AND expires_at > ?");
        Bind(query, account ? account->key : 0, address, now);
        return query.executeStep();
    });
}

std::optional<std::int64_t> AccountStore::AccountOf(const QString& token, std::int64_t now)
{
    return m_database.Read([&](SQLite::Database& connection) -> std::optional<std::int64_t> {
        SQLite::Statement query(connection,
            "SELECT account FROM sessions JOIN accounts ON accounts.key = account "
            "WHERE token_hash = ? AND expires_at > ? AND disabled = 0");
        Bind(query, HashToken(token), now);
        if (!query.executeStep())
            return std::nullopt;
        return query.getColumn(0).getInt64();
    });
}

bool AccountStore::IsPassword(const QString& name, const QString& password)
{
    const Credentials known = FindCredentials(m_database, name);
    return known.account != 0 && PasswordMatches(password, known.password);
}

bool AccountStore::IsEmpty()
{
    return m_database.Read([](SQLite::Database& connection) {
        return connection.execAndGet("SELECT NOT EXISTS (SELECT 1 FROM accounts)").getInt() != 0;
    });
}

std::optional<std::int64_t> AccountStore::Find(const QString& name)
{
    return m_database.Read([&name](SQLite::Database& connection) {
        const auto account = FindAccount(connection, name);
        return account ? std::optional<std::int64_t>(account->key) : std::nullopt;
    });
}

Account AccountStore::Info(std::int64_t account)
{
    return m_database.Read([account](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, "SELECT name, bound, balance, second_balance FROM accounts WHERE key = ?");
        Bind(query, account);
        if (!query.executeStep())
            throw std::runtime_error("no such account");
        return Account {Text(query.getColumn(0)), query.getColumn(1).getInt() != 0,
            query.getColumn(2).getInt64(), query.getColumn(3).getInt64()};
    });
}

std::vector<DaysSpending> AccountStore::Spending(std::int64_t account, const QDate& today, int days)
{
    std::vector<DaysSpending> spending;
    spending.reserve(std::size_t(days));
    m_database.Read([&](SQLite::Database& connection) {
        // The sum of each day is read from a range of the index. Grouping by date would compute a date for each charge.
        SQLite::Statement query(connection,
            "SELECT coalesce(sum(amount), 0) FROM charges "
            "WHERE account = ? AND charged_at >= ? AND charged_at < ?");
        for (QDate day = today.addDays(1 - days); day <= today; day = day.addDays(1)) {
            query.reset();
            Bind(query, account, std::int64_t(day.startOfDay().toSecsSinceEpoch()),
                std::int64_t(day.addDays(1).startOfDay().toSecsSinceEpoch()));
            query.executeStep();
            spending.push_back({day, query.getColumn(0).getInt64()});
        }
    });
    return spending;
}

} // namespace farm
