#include "farm/admin/account_commands.h"

#include "farm/accounts/account_admin.h"
#include "farm/accounts/project_store.h"
#include "farm/admin/command_values.h"
#include "farm/admin/operator.h"
#include "farm/admin/table.h"
#include "farm/base/local_time.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

namespace farm {

namespace {

constexpr int HighestPriority = 10;
constexpr std::int64_t Mebibyte = std::int64_t {1} << 20;
constexpr const char* FarmsOwn = "default";

AccountAdmin Admin(Database& database)
{
    return {database, Operator(), Now()};
}

QString QuotaText(const std::optional<std::int64_t>& quota)
{
    return quota ? QStringLiteral("%1 GiB").arg(*quota / Gibibyte) : QLatin1String(FarmsOwn);
}

QString PriceText(const std::optional<Micros>& price)
{
    return price ? AmountText(*price) : QLatin1String(FarmsOwn);
}

QString StateText(const AccountEntry& account)
{
    return account.isDisabled ? QStringLiteral("disabled") : QStringLiteral("enabled");
}

std::optional<std::int64_t> QuotaOf(const std::string& text)
{
    return text == FarmsOwn ? std::nullopt
                            : std::optional(QString::fromStdString(text).toLongLong() * Gibibyte);
}

std::optional<Micros> PriceOf(const std::string& text)
{
    return text == FarmsOwn ? std::nullopt : std::optional(AmountOf(text));
}

ValueCheck IsQuota()
{
    return OrWord(FarmsOwn, IsWholeNumber(0, MostGibibytes));
}

ValueCheck IsPrice()
{
    return OrWord(FarmsOwn, IsAmount(0, DearestCoreSecond));
}

void AddAdd(CLI::App& group, CommandWork& chosen)
{
    struct Options
    {
        std::string name;
        std::string email;
        std::string quota = FarmsOwn;
        std::string price = FarmsOwn;
        int priority = 0;
        bool isUnbound = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& add = AddCommand(group, "add",
        "Add an account. Its password is asked for, or read from standard input, never given as an argument.",
        chosen, [options](Database& database) {
            NewAccount account;
            account.name = QString::fromStdString(options->name);
            account.email = QString::fromStdString(options->email);
            account.bound = !options->isUnbound;
            account.password = ReadNewPassword();
            database.Write([&](SQLite::Database&) {
                AccountAdmin admin = Admin(database);
                admin.Add(account);
                if (options->quota != FarmsOwn)
                    admin.SetQuota(account.name, QuotaOf(options->quota));
                if (options->price != FarmsOwn)
                    admin.SetPrice(account.name, PriceOf(options->price));
                if (options->priority != 0)
                    admin.SetPriority(account.name, options->priority);
            });
            return 0;
        });
    add.add_option("name", options->name, "The name for signing in.")->required();
    add.add_option("--email", options->email, "E-mail address, also for signing in.")->type_name("ADDRESS");
    add.add_option("--quota", options->quota, "Space for its files in GiB.")
        ->type_name("GIB")
        ->check(IsQuota());
    add.add_option("--price", options->price, "Price of a core-second.")
        ->type_name("AMOUNT")
        ->check(IsPrice());
    add.add_option("--priority", options->priority, "Each step doubles its share of the farm.")
        ->type_name("NUMBER")
        ->check(IsWholeNumber(-HighestPriority, HighestPriority));
    add.add_flag("--unbound", options->isUnbound, "Clients show the balance as a single character.");
}

void AddList(CLI::App& group, CommandWork& chosen)
{
    const auto isCsv = std::make_shared<bool>(false);
    CLI::App& list = AddCommand(group, "list", "List all accounts.", chosen, [isCsv](Database& database) {
        const Table table({{"name", 16}, {"email", 28}, {"state", 8}, {"bound", 5}, {"balance", 12},
                              {"quota", 10}, {"price", 8}, {"priority", 8}},
            *isCsv);
        for (const AccountEntry& account : Admin(database).List())
            table.Write({account.name, account.email, StateText(account),
                account.isBound ? QStringLiteral("yes") : QStringLiteral("no"), AmountText(account.balance),
                QuotaText(account.quota), PriceText(account.price), QString::number(account.priority)});
        return 0;
    });
    list.add_flag("--csv", *isCsv, "Write CSV.");
}

void ShowAccount(Database& database, const QString& name)
{
    AccountAdmin admin = Admin(database);
    const AccountEntry account = admin.Find(name);
    QStringList projects;
    for (const Project& project : ProjectStore(database).OfAccount(account.key))
        projects.append(project.name);
    const auto line = [](const char* title, const QString& text) {
        std::printf("%-10s %s\n", title, text.toUtf8().constData());
    };
    line("name", account.name);
    line("email", account.email);
    line("state", StateText(account));
    line("bound", account.isBound ? QStringLiteral("yes") : QStringLiteral("no"));
    line("sees all", account.isAdministrator ? QStringLiteral("yes") : QStringLiteral("no"));
    line("balance", AmountText(account.balance) + QLatin1Char(' ') + Currency());
    line("quota", QuotaText(account.quota));
    line("used", QStringLiteral("%1 MiB").arg(admin.SpaceUsed(account.key) / Mebibyte));
    line("price", PriceText(account.price));
    line("priority", QString::number(account.priority));
    line("projects", projects.join(QStringLiteral(", ")));
    line("sessions", QString::number(admin.Sessions(account.name).size()));
}

using AccountWork = std::function<void(Database&, const QString& account, const std::string& value)>;

/// A command that takes an account and, if `valueName` is not empty, a value.
void AddChange(CLI::App& group, CommandWork& chosen, const char* name, const char* description,
    const AccountWork& work, const char* valueName = "", const ValueCheck& check = {})
{
    struct Options
    {
        std::string account;
        std::string value;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(group, name, description, chosen, [options, work](Database& database) {
        work(database, QString::fromStdString(options->account), options->value);
        return 0;
    });
    command.add_option("account", options->account, "Name or e-mail address.")->required();
    if (*valueName != '\0')
        command.add_option(valueName, options->value)->required()->check(check);
}

/// The commands that decide who signs in.
void AddAccess(CLI::App& group, CommandWork& chosen)
{
    AddChange(group, chosen, "disable",
        "Let nobody sign in to an account, and end its sessions. Its jobs go on.",
        [](Database& database, const QString& account, const std::string&) {
            Admin(database).SetDisabled(account, true);
        });
    AddChange(group, chosen, "enable", "Undo \"disable\".",
        [](Database& database, const QString& account, const std::string&) {
            Admin(database).SetDisabled(account, false);
        });
    AddChange(group, chosen, "password",
        "Give an account another password, which is asked for, and end its sessions.",
        [](Database& database, const QString& account, const std::string&) {
            AccountAdmin admin = Admin(database);
            admin.Find(account);
            admin.SetPassword(account, ReadNewPassword());
        });
}

/// The commands that set what an account may use, sees and pays.
void AddTerms(CLI::App& group, CommandWork& chosen)
{
    AddChange(
        group, chosen, "quota", "Set the space for an account's files in GiB, or \"default\".",
        [](Database& database, const QString& account, const std::string& value) {
            Admin(database).SetQuota(account, QuotaOf(value));
        },
        "gib", IsQuota());
    AddChange(
        group, chosen, "price", "Set what an account pays for a core-second, or \"default\".",
        [](Database& database, const QString& account, const std::string& value) {
            Admin(database).SetPrice(account, PriceOf(value));
        },
        "amount", IsPrice());
    AddChange(
        group, chosen, "priority", "Set an account's priority: each step doubles its share of the farm.",
        [](Database& database, const QString& account, const std::string& value) {
            Admin(database).SetPriority(account, std::stoi(value));
        },
        "number", IsWholeNumber(-HighestPriority, HighestPriority));
    AddChange(
        group, chosen, "bind",
        "Have clients show the balance of an account as money (on) or as a single character (off).",
        [](Database& database, const QString& account, const std::string& value) {
            Admin(database).SetBound(account, value == "on");
        },
        "state", IsOneOf({"on", "off"}));
    AddChange(
        group, chosen, "administrator",
        "Let an account see all accounts on the page in the browser (on), or no longer (off).",
        [](Database& database, const QString& account, const std::string& value) {
            Admin(database).SetAdministrator(account, value == "on");
        },
        "state", IsOneOf({"on", "off"}));
}

} // namespace

void AddAccountCommands(CLI::App& app, CommandWork& chosen)
{
    CLI::App& group = AddCommandGroup(app, "account", "Administer accounts.");
    AddAdd(group, chosen);
    AddList(group, chosen);
    AddChange(group, chosen, "show", "Show an account.",
        [](Database& database, const QString& account, const std::string&) {
            ShowAccount(database, account);
        });
    AddAccess(group, chosen);
    AddTerms(group, chosen);
}

} // namespace farm
