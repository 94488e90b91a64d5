#include "farm/accounts/account_admin.h"

#include "farm/accounts/account_names.h"
#include "farm/accounts/secrets.h"
#include "farm/base/errors.h"

namespace farm {

namespace {

constexpr const char* EntryColumns
    = "key, name, email, disabled, bound, administrator, balance, quota, price, priority";
constexpr int SessionIdLength = 12;

std::optional<std::int64_t> Optional(const SQLite::Column& column)
{
    return column.isNull() ? std::nullopt : std::optional<std::int64_t>(column.getInt64());
}

AccountEntry ReadEntry(SQLite::Statement& row)
{
    return {row.getColumn(0).getInt64(), Text(row.getColumn(1)), Text(row.getColumn(2)),
        row.getColumn(3).getInt() != 0, row.getColumn(4).getInt() != 0, row.getColumn(5).getInt() != 0,
        row.getColumn(6).getInt64(), Optional(row.getColumn(7)), Optional(row.getColumn(8)),
        row.getColumn(9).getInt()};
}

template <typename Value>
void BindValue(SQLite::Statement& statement, int index, const Value& value)
{
    storage::BindAt(statement, index, value);
}

void BindValue(SQLite::Statement& statement, int index, const std::optional<std::int64_t>& value)
{
    if (value)
        statement.bind(index, *value);
    else
        statement.bind(index);
}

int EndSessions(SQLite::Database& connection, std::int64_t account)
{
    return Execute(connection, "DELETE FROM sessions WHERE account = ?", account);
}

// Users may sign in with the e-mail address instead of the name, so neither may belong to another account.
void CheckFree(SQLite::Database& connection, const QString& name)
{
    if (FindAccount(connection, name))
        throw Conflict(
            "there is an account with the name or e-mail address \"" + name.toStdString() + "\" already");
}

QString TermText(const std::optional<std::int64_t>& term, const QString& text)
{
    return term ? text : QStringLiteral("the farm's");
}

} // namespace

AccountAdmin::AccountAdmin(Database& database, const Actor& actor, std::int64_t now)
    : m_database(database)
    , m_actor(actor)
    , m_now(now)
{
}

void AccountAdmin::Add(NewAccount account)
{
    if (account.email.isEmpty())
        account.email = account.name;
    CheckPlainName(account.name, "the name of an account");
    CheckPlainName(account.email, "an e-mail address");
    CheckPassword(account.name, account.password);
    m_database.Write([&](SQLite::Database& connection) {
        CheckFree(connection, account.name);
        CheckFree(connection, account.email);
        AccountStore(m_database, 0).Add(account);
        RecordChange(connection, m_now, m_actor, QStringLiteral("account add"), account.name);
    });
}

template <typename Value>
void AccountAdmin::Set(const QString& account, const char* column, const Value& value, const char* action,
    const QString& details, bool endsSessions)
{
    m_database.Write([&](SQLite::Database& connection) {
        const NamedAccount known = RequireAccount(connection, account);
        SQLite::Statement update(
            connection, std::string("UPDATE accounts SET ") + column + " = ?2 WHERE key = ?1");
        update.bind(1, known.key);
        BindValue(update, 2, value);
        update.exec();
        if (endsSessions)
            EndSessions(connection, known.key);
        RecordChange(connection, m_now, m_actor, QLatin1String(action), known.name, details);
    });
}

void AccountAdmin::SetDisabled(const QString& account, bool isDisabled)
{
    Set(account, "disabled", int(isDisabled), isDisabled ? "account disable" : "account enable", {},
        isDisabled);
}

void AccountAdmin::SetPassword(const QString& account, const QString& password)
{
    CheckPassword(Find(account).name, password);
    Set(account, "password", HashPassword(password), "account password", {}, true);
}

void AccountAdmin::SetQuota(const QString& account, std::optional<std::int64_t> quota)
{
    Set(account, "quota", quota, "account quota",
        TermText(quota, QStringLiteral("%1 bytes").arg(quota.value_or(0))));
}

void AccountAdmin::SetPrice(const QString& account, std::optional<Micros> price)
{
    Set(account, "price", price, "account price", TermText(price, AmountText(price.value_or(0))));
}

void AccountAdmin::SetPriority(const QString& account, int priority)
{
    Set(account, "priority", priority, "account priority", QString::number(priority));
}

void AccountAdmin::SetBound(const QString& account, bool isBound)
{
    Set(account, "bound", int(isBound), "account bind",
        isBound ? QStringLiteral("on") : QStringLiteral("off"));
}

void AccountAdmin::SetAdministrator(const QString& account, bool isAdministrator)
{
    Set(account, "administrator", int(isAdministrator), "account administrator",
        isAdministrator ? QStringLiteral("on") : QStringLiteral("off"));
}

std::vector<AccountEntry> AccountAdmin::List()
{
    return m_database.Read([](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, std::string("SELECT ") + EntryColumns + " FROM accounts ORDER BY name");
        std::vector<AccountEntry> entries;
        while (query.executeStep())
            entries.push_back(ReadEntry(query));
        return entries;
    });
}

