#include "farm/serve_options.h"

#include "farm/admin/command_values.h"

#include <QCoreApplication>
#include <QThread>

#include <CLI/CLI.hpp>

#include <algorithm>

namespace farm {

namespace {

constexpr int MostSlots = 1024;
constexpr int HighestPort = 65535;

std::string Beside(const char* name)
{
    return QCoreApplication::applicationDirPath().toStdString() + "/farm/" + name;
}

} // namespace

ServeOptions::ServeOptions(CLI::App& app)
    : m_address("127.0.0.1")
    // One core stays free for the person at the machine.
    , m_slotCount(std::max(1, QThread::idealThreadCount() - 1))
    , m_price(AmountText(DefaultPrice).toStdString())
    , m_jobTypesFile(Beside("job_types.json"))
    , m_sceneFolder(Beside("scenes"))
{
    app.add_option("--data", m_dataFolder, "Folder for the farm's data.")->required()->type_name("FOLDER");
    AddNetwork(app);
    AddRendering(app);
    AddAccounts(app);
    app.add_flag(
        "--take-over", m_takesOver, "Ignore the lock of another machine that has left it on a shared disk.");
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
}

void ServeOptions::AddRendering(CLI::App& app)
{
    app.add_option("--slots", m_slotCount, "Frames rendered at a time.")
        ->type_name("NUMBER")
        ->check(IsWholeNumber(1, MostSlots))
        ->capture_default_str();
    app.add_option(
           "--frames-per-account", m_framesPerAccount, "Frames of an account at a time, 0 for any number.")
        ->type_name("NUMBER")
        ->check(IsWholeNumber(0, MostSlots))
        ->capture_default_str();
    app.add_option("--job-types", m_jobTypesFile, "File that says how job types are rendered.")
        ->type_name("FILE")
        ->capture_default_str();
    app.add_option("--renderer-user", m_rendererUser,
           "User of this machine who runs the renderers of a farm that runs as root.")
        ->type_name("NAME");
    app.add_option("--scenes", m_sceneFolder, "Folder of the scenes that jobs may name.")
        ->type_name("FOLDER")
        ->capture_default_str();
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
    app.add_flag("--no-demo", m_hasNoDemo, "Create no demo accounts and jobs.");
}

FarmSettings ServeOptions::Settings() const
{
    FarmSettings settings;
    settings.dataFolder = DataFolder();
    settings.sceneFolder = QString::fromStdString(m_sceneFolder);
    settings.jobTypesFile = QString::fromStdString(m_jobTypesFile);
    settings.address = QString::fromStdString(m_address);
    settings.port = m_port;
    settings.slotCount = m_slotCount;
    settings.framesPerAccount = m_framesPerAccount;
    settings.pricePerCoreSecond = AmountOf(m_price);
    settings.quota = m_quota * Gibibyte;
    settings.rendererUser = QString::fromStdString(m_rendererUser);
    settings.takeOver = m_takesOver;
    settings.demo = !m_hasNoDemo;
    return settings;
}

} // namespace farm
