#include "farm/admin/admin_commands.h"
#include "farm/base/errors.h"
#include "farm/base/version.h"
#include "farm/serve.h"
#include "farm/serve_options.h"

#include <QCoreApplication>
#include <QFile>

#include <CLI/CLI.hpp>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>
#include <sqlite3.h>

#include <cstdio>
#include <sys/stat.h>

namespace {

constexpr int WrongUsage = 2;

/// Brings the schema up to date only while no farm is running, since that may be an older one.
int Administer(const farm::AdminCommands& commands, const QString& folder)
{
    const QString file = farm::Farm::DatabaseFile(folder);
    if (!QFile::exists(file))
        throw farm::NotFound(
            "there is no farm in " + folder.toStdString() + "; start the server once to create it");
    std::unique_ptr<farm::DataLock> lock;
    const int version = SQLite::Database(file.toStdString()).execAndGet("PRAGMA user_version").getInt();
    if (version < static_cast<int>(farm::Schema().size()))
        lock = std::make_unique<farm::DataLock>(folder, 0);
    farm::Database database(file, farm::Schema(), {0, true});
    lock.reset();
    return commands.Run(database);
}

/// Runs `work` and explains errors that only say that a database is damaged.
template <typename Work>
int ExplainDamage(const QString& folder, Work work)
{
    try {
        return work();
    } catch (const SQLite::Exception& error) {
        const int code = error.getErrorCode() & 0xff;
        if (code != SQLITE_NOTADB && code != SQLITE_CORRUPT)
            throw;
        throw std::runtime_error(farm::Farm::DatabaseFile(folder).toStdString()
            + ": the database is damaged (" + error.what()
            + "). Stop the farm, put a copy of the database in its place, remove farm.sqlite-wal and "
              "farm.sqlite-shm, and start the farm once with --accept-database.");
    }
}

/// Reads the options again and applies them to the farm: all of them, or none when one cannot be used.
void Reload(farm::Farm& farm, int argc, char** argv)
{
    CLI::App app;
    const farm::ServeOptions options(app);
    app.parse(argc, argv);
    farm.TakeOver(options.Settings());
    spdlog::set_level(spdlog::level::from_str(options.LogLevel()));
}

int Run(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    CLI::App app("A small render farm: serves accounts and jobs over HTTP and renders on this machine. "
                 "The commands administer a farm, which may be running.",
        "quillstar-farmd");
    app.set_help_all_flag("--help-all", "Show the help of all commands.");
    app.set_version_flag("-v,--version", "quillstar-farmd " + farm::Version().toStdString());
    const farm::ServeOptions options(app);
    const farm::AdminCommands commands(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : WrongUsage;
    }
    spdlog::set_level(spdlog::level::from_str(options.LogLevel()));
    return ExplainDamage(options.DataFolder(), [&] {
        return commands.IsChosen() ? Administer(commands, options.DataFolder())
                                   : farm::Serve(options.Settings(), options.StopsWithStdin(),
                                       [argc, argv](farm::Farm& farm) { Reload(farm, argc, argv); });
    });
}

} // namespace

int main(int argc, char** argv)
{
    // The data folder holds password hashes and other people's pictures.
    ::umask(077);
    try {
        spdlog::set_default_logger(spdlog::stderr_color_mt("farm"));
        return Run(argc, argv);
    } catch (const farm::Refusal& refusal) {
        std::fprintf(stderr, "quillstar-farmd: %s\n", refusal.what());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quillstar-farmd cannot run: %s\n", error.what());
    }
    return 1;
}
