#include "farm/admin/project_commands.h"

#include "farm/accounts/project_store.h"
#include "farm/admin/operator.h"
#include "farm/admin/table.h"
#include "farm/base/local_time.h"

#include <QUuid>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

namespace farm {

namespace {

constexpr const char* ProjectHelp = "Its name or pool.";

ProjectStore Projects(Database& database)
{
    return ProjectStore(database, Operator());
}

void AddAdd(CLI::App& group, CommandWork& chosen)
{
    struct Options
    {
        std::string name;
        std::string pool;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& add = AddCommand(
        group, "add", "Add a project and print its pool.", chosen, [options](Database& database) {
            const QString pool = options->pool.empty() ? QUuid::createUuid().toString(QUuid::WithoutBraces)
                                                       : QString::fromStdString(options->pool);
            Projects(database).Add({QString::fromStdString(options->name), pool}, Now());
            std::printf("%s\n", qPrintable(pool));
            return 0;
        });
    add.add_option("name", options->name, "What users see.")->required();
    add.add_option(
           "--pool", options->pool, "Pool by which clients name the project; a new GUID if not given.")
        ->type_name("GUID");
}

void AddList(CLI::App& group, CommandWork& chosen)
{
    const auto isCsv = std::make_shared<bool>(false);
    CLI::App& list = AddCommand(group, "list", "List all projects.", chosen, [isCsv](Database& database) {
        const Table table({{"name", 24}, {"pool", 36}, {"jobs", 8}, {"members", 0}}, *isCsv);
        for (const ProjectEntry& entry : Projects(database).List())
            table.Write({entry.project.name, entry.project.pool, QString::number(entry.jobs),
                entry.members.join(QLatin1Char(' '))});
        return 0;
    });
    list.add_flag("--csv", *isCsv, "Write CSV.");
}

void AddRename(CLI::App& group, CommandWork& chosen)
{
    struct Options
    {
        std::string project;
        std::string name;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& rename
        = AddCommand(group, "rename", "Give a project another name.", chosen, [options](Database& database) {
              Projects(database).Rename(
                  QString::fromStdString(options->project), QString::fromStdString(options->name), Now());
              return 0;
          });
    rename.add_option("project", options->project, ProjectHelp)->required();
    rename.add_option("name", options->name, "The new name.")->required();
}

void AddRemove(CLI::App& group, CommandWork& chosen)
{
    struct Options
    {
        std::string project;
        bool isForced = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& remove
        = AddCommand(group, "remove", "Remove a project.", chosen, [options](Database& database) {
              Projects(database).Remove(QString::fromStdString(options->project), options->isForced, Now());
              return 0;
          });
    remove.add_option("project", options->project, ProjectHelp)->required();
    remove.add_flag(
        "--force", options->isForced, "Remove it even if it has jobs, which then belong to no project.");
}

using MemberWork = void (ProjectStore::*)(const QString&, const QString&, std::int64_t);

void AddMemberCommand(
    CLI::App& group, CommandWork& chosen, const char* name, const char* description, MemberWork work)
{
    struct Options
    {
        std::string project;
        std::vector<std::string> accounts;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command = AddCommand(group, name, description, chosen, [options, work](Database& database) {
        // All accounts are changed, or none.
        database.Write([&](SQLite::Database&) {
            ProjectStore projects = Projects(database);
            for (const std::string& account : options->accounts)
                (projects.*work)(
                    QString::fromStdString(options->project), QString::fromStdString(account), Now());
        });
        return 0;
    });
    command.add_option("project", options->project, ProjectHelp)->required();
    command.add_option("accounts", options->accounts, "Names or e-mail addresses.")->required();
}

} // namespace

void AddProjectCommands(CLI::App& app, CommandWork& chosen)
{
    CLI::App& group = AddCommandGroup(app, "project", "Administer projects, which are groups of accounts.");
    AddAdd(group, chosen);
    AddList(group, chosen);
    AddRename(group, chosen);
    AddRemove(group, chosen);
    AddMemberCommand(group, chosen, "assign", "Make accounts members of a project.", &ProjectStore::Assign);
    AddMemberCommand(group, chosen, "unassign",
        "End the membership of accounts in a project; their jobs stay in it.", &ProjectStore::Unassign);
}

} // namespace farm
