#pragma once

#include "farm/admin/command.h"

namespace farm {

/// Adds the commands "backup" and "check".
void AddDataCommands(CLI::App& app, CommandWork& chosen);

} // namespace farm
