#pragma once

#include "farm/accounts/account_store.h"
#include "farm/accounts/audit.h"

#include <optional>
#include <vector>

namespace farm {

/// An account as administrators see it.
struct AccountEntry
{
    std::int64_t key = 0;
    QString name;
    QString email;
    bool isDisabled = false;
    bool isBound = true;
    bool isAdministrator = false;
    Micros balance = 0;
    /// Without a quota or a price of its own, an account has the farm's.
    std::optional<std::int64_t> quota;
    std::optional<Micros> price;
    int priority = 0;
};

struct SessionEntry
{
    /// The beginning of the stored hash of the token, which names the session and reveals nothing.
    QString id;
    QString account;
    QString address;
    std::int64_t beganAt = 0;
    std::int64_t expiresAt = 0;
};

/// Changes accounts for administrators, who may name them by their e-mail addresses. A running farm applies each
/// change from the next request on. Changes are recorded in the audit. Functions throw NotFound for unknown accounts.
/// Times are seconds since the epoch. Thread-safe.
class AccountAdmin
{
public:
    AccountAdmin(Database& database, const Actor& actor, std::int64_t now);

    /// Throws Conflict when the name or the e-mail address is taken, and InvalidInput when the name, the address or the
    /// password is not acceptable. The address of an account without one is its name.
    void Add(NewAccount account);
    /// A disabled account cannot sign in; its sessions end at once, its jobs go on.
    void SetDisabled(const QString& account, bool isDisabled);
    /// Ends the account's sessions. Throws InvalidInput when the password is not acceptable.
    void SetPassword(const QString& account, const QString& password);
    void SetQuota(const QString& account, std::optional<std::int64_t> quota);
    /// Frames that finish from now on are charged at this price.
    void SetPrice(const QString& account, std::optional<Micros> price);
    void SetPriority(const QString& account, int priority);
    void SetBound(const QString& account, bool isBound);
    /// Administrators see all accounts on the page in the browser.
    void SetAdministrator(const QString& account, bool isAdministrator);

    /// Sorted by name.
    std::vector<AccountEntry> List();
    AccountEntry Find(const QString& account);
    /// The bytes of the account's contents and unfinished uploads.
    std::int64_t SpaceUsed(std::int64_t account);

    /// The sessions that have not ended, of one account or, if `account` is empty, of all.
    std::vector<SessionEntry> Sessions(const QString& account);
    /// Returns the number of sessions that were ended.
    int RevokeSessionsOf(const QString& account);
    void RevokeSession(const QString& id);

private:
    template <typename Value>
    void Set(const QString& account, const char* column, const Value& value, const char* action,
        const QString& details = {}, bool endsSessions = false);

    Database& m_database;
    Actor m_actor;
    std::int64_t m_now;
};

/// Throws InvalidInput for a password that is easily guessed.
void CheckPassword(const QString& name, const QString& password);

} // namespace farm
