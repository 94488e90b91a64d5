#include "farm/admin/command.h"

#include <CLI/CLI.hpp>

namespace farm {

CLI::App& AddCommand(
    CLI::App& parent, const char* name, const char* description, CommandWork& chosen, const CommandWork& work)
{
    CLI::App& command = *parent.add_subcommand(name, description);
    // Options of the whole program, such as --data, may also follow the command.
    command.fallthrough();
    command.callback([&chosen, work] { chosen = work; });
    return command;
}

CLI::App& AddCommandGroup(CLI::App& parent, const char* name, const char* description)
{
    CLI::App& group = *parent.add_subcommand(name, description);
    group.fallthrough();
    group.require_subcommand(1);
    return group;
}

} // namespace farm
