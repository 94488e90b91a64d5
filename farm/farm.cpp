#include "farm/farm.h"

#include "farm/base/local_time.h"
#include "farm/demo_data.h"

#include <QDir>

#include <spdlog/spdlog.h>

#include <chrono>
#include <stdexcept>

namespace farm {

namespace {

constexpr int LockWaitMs = 5000;
constexpr std::chrono::hours ForgetInterval {1};

} // namespace

Farm::Farm(const FarmSettings& settings)
    : m_settings(settings)
    , m_dataFolder(MakeFolder(settings.dataFolder))
    , m_lock(m_dataFolder, LockWaitMs)
    , m_database(DatabaseFile(m_dataFolder), Schema())
    , m_accounts(m_database, settings.sessionSeconds)
    , m_jobs(m_database)
    , m_types(ReadJobTypes(settings.jobTypesFile))
    , m_contents(m_database, Folder("contents"))
    , m_uploads(m_database, m_contents, Folder("uploads"), settings.quota)
    , m_queue(m_database, settings.pricePerCoreSecond)
    , m_scenes(m_database, m_contents, settings.sceneFolder)
    , m_files(Folder("jobs"), m_scenes)
    , m_pictures(m_database, m_files)
    , m_executor(settings.slotCount)
    , m_scheduler(m_queue, m_executor, m_files, m_types)
    , m_actions(m_database, [this] { m_scheduler.NudgeLater(); })
    , m_submission(m_database, m_jobs, m_contents, m_types.keys(), settings.quota,
          [this] { m_scheduler.NudgeLater(); })
    , m_gate(m_accounts, settings.limits.requestsByAccount, settings.limits.transfersByAccount)
    , m_routes(m_gate, m_accounts, m_jobs, m_actions, settings.limits)
    , m_submissionRoutes(m_gate, m_contents, m_uploads, m_submission)
    , m_frameRoutes(m_gate, m_pictures)
{
    ForgetOldUploads();
    QObject::connect(&m_forgetting, &QTimer::timeout, [this] { ForgetOldUploads(); });
    m_forgetting.start(ForgetInterval);
    if (settings.demo)
        ProvideDemo(m_database, m_accounts, m_jobs, Now());
    m_routes.AddTo(m_server);
    m_submissionRoutes.AddTo(m_server);
    m_frameRoutes.AddTo(m_server);
    m_port = m_server.Start(settings.address, settings.port);
    m_scheduler.Nudge();
}

// Renderers end at once; requests in work may take a moment.
Farm::~Farm()
{
    m_forgetting.stop();
    m_uploads.Interrupt();
    m_scheduler.Stop();
    m_server.Stop();
}

QString Farm::MakeFolder(const QString& path)
{
    if (path.isEmpty() || !QDir().mkpath(path))
        throw std::runtime_error("cannot make the data folder");
    return QDir(path).absolutePath();
}

QString Farm::Folder(const char* name) const
{
    return QDir(m_dataFolder).filePath(QLatin1String(name));
}

void Farm::ForgetOldUploads()
{
    try {
        m_uploads.ForgetOld(Now());
    } catch (const ApiRefusal&) {
        // Somebody is just touching one.
    } catch (const std::exception& error) {
        spdlog::error("old uploads cannot be forgotten, trying again: {}", error.what());
    }
}

QString Farm::DatabaseFile(const QString& dataFolder)
{
    return QDir(dataFolder).filePath(QStringLiteral("farm.sqlite"));
}

QString Farm::Url() const
{
    const bool six = m_settings.address.contains(QLatin1Char(':'));
    const QString host = six ? QStringLiteral("[%1]").arg(m_settings.address) : m_settings.address;
    return QStringLiteral("http://%1:%2").arg(host).arg(m_port);
}

} // namespace farm
