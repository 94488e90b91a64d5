#pragma once

#include "farm/accounts/account_terms.h"
#include "farm/accounts/audit.h"

#include <functional>
#include <limits>
#include <optional>

namespace farm {

/// A payment or a charge.
struct LedgerEntry
{
    std::int64_t at = 0;
    QString account;
    /// The change of the balance: negative for charges.
    Micros amount = 0;
    /// The administrator's note on a payment.
    QString note;
    /// The members from here on describe a charge and are empty for a payment.
    QString job;
    QString jobName;
    int frame = 0;
    std::int64_t coreMilliseconds = 0;
    /// The price per core-second; older charges did not record it.
    std::optional<Micros> price;
};

/// All charges of a job.
struct JobCharges
{
    QString account;
    QString job;
    QString jobName;
    std::int64_t charges = 0;
    std::int64_t coreMilliseconds = 0;
    Micros amount = 0;
};

struct LedgerRange
{
    /// A name or an e-mail address; empty for all accounts.
    QString account;
    /// Seconds since the epoch, both included.
    std::int64_t from = 0;
    std::int64_t to = std::numeric_limits<std::int64_t>::max();
};

/// The payments and charges of all accounts. They are never deleted; the balance of an account is their sum, which
/// database triggers keep up to date. Thread-safe.
class Ledger
{
public:
    explicit Ledger(Database& database, const Actor& actor = {});

    /// Pays the amount, which may be negative, into the account with this name or e-mail address; returns the new
    /// balance. Throws NotFound.
    Micros Pay(const QString& account, Micros amount, const QString& note, std::int64_t now);

    /// Payments and charges in the order of time. Throws NotFound.
    void ForEachEntry(const LedgerRange& range, const std::function<void(const LedgerEntry&)>& show);
    /// The sums of the charges in this range by job, in the order of accounts and submissions.
    void ForEachJob(const LedgerRange& range, const std::function<void(const JobCharges&)>& show);

    /// Checks that the ledger adds up: each balance is its payments less its charges, each charge is the processor time
    /// at its price and belongs to the account of its job, and in each job's current run every finished frame was
    /// charged once and no other frame was. Calls `show` with a sentence for each fault.
    void Check(const std::function<void(const QString&)>& show);

private:
    Database& m_database;
    Actor m_actor;
};

/// Records a payment inside a transaction.
void AddPayment(
    SQLite::Database& connection, std::int64_t account, Micros amount, const QString& note, std::int64_t now);

/// Charges a frame in the current run of its job to the account of the job, inside a transaction.
void AddCharge(SQLite::Database& connection, std::int64_t job, int frame, std::int64_t coreMilliseconds,
    const AccountTerms& terms, std::int64_t now);

} // namespace farm
