#include "farm/admin/money_commands.h"

#include "farm/accounts/account_store.h"
#include "farm/admin/command_values.h"

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
    };
    const auto options = std::make_shared<Options>();
    CLI::App& pay
        = AddCommand(app, "pay", "Pay an amount into an account.", chosen, [options](Database& database) {
              const Micros balance
                  = AccountStore(database, 0)
                        .Credit(QString::fromStdString(options->account), AmountOf(options->amount));
              std::printf("balance: %s %s\n", qPrintable(MoneyText(balance)), qPrintable(Currency()));
              return 0;
          });
    pay.add_option("account", options->account, "Name or e-mail address.")->required();
    pay.add_option("amount", options->amount, "What to pay.")
        ->required()
        ->check(IsAmount(SmallestCoin, MostAtOnce));
}

} // namespace

void AddMoneyCommands(CLI::App& app, CommandWork& chosen)
{
    AddPay(app, chosen);
}

} // namespace farm
