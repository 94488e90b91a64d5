#pragma once

#include "farm/admin/command.h"

namespace farm {

/// Adds the commands for accounts.
void AddAccountCommands(CLI::App& app, CommandWork& chosen);

} // namespace farm
