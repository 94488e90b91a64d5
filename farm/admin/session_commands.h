#pragma once

#include "farm/admin/command.h"

namespace farm {

/// Adds the commands for sessions and for the audit.
void AddSessionCommands(CLI::App& app, CommandWork& chosen);

} // namespace farm
