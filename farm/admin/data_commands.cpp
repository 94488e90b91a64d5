#include "farm/admin/data_commands.h"

#include "farm/accounts/ledger.h"
#include "farm/admin/farm_check.h"
#include "storage/backup.h"

#include <QFileInfo>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

namespace farm {

namespace {

int BackUpTo(Database& database, const QString& file)
{
    database.Read([&file](SQLite::Database& connection) { storage::BackUp(connection, file); });
    std::printf(
        "the database is copied to %s; the folders beside it are not part of the copy\n", qPrintable(file));
    return 0;
}

int Check(Database& database)
{
    QStringList faults = database.Read([](SQLite::Database& connection) {
        const QString file = QString::fromStdString(connection.getFilename());
        return FindFaults(connection, QFileInfo(file).dir());
    });
    Ledger(database).Check([&faults](const QString& fault) { faults.append(fault); });
    for (const QString& fault : qAsConst(faults))
        std::printf("%s\n", qPrintable(fault));
    if (faults.isEmpty())
        std::printf("no faults found\n");
    return faults.isEmpty() ? 0 : 1;
}

} // namespace

void AddDataCommands(CLI::App& app, CommandWork& chosen)
{
    const auto file = std::make_shared<std::string>();
    AddCommand(app, "backup", "Copy the database to a file, also while the farm runs.", chosen,
        [file](Database& database) { return BackUpTo(database, QString::fromStdString(*file)); })
        .add_option("file", *file, "The copy; an earlier one is replaced.")
        ->required();
    AddCommand(app, "check",
        "Compare the records with each other and with the files, also while the farm runs.", chosen, Check);
}

} // namespace farm
