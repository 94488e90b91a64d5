#pragma once

#include "farm/admin/command.h"

namespace farm {

/// "administrator".
void AddAdministratorCommand(CLI::App& app, CommandWork& chosen);

} // namespace farm
