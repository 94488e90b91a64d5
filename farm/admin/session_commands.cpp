#include "farm/admin/session_commands.h"

#include "farm/accounts/account_admin.h"
#include "farm/admin/command_values.h"
#include "farm/admin/operator.h"
#include "farm/admin/table.h"
#include "farm/base/local_time.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

namespace farm {

namespace {

struct ListOptions
{
    std::string account;
    bool isCsv = false;
};

void AddListOptions(CLI::App& command, const std::shared_ptr<ListOptions>& options)
{
    command.add_option("--account", options->account, "Only this one.")->type_name("ACCOUNT");
    command.add_flag("--csv", options->isCsv, "Write CSV.");
}

void AddList(CLI::App& group, CommandWork& chosen)
{
    const auto options = std::make_shared<ListOptions>();
    CLI::App& list
        = AddCommand(group, "list", "List who is signed in.", chosen, [options](Database& database) {
              const Table table(
                  {{"session", 12}, {"account", 16}, {"address", 24}, {"began", 19}, {"ends", 19}},
                  options->isCsv);
              for (const SessionEntry& session :
                  AccountAdmin(database, {}, Now()).Sessions(QString::fromStdString(options->account)))
                  table.Write({session.id, session.account, session.address, TimeText(session.beganAt),
                      TimeText(session.expiresAt)});
              return 0;
          });
    AddListOptions(list, options);
}

void AddRevoke(CLI::App& group, CommandWork& chosen)
{
    struct Options
    {
        std::string account;
        std::string id;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& revoke = AddCommand(group, "revoke", "End the sessions of an account, or one session.", chosen,
        [options](Database& database) {
            AccountAdmin admin(database, Operator(), Now());
            if (!options->id.empty()) {
                admin.RevokeSession(QString::fromStdString(options->id));
                return 0;
            }
            const int count = admin.RevokeSessionsOf(QString::fromStdString(options->account));
            std::printf("sessions ended: %d\n", count);
            return 0;
        });
    CLI::Option* const id = revoke.add_option("--id", options->id, "One session, as \"list\" names it.");
    id->type_name("SESSION");
    revoke.add_option("account", options->account, "All sessions of this account.")->excludes(id);
    revoke.require_option(1);
}

void AddAudit(CLI::App& app, CommandWork& chosen)
{
    constexpr int MostEntries = 1'000'000'000;
    const auto options = std::make_shared<ListOptions>();
    const auto last = std::make_shared<int>(100);
    CLI::App& audit = AddCommand(app, "audit", "List who has changed what, and from where.", chosen,
        [options, last](Database& database) {
            const Table table(
                {{"time", 19}, {"who", 16}, {"from", 18}, {"action", 18}, {"subject", 24}, {"details", 0}},
                options->isCsv);
            for (const AuditEntry& entry :
                LastAuditEntries(database, QString::fromStdString(options->account), *last))
                table.Write({TimeText(entry.at), entry.actor.who, entry.actor.origin, entry.action,
                    entry.subject, entry.details});
            return 0;
        });
    AddListOptions(audit, options);
    audit.add_option("--last", *last, "The number of entries.")
        ->type_name("NUMBER")
        ->check(IsWholeNumber(1, MostEntries))
        ->capture_default_str();
}

} // namespace

void AddSessionCommands(CLI::App& app, CommandWork& chosen)
{
    CLI::App& group = AddCommandGroup(app, "session", "Administer the sessions of signed-in users.");
    AddList(group, chosen);
    AddRevoke(group, chosen);
    AddAudit(app, chosen);
}

} // namespace farm
