#pragma once

#include "farm/admin/command.h"

namespace farm {

/// Adds the commands for projects and their members.
void AddProjectCommands(CLI::App& app, CommandWork& chosen);

} // namespace farm
