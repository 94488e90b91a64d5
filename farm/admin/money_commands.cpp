#include "farm/admin/money_commands.h"

#include "farm/accounts/ledger.h"
#include "farm/admin/command_values.h"
#include "farm/admin/operator.h"
#include "farm/admin/table.h"
#include "farm/base/local_time.h"

#include <QDate>
#include <QDateTime>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

namespace farm {

namespace {

constexpr Micros SmallestCoin = OneUnit / 100;
constexpr Micros MostAtOnce = 1'000'000 * OneUnit;

void AddPay(CLI::App& app, CommandWork& chosen)
{
    struct Options
    {
        std::string account;
        std::string amount;
        std::string note;
        bool isRefund = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& pay
        = AddCommand(app, "pay", "Pay an amount into an account.", chosen, [options](Database& database) {
              const Micros amount = AmountOf(options->amount);
              const Micros balance
                  = Ledger(database, Operator())
                        .Pay(QString::fromStdString(options->account), options->isRefund ? -amount : amount,
                            QString::fromStdString(options->note), Now());
              std::printf("balance: %s %s\n", qPrintable(MoneyText(balance)), qPrintable(Currency()));
              return 0;
          });
    pay.add_option("account", options->account, "Name or e-mail address.")->required();
    pay.add_option("amount", options->amount, "What to pay.")
        ->required()
        ->check(IsAmount(SmallestCoin, MostAtOnce));
    pay.add_option("--note", options->note, "What it is for; the ledger shows it.")->type_name("TEXT");
    pay.add_flag("--refund", options->isRefund, "Pay the amount out of the account.");
}

struct LedgerOptions
{
    std::string account;
    std::string from;
    std::string to;
    bool byJob = false;
    bool isCsv = false;
    bool isCheck = false;
};

ValueCheck IsDay()
{
    return [](const std::string& text) -> std::string {
        return QDate::fromString(QString::fromStdString(text), Qt::ISODate).isValid()
            ? ""
            : "\"" + text + "\" is not a day such as 2026-11-22";
    };
}

LedgerRange RangeOf(const LedgerOptions& options)
{
    const auto day = [](const std::string& text) {
        return QDate::fromString(QString::fromStdString(text), Qt::ISODate);
    };
    LedgerRange range;
    range.account = QString::fromStdString(options.account);
    if (!options.from.empty())
        range.from = day(options.from).startOfDay().toSecsSinceEpoch();
    if (!options.to.empty())
        range.to = day(options.to).addDays(1).startOfDay().toSecsSinceEpoch() - 1;
    return range;
}

QString SecondsText(std::int64_t milliseconds)
{
    return QStringLiteral("%1.%2").arg(milliseconds / 1000).arg(milliseconds % 1000, 3, 10, QLatin1Char('0'));
}

void ListEntries(Ledger& ledger, const LedgerOptions& options)
{
    const Table table({{"time", 19}, {"account", 16}, {"amount", 14}, {"core_seconds", 12}, {"price", 8},
                          {"job", 24}, {"frame", 5}, {"job_name", 24}, {"note", 0}},
        options.isCsv);
    ledger.ForEachEntry(RangeOf(options), [&table](const LedgerEntry& entry) {
        const bool isCharge = !entry.job.isEmpty();
        table.Write({TimeText(entry.at), entry.account, AmountText(entry.amount),
            isCharge ? SecondsText(entry.coreMilliseconds) : QString(),
            entry.price ? AmountText(*entry.price) : QString(), entry.job,
            isCharge ? QString::number(entry.frame) : QString(), entry.jobName, entry.note});
    });
}

void ListJobs(Ledger& ledger, const LedgerOptions& options)
{
    const Table table(
        {{"account", 16}, {"job", 24}, {"amount", 14}, {"core_seconds", 12}, {"charges", 7}, {"job_name", 0}},
        options.isCsv);
    ledger.ForEachJob(RangeOf(options), [&table](const JobCharges& job) {
        table.Write({job.account, job.job, AmountText(job.amount), SecondsText(job.coreMilliseconds),
            QString::number(job.charges), job.jobName});
    });
}

int CheckLedger(Ledger& ledger)
{
    int faults = 0;
    ledger.Check([&faults](const QString& fault) {
        ++faults;
        std::printf("%s\n", fault.toUtf8().constData());
    });
    if (faults == 0)
        std::printf("The ledger adds up.\n");
    return faults == 0 ? 0 : 1;
}

void AddLedger(CLI::App& app, CommandWork& chosen)
{
    const auto options = std::make_shared<LedgerOptions>();
    CLI::App& command
        = AddCommand(app, "ledger", "List payments and charges, or their sums, or check that they add up.",
            chosen, [options](Database& database) {
                Ledger ledger(database);
                if (options->isCheck)
                    return CheckLedger(ledger);
                options->byJob ? ListJobs(ledger, *options) : ListEntries(ledger, *options);
                return 0;
            });
    command.add_option("--account", options->account, "Only this one.")->type_name("ACCOUNT");
    command.add_option("--from", options->from, "The first day.")->type_name("DAY")->check(IsDay());
    command.add_option("--to", options->to, "The last day.")->type_name("DAY")->check(IsDay());
    command.add_flag(
        "--by-job", options->byJob, "Show the sum of each job's charges instead of every charge.");
    command.add_flag("--csv", options->isCsv, "Write CSV.");
    command.add_flag("--check", options->isCheck,
        "Compare every balance and charge with what it should be; exit with 1 if one is wrong.");
}

} // namespace

void AddMoneyCommands(CLI::App& app, CommandWork& chosen)
{
    AddPay(app, chosen);
    AddLedger(app, chosen);
}

} // namespace farm
