#include "farm/serve_options.h"

#include "farm/admin/command_values.h"
#include "farm/toml_config.h"

#include <QCoreApplication>
#include <QThread>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace farm {

namespace {

constexpr int MostSlots = 1024;
constexpr int MostPerTask = 1000;
constexpr int MostOnCluster = 100'000;
constexpr int SecondsPerHour = 3600;
constexpr int HighestPort = 65535;

std::string Beside(const char* name)
{
    return QCoreApplication::applicationDirPath().toStdString() + "/farm/" + name;
}

} // namespace

ServeOptions::ServeOptions(CLI::App& app)
    : m_address("127.0.0.1")
    // One core is left to the person at the machine.
    , m_slotCount(std::max(1, QThread::idealThreadCount() - 1))
    , m_price(AmountText(DefaultPrice).toStdString())
    , m_jobTypesFile(Beside("job_types.json"))
    , m_sceneFolder(Beside("scenes"))
{
    app.config_formatter(TomlConfig(app));
    app.set_config("--config", "", "TOML file with options; those on the command line override it.")
        ->type_name("FILE");
    app.add_option("--data", m_dataFolder, "Folder for the farm's data.")->required()->type_name("FOLDER");
    AddNetwork(app);
    AddRendering(app);
    AddCluster(app);
    AddAccounts(app);
    AddFiles(app);
    app.add_flag("--take-over", m_takesOver, "Ignore a lock that another machine has left on a shared disk.");
    app.add_flag("--stop-with-stdin", m_stopsWithStdin, "Exit at the end of standard input.");
    app.add_option("--log-level", m_logLevel, "trace, debug, info, warning, error, critical or off.")
        ->type_name("LEVEL")
        ->check(IsOneOf({"trace", "debug", "info", "warning", "error", "critical", "off"}))
        ->capture_default_str();
}

void ServeOptions::AddNetwork(CLI::App& app)
{
    app.add_option("--bind", m_address, "Address to listen on.")->type_name("ADDRESS")->capture_default_str();
    app.add_option("--port", m_port, "Port to listen on, 0 for a free one.")
        ->type_name("PORT")
        ->check(IsWholeNumber(0, HighestPort))
        ->capture_default_str();
    app.add_option("--behind-proxy", m_proxies,
           "Address of a proxy that is trusted to tell the addresses of clients; may be repeated.")
        ->type_name("ADDRESS")
        ->delimiter(',')
        ->allow_extra_args(false);
}

void ServeOptions::AddRendering(CLI::App& app)
{
    app.add_option("--slots", m_slotCount, "Frames rendered at a time.")
        ->type_name("NUMBER")
        ->check(IsWholeNumber(1, MostSlots))
        ->capture_default_str();
    app.add_option(
           "--frames-per-account", m_framesPerAccount, "Most frames of an account at a time; 0 for no limit.")
        ->type_name("NUMBER")
        ->check(IsWholeNumber(0, MostSlots))
        ->capture_default_str();
    app.add_option("--job-types", m_jobTypesFile, "File that defines how job types are rendered.")
        ->type_name("FILE")
        ->capture_default_str();
    app.add_option("--renderer-user", m_rendererUser,
           "User of this machine who runs the renderers of a farm that runs as root.")
        ->type_name("NAME");
    app.add_option("--scenes", m_sceneFolder, "Folder of the scenes that jobs may name.")
        ->type_name("FOLDER")
        ->capture_default_str();
}

void ServeOptions::AddCluster(CLI::App& app)
{
    app.add_option("--executor", m_executor, "Where frames are rendered: local or slurm, a cluster.")
        ->type_name("NAME")
        ->check(IsOneOf({"local", "slurm"}))
        ->capture_default_str();
    const auto addText = [&app](const char* name, std::string& value, const char* type, const char* meaning) {
        app.add_option(name, value, meaning)->type_name(type);
    };
    addText("--slurm-partition", m_slurm.partition, "NAME", "Partition of the cluster for frames.");
    addText("--slurm-account", m_slurm.account, "NAME", "Account of the cluster that frames are charged to.");
    addText("--slurm-qos", m_slurm.qos, "NAME", "Quality of service (QOS) of frames on the cluster.");
    addText("--slurm-constraint", m_slurm.constraint, "FEATURES", "Features of the nodes that may render.");
    addText("--slurm-runner", m_slurm.runner, "FILE",
        "Path of quillstar-run-frame on the nodes; by default the path on this machine.");
    const auto addNumber
        = [&app](const char* name, int& value, int most, const char* type, const char* meaning) {
              app.add_option(name, value, meaning)
                  ->type_name(type)
                  ->check(IsWholeNumber(1, most))
                  ->capture_default_str();
          };
    addNumber("--slurm-frames-per-task", m_slurm.framesPerTask, MostPerTask, "NUMBER",
        "Frames that a task of the cluster renders, one after another.");
    addNumber("--slurm-frames", m_slurm.frames, MostOnCluster, "NUMBER",
        "Frames on the cluster at a time, rendering and queued.");
    addNumber("--slurm-interval", m_slurm.interval, SecondsPerHour, "SECONDS",
        "Least time between two queries to the cluster.");
    addNumber("--slurm-timeout", m_slurm.timeout, SecondsPerHour, "SECONDS",
        "Time that a command of the cluster may take.");
    addNumber("--slurm-file-delay", m_slurm.fileDelay, SecondsPerHour, "SECONDS",
        "Time after which files written on the nodes are visible here.");
}

