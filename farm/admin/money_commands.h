#pragma once

#include "farm/admin/command.h"

namespace farm {

/// Adds the commands for payments and the ledger.
void AddMoneyCommands(CLI::App& app, CommandWork& chosen);

} // namespace farm
