#include "farm/admin/administrator_command.h"

#include "farm/accounts/account_store.h"
#include "farm/base/errors.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace farm {

namespace {

int SetAdministrator(Database& database, const QString& name, bool isOne)
{
    const auto account = AccountStore(database, 0).Find(name);
    if (!account)
        throw NotFound("the farm has no such account");
    database.Write([&](SQLite::Database& connection) {
        Execute(connection, "UPDATE accounts SET administrator = ?2 WHERE key = ?1", *account, int(isOne));
    });
    return 0;
}

} // namespace

void AddAdministratorCommand(CLI::App& app, CommandWork& chosen)
{
    struct Options
    {
        std::string account;
        bool isRevoked = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(app, "administrator",
        "Let an account see all accounts on the page in the browser.", chosen, [options](Database& database) {
            return SetAdministrator(database, QString::fromStdString(options->account), !options->isRevoked);
        });
    command.add_option("account", options->account, "Name or e-mail address.")->required();
    command.add_flag("--revoke", options->isRevoked, "Let it no longer.");
}

} // namespace farm
