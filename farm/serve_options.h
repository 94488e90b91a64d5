#pragma once

#include "farm/farm_settings.h"

#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace farm {

/// The options of a farm that serves.
class ServeOptions
{
public:
    /// Adds the options to the command line, which fills them when it is parsed and must not outlive them.
    explicit ServeOptions(CLI::App& app);
    ServeOptions(const ServeOptions&) = delete;
    ServeOptions& operator=(const ServeOptions&) = delete;

    FarmSettings Settings() const;
    QString DataFolder() const { return QString::fromStdString(m_dataFolder); }
    bool StopsWithStdin() const { return m_stopsWithStdin; }
    const std::string& LogLevel() const { return m_logLevel; }

private:
    void AddNetwork(CLI::App& app);
    void AddRendering(CLI::App& app);
    void AddCluster(CLI::App& app);
    void AddAccounts(CLI::App& app);
    void AddFiles(CLI::App& app);
    SlurmSettings Slurm() const;

    std::string m_dataFolder;
    std::string m_address;
    int m_port = 0;
    std::vector<std::string> m_proxies;
    int m_slotCount = 1;
    int m_framesPerAccount = 0;
    int m_quota = 20; // GiB
    std::string m_price;
    std::string m_jobTypesFile;
    std::string m_rendererUser;
    std::string m_sceneFolder;
    std::string m_executor = "local";
    struct
    {
        std::string partition;
        std::string account;
        std::string qos;
        std::string constraint;
        std::string runner;
        int framesPerTask = 1;
        int frames = 1000;
        int interval = 10;  // s
        int timeout = 30;   // s
        int fileDelay = 60; // s
    } m_slurm;
    bool m_hasNoDemo = false;
    int m_reserve = 1;      // GiB
    int m_keepContents = 7; // days
    int m_keepAudit = 365;  // days
    bool m_acceptsDatabase = false;
    bool m_takesOver = false;
    bool m_stopsWithStdin = false;
    std::string m_logLevel = "info";
};

} // namespace farm
