#pragma once

#include "account_store.h"
#include "data_lock.h"
#include "frame_files.h"
#include "http_server.h"
#include "job_actions.h"
#include "job_store.h"
#include "local_executor.h"
#include "render_queue.h"
#include "routes.h"
#include "scheduler.h"
#include "schema.h"

namespace farm {

struct FarmSettings
{
    /// Holds the database and the jobs' files; made when it is missing.
    QString dataFolder;
    QString sceneFolder;
    QString jobTypesFile;
    QString address = QStringLiteral("127.0.0.1");
    /// 0 takes a free one.
    int port = 0;
    /// Frames rendered at a time.
    int slotCount = 1;
    Micros pricePerCoreSecond = usualPrice;
    std::int64_t sessionSeconds = std::int64_t {7} * 24 * 3600;
    /// Makes the demo accounts in an empty farm and keeps them supplied with work.
    bool demo = true;
    RequestLimits limits;
};

/// A farm at work: from construction to destruction it serves requests and renders.
class Farm
{
public:
    /// Throws std::exception when the data, the job types or the port cannot be had.
    explicit Farm(const FarmSettings& settings);
    ~Farm();

    /// The database in a farm's data folder.
    static QString DatabaseFile(const QString& dataFolder);

    /// For example "http://127.0.0.1:40123".
    QString Url() const;

private:
    static QString MakeFolder(const QString& path);

    FarmSettings m_settings;
    QString m_dataFolder;
    DataLock m_lock;
    Database m_database;
    AccountStore m_accounts;
    JobStore m_jobs;
    RenderQueue m_queue;
    FrameFiles m_files;
    LocalExecutor m_executor;
    Scheduler m_scheduler;
    JobActions m_actions;
    Routes m_routes;
    HttpServer m_server;
    int m_port = 0;
};

} // namespace farm