SlurmSettings ServeOptions::Slurm() const
{
    SlurmSettings slurm;
    slurm.partition = QString::fromStdString(m_slurm.partition);
    slurm.account = QString::fromStdString(m_slurm.account);
    slurm.qos = QString::fromStdString(m_slurm.qos);
    slurm.constraint = QString::fromStdString(m_slurm.constraint);
    slurm.runner = QString::fromStdString(m_slurm.runner);
    slurm.framesPerTask = m_slurm.framesPerTask;
    slurm.frames = m_slurm.frames;
    slurm.interval = std::chrono::seconds {m_slurm.interval};
    slurm.commandTimeout = std::chrono::seconds {m_slurm.timeout};
    slurm.fileDelay = std::chrono::seconds {m_slurm.fileDelay};
    return slurm;
}

void ServeOptions::AddAccounts(CLI::App& app)
{
    app.add_option("--quota", m_quota, "Space for the files of an account that has no quota of its own.")
        ->type_name("GIB")
        ->check(IsWholeNumber(0, MostGibibytes))
        ->capture_default_str();
    app.add_option("--price", m_price, "Price of a core-second for an account that has no price of its own.")
        ->type_name("AMOUNT")
        ->check(IsAmount(0, DearestCoreSecond))
        ->capture_default_str();
    app.add_flag("--no-demo", m_hasNoDemo, "Create no demo accounts and no demo jobs.");
}

void ServeOptions::AddFiles(CLI::App& app)
{
    constexpr int MostDays = 36500;
    app.add_option(
           "--reserve", m_reserve, "Space of the disk that stays free; below it no new work is accepted.")
        ->type_name("GIB")
        ->check(IsWholeNumber(0, MostGibibytes))
        ->capture_default_str();
    app.add_option("--keep-contents", m_keepContents, "Time for which files that no job needs are kept.")
        ->type_name("DAYS")
        ->check(IsWholeNumber(0, MostDays))
        ->capture_default_str();
    app.add_option("--keep-audit", m_keepAudit, "Time for which entries of the audit are kept.")
        ->type_name("DAYS")
        ->check(IsWholeNumber(1, MostDays))
        ->capture_default_str();
    app.add_flag("--accept-database", m_acceptsDatabase,
        "Use a database that is older than the other files in the data folder, or another farm's.");
}

FarmSettings ServeOptions::Settings() const
{
    FarmSettings settings;
    settings.dataFolder = DataFolder();
    settings.sceneFolder = QString::fromStdString(m_sceneFolder);
    settings.jobTypesFile = QString::fromStdString(m_jobTypesFile);
    settings.address = QString::fromStdString(m_address);
    settings.port = m_port;
    for (const std::string& proxy : m_proxies)
        settings.proxies.append(QString::fromStdString(proxy));
    settings.slotCount = m_slotCount;
    if (m_executor == "slurm")
        settings.slurm = Slurm();
    settings.framesPerAccount = m_framesPerAccount;
    settings.pricePerCoreSecond = AmountOf(m_price);
    settings.quota = m_quota * Gibibyte;
    settings.rendererUser = QString::fromStdString(m_rendererUser);
    settings.diskReserve = m_reserve * Gibibyte;
    settings.keepContents = std::chrono::hours(24 * m_keepContents);
    settings.keepAudit = std::chrono::hours(24 * m_keepAudit);
    settings.acceptDatabase = m_acceptsDatabase;
    settings.takeOver = m_takesOver;
    settings.demo = !m_hasNoDemo;
    return settings;
}

} // namespace farm
