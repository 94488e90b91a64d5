#pragma once

#include "farm/admin/command.h"

namespace farm {

/// The commands that administer a farm, which may be running.
class AdminCommands
{
public:
    /// Adds the commands to the command line, which must not outlive them.
    explicit AdminCommands(CLI::App& app);
    AdminCommands(const AdminCommands&) = delete;
    AdminCommands& operator=(const AdminCommands&) = delete;

    /// Whether the parsed command line names one of them.
    bool IsChosen() const { return bool(m_chosen); }
    /// Runs the command and returns the program's exit code. Throws Refusal, for instance for an unknown account.
    int Run(Database& database) const { return m_chosen(database); }

private:
    CommandWork m_chosen;
};

} // namespace farm
