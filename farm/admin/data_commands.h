#pragma once

#include "farm/admin/command.h"

namespace farm {

/// "backup" and "check".
void AddDataCommands(CLI::App& app, CommandWork& chosen);

} // namespace farm
