#include "farm.h"

#include "demo_data.h"
#include "local_time.h"

#include <QDir>

#include <stdexcept>

namespace farm {

namespace {

constexpr int lockWaitMs = 5000;

} // namespace

Farm::Farm(const FarmSettings& settings)
    : m_settings(settings)
    , m_dataFolder(MakeFolder(settings.dataFolder))
    , m_lock(m_dataFolder, lockWaitMs)
    , m_database(DatabaseFile(m_dataFolder), Schema())
    , m_accounts(m_database, settings.sessionSeconds)
    , m_jobs(m_database)
    , m_queue(m_database, settings.pricePerCoreSecond)
    , m_files(QDir(m_dataFolder).filePath(QStringLiteral("jobs")), settings.sceneFolder)
    , m_executor(settings.slotCount)
    , m_scheduler(m_queue, m_executor, m_files, ReadJobTypes(settings.jobTypesFile))
    , m_actions(m_database, [this] { m_scheduler.NudgeLater(); })
    , m_routes(m_accounts, m_jobs, m_actions, settings.limits)
{
    if (settings.demo)
        ProvideDemo(m_database, m_accounts, m_jobs, Now());
    m_routes.AddTo(m_server);
    m_port = m_server.Start(settings.address, settings.port);
    m_scheduler.Nudge();
}

// Renderers end at once; requests in work may take a moment.
Farm::~Farm()
{
    m_scheduler.Stop();
    m_server.Stop();
}

QString Farm::MakeFolder(const QString& path)
{
    if (path.isEmpty() || !QDir().mkpath(path))
        throw std::runtime_error("cannot make the data folder");
    return QDir(path).absolutePath();
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
