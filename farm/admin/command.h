#pragma once

#include "farm/base/schema.h"

#include <functional>

namespace CLI {
class App;
} // namespace CLI

namespace farm {

/// Changes or reads the farm's database, which a running farm may be using. Returns the exit code of the program.
using CommandWork = std::function<int(Database&)>;

/// Adds a command to the command line or below another command; when the command line names it, `chosen` becomes `work`.
CLI::App& AddCommand(CLI::App& parent, const char* name, const char* description, CommandWork& chosen,
    const CommandWork& work);
/// Adds a command that only groups others, such as "account".
CLI::App& AddCommandGroup(CLI::App& parent, const char* name, const char* description);

} // namespace farm
