#include "farm/admin/admin_commands.h"

#include "farm/admin/account_commands.h"
#include "farm/admin/data_commands.h"
#include "farm/admin/money_commands.h"
#include "farm/admin/project_commands.h"
#include "farm/admin/session_commands.h"

#include <CLI/CLI.hpp>

namespace farm {

AdminCommands::AdminCommands(CLI::App& app)
{
    AddAccountCommands(app, m_chosen);
    AddProjectCommands(app, m_chosen);
    AddMoneyCommands(app, m_chosen);
    AddSessionCommands(app, m_chosen);
    AddDataCommands(app, m_chosen);
    app.require_subcommand(0, 1);
}

} // namespace farm
