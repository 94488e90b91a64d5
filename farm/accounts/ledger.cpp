#include "farm/accounts/ledger.h"

#include "farm/accounts/account_names.h"

#include <array>

namespace farm {

namespace {

/// The key of the range's account; 0 for all accounts.
std::int64_t AccountOf(SQLite::Database& connection, const LedgerRange& range)
{
    return range.account.isEmpty() ? 0 : RequireAccount(connection, range.account).key;
}

struct Rule
{
    /// A query that yields one text for each fault.
    const char* faults;
    const char* sentence;
};

constexpr std::array<Rule, 6> Rules {{
    {"SELECT name FROM accounts WHERE balance <> "
     "(SELECT coalesce(sum(amount), 0) FROM payments WHERE account = accounts.key) "
     "- (SELECT coalesce(sum(amount), 0) FROM charges WHERE account = accounts.key)",
        "The balance of the account %1 is not its payments less its charges."},
    {"SELECT DISTINCT jobs.id FROM charges JOIN jobs ON jobs.key = charges.job WHERE charges.account <> "
     "jobs.account",
        "A charge for the job %1 belongs to another account than the job."},
    {"SELECT DISTINCT jobs.id FROM charges JOIN jobs ON jobs.key = charges.job WHERE charges.price IS NOT "
     "NULL "
     "AND charges.amount <> (core_milliseconds * charges.price + 500) / 1000",
        "A charge for the job %1 is not its processor time at its price."},
    {"SELECT DISTINCT jobs.id FROM frames JOIN jobs ON jobs.key = frames.job WHERE finished_at IS NOT NULL "
     "AND NOT EXISTS (SELECT 1 FROM charges WHERE job = frames.job AND frame = frames.number "
     "AND iif(charges.run IS NULL, charged_at >= finished_at, charges.run = jobs.run))",
        "A finished frame of the job %1 was not charged."},
    {"SELECT DISTINCT jobs.id FROM (SELECT job FROM charges GROUP BY job, frame HAVING count(*) > "
     "(SELECT run FROM jobs WHERE key = charges.job) OR count(run) > count(DISTINCT run)) "
     "JOIN jobs ON jobs.key = job",
        "A frame of the job %1 was charged more often than the job was begun."},
    {"SELECT DISTINCT jobs.id FROM charges JOIN jobs ON jobs.key = charges.job "
     "LEFT JOIN frames ON frames.job = charges.job AND frames.number = frame "
     "WHERE coalesce(charges.run, 1) >= jobs.run AND finished_at IS NULL "
     "AND (frames.number IS NOT NULL OR status <> 5)",
        "A frame of the job %1 was charged but is not finished."},
}};

} // namespace

Ledger::Ledger(Database& database, const Actor& actor)
    : m_database(database)
    , m_actor(actor)
{
}

Micros Ledger::Pay(const QString& account, Micros amount, const QString& note, std::int64_t now)
{
    return m_database.Write([&](SQLite::Database& connection) {
        const NamedAccount known = RequireAccount(connection, account);
        AddPayment(connection, known.key, amount, note, now);
        RecordChange(connection, now, m_actor, QStringLiteral("account pay"), known.name, AmountText(amount));
        SQLite::Statement query(connection, "SELECT balance FROM accounts WHERE key = ?");
        Bind(query, known.key);
        query.executeStep();
        return Micros(query.getColumn(0).getInt64());
    });
}

void Ledger::ForEachEntry(const LedgerRange& range, const std::function<void(const LedgerEntry&)>& show)
{
    m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT at, accounts.name, entry.amount, note, jobs.id, jobs.name, frame, core_milliseconds, "
            "entry.price FROM ("
            "SELECT paid_at AS at, account, amount, note, NULL AS job, 0 AS frame, 0 AS core_milliseconds, "
            "NULL AS price, 0 AS kind, key FROM payments "
            "UNION ALL SELECT charged_at, account, -amount, '', job, frame, core_milliseconds, price, 1, key "
            "FROM charges) AS entry JOIN accounts ON accounts.key = entry.account "
            "LEFT JOIN jobs ON jobs.key = entry.job "
            "WHERE (?1 = 0 OR entry.account = ?1) AND at BETWEEN ?2 AND ?3 ORDER BY at, kind, entry.key");
        Bind(query, AccountOf(connection, range), range.from, range.to);
        while (query.executeStep()) {
            LedgerEntry entry {query.getColumn(0).getInt64(), Text(query.getColumn(1)),
                query.getColumn(2).getInt64(), Text(query.getColumn(3)), Text(query.getColumn(4)),
                Text(query.getColumn(5)), query.getColumn(6).getInt(), query.getColumn(7).getInt64(),
                std::nullopt};
            if (!query.isColumnNull(8))
                entry.price = query.getColumn(8).getInt64();
            show(entry);
        }
    });
}

void Ledger::ForEachJob(const LedgerRange& range, const std::function<void(const JobCharges&)>& show)
{
    m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT accounts.name, jobs.id, jobs.name, count(*), sum(core_milliseconds), sum(charges.amount) "
            "FROM charges JOIN jobs ON jobs.key = charges.job JOIN accounts ON accounts.key = "
            "charges.account "
            "WHERE (?1 = 0 OR charges.account = ?1) AND charged_at BETWEEN ?2 AND ?3 "
            "GROUP BY charges.account, charges.job ORDER BY accounts.name, charges.job");
        Bind(query, AccountOf(connection, range), range.from, range.to);
        while (query.executeStep())
            show({Text(query.getColumn(0)), Text(query.getColumn(1)), Text(query.getColumn(2)),
                query.getColumn(3).getInt64(), query.getColumn(4).getInt64(), query.getColumn(5).getInt64()});
    });
}

void Ledger::Check(const std::function<void(const QString&)>& show)
{
    m_database.Read([&](SQLite::Database& connection) {
        for (const Rule& rule : Rules) {
            SQLite::Statement query(connection, rule.faults);
            while (query.executeStep())
                show(QString::fromLatin1(rule.sentence).arg(Text(query.getColumn(0))));
        }
    });
}

void AddPayment(
    SQLite::Database& connection, std::int64_t account, Micros amount, const QString& note, std::int64_t now)
{
    Execute(connection, "INSERT INTO payments(account, amount, paid_at, note) VALUES (?, ?, ?, ?)", account,
        amount, now, note);
}

void AddCharge(SQLite::Database& connection, std::int64_t job, int frame, std::int64_t coreMilliseconds,
    const AccountTerms& terms, std::int64_t now)
{
    SQLite::Statement query(connection, "SELECT account, run FROM jobs WHERE key = ?");
    Bind(query, job);
    if (!query.executeStep())
        return;
    const std::int64_t account = query.getColumn(0).getInt64();
    const Micros price = terms.PriceFor(connection, account);
    Execute(connection,
        "INSERT INTO charges(account, job, frame, core_milliseconds, amount, charged_at, price, run) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
        account, job, frame, coreMilliseconds, Charge(coreMilliseconds, price), now, price,
        query.getColumn(1).getInt());
}

} // namespace farm