AccountEntry AccountAdmin::Find(const QString& account)
{
    return m_database.Read([&account](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, std::string("SELECT ") + EntryColumns + " FROM accounts WHERE key = ?");
        Bind(query, RequireAccount(connection, account).key);
        query.executeStep();
        return ReadEntry(query);
    });
}

std::int64_t AccountAdmin::SpaceUsed(std::int64_t account)
{
    return m_database.Read([account](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT (SELECT coalesce(sum(size), 0) FROM contents WHERE account = ?1) + "
            "(SELECT coalesce(sum(size), 0) FROM uploads WHERE account = ?1 AND unpacked IS NULL)");
        Bind(query, account);
        query.executeStep();
        return query.getColumn(0).getInt64();
    });
}

std::vector<SessionEntry> AccountAdmin::Sessions(const QString& account)
{
    return m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT substr(token_hash, 1, ?3), name, address, began_at, expires_at FROM sessions "
            "JOIN accounts ON accounts.key = account WHERE (?1 = 0 OR account = ?1) AND expires_at > ?2 "
            "ORDER BY name, began_at");
        Bind(query, account.isEmpty() ? std::int64_t(0) : RequireAccount(connection, account).key, m_now,
            SessionIdLength);
        std::vector<SessionEntry> entries;
        while (query.executeStep())
            entries.push_back({Text(query.getColumn(0)), Text(query.getColumn(1)), Text(query.getColumn(2)),
                query.getColumn(3).getInt64(), query.getColumn(4).getInt64()});
        return entries;
    });
}

int AccountAdmin::RevokeSessionsOf(const QString& account)
{
    return m_database.Write([&](SQLite::Database& connection) {
        const NamedAccount known = RequireAccount(connection, account);
        RecordChange(connection, m_now, m_actor, QStringLiteral("session revoke"), known.name);
        return EndSessions(connection, known.key);
    });
}

void AccountAdmin::RevokeSession(const QString& id)
{
    m_database.Write([&](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, "DELETE FROM sessions WHERE substr(token_hash, 1, ?2) = ?1 RETURNING account");
        Bind(query, id, SessionIdLength);
        if (!query.executeStep())
            throw NotFound("there is no session \"" + id.toStdString() + '"');
        const std::int64_t account = query.getColumn(0).getInt64();
        query.reset();
        RecordChange(connection, m_now, m_actor, QStringLiteral("session revoke"),
            AccountName(connection, account), id);
    });
}

void CheckPassword(const QString& name, const QString& password)
{
    constexpr int Shortest = 8;
    constexpr int Longest = 1024;
    if (password.size() < Shortest || password.size() > Longest)
        throw InvalidInput("a password has 8 to 1024 characters");
    if (password.compare(name, Qt::CaseInsensitive) == 0)
        throw InvalidInput("the password must not be the account's name");
}

} // namespace farm
