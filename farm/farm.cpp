#include "farm/farm.h"

#include "farm/accounts/audit.h"
#include "farm/accounts/secrets.h"
#include "farm/base/local_time.h"
#include "farm/demo_data.h"
#include "farm/exposure.h"
#include "farm/rendering/local_executor.h"
#include "farm/slurm/slurm_executor.h"
#include "storage/folder_check.h"

#include <QCoreApplication>
#include <QDir>

#include <spdlog/spdlog.h>

#include <chrono>
#include <cstring>
#include <stdexcept>

namespace farm {

namespace {

constexpr int LockWait = 5000; // ms
constexpr int Readers = 32;
constexpr std::chrono::hours HousekeepingInterval {1};
constexpr std::chrono::seconds OutsideInterval {1};

QueueSettings QueueSettingsOf(const FarmSettings& settings, const JobTypes& types)
{
    QueueSettings queue {settings.useHalfLife, settings.retryPause, settings.framesPerAccount};
    for (auto type = types.cbegin(); type != types.cend(); ++type)
        queue.framesPerType.insert(type.key(), type->framesAtOnce);
    return queue;
}

} // namespace

Farm::Farm(const FarmSettings& settings)
    : m_settings(settings)
    , m_dataFolder(MakeFolder(settings.dataFolder))
    , m_lock(m_dataFolder, LockWait, settings.takeOver)
    , m_database(CheckedDatabaseFile(), Schema(), {Readers, true})
    , m_mark(m_database, m_dataFolder)
    , m_reserve(m_dataFolder, settings.diskReserve)
    , m_terms(settings.pricePerCoreSecond, settings.quota)
    , m_accounts(m_database, settings.sessionSeconds)
    , m_projects(m_database)
    , m_jobs(m_database)
    , m_types(ReadJobTypes(settings.jobTypesFile))
    , m_contents(m_database, Folder("contents"))
    , m_uploads(m_database, m_contents, Folder("uploads"), m_terms, m_reserve)
    , m_queue(m_database, m_feed, m_terms, QueueSettingsOf(settings, m_types))
    , m_runs(m_database)
    , m_rendererUser(settings.rendererUser)
    , m_scenes(m_database, m_contents, settings.sceneFolder, m_rendererUser)
    , m_files(Folder("jobs"), m_scenes, m_rendererUser, m_reserve)
    , m_pictures(m_database, m_files)
    , m_frames(m_database)
    , m_logs(m_database, m_files)
    , m_overview(m_database)
    , m_hindrances(m_database, m_feed)
    , m_executor(MakeExecutor())
    , m_scheduler({m_queue, m_runs, *m_executor, m_files, m_inWork, m_hindrances}, m_types,
          {m_dataFolder, settings.rendererUser}, settings.lookInterval)
    , m_actions(m_database, m_feed, m_terms,
          [this] {
              m_scheduler.NudgeLater();
              m_housekeeping.Wake();
          })
    , m_submission(
          m_database, m_jobs, m_contents, m_types.keys(), m_terms, m_feed,
          [this] { m_scheduler.NudgeLater(); }, m_reserve)
    , m_http({m_database, m_accounts, m_projects, m_contents, m_uploads, m_jobs, m_actions, m_submission,
                 m_frames, m_inWork, m_pictures, m_feed, m_overview, m_nodes, m_logs, QDir(m_dataFolder),
                 m_terms},
          settings.limits, settings.proxies)
    , m_folders(m_database, Folder("jobs"))
    , m_housekeeping({m_database, m_folders, m_contents, m_mark}, {settings.keepContents, settings.keepAudit})
{
    CheckExposure(m_accounts, settings);
    // The scheduler belongs to this thread. Its reads must not wait for those of clients.
    m_database.ReserveReader();
    PreparePasswords();
    DoHousekeeping();
    QObject::connect(
        &m_housekeepingTimer, &QTimer::timeout, &m_housekeepingTimer, [this] { DoHousekeeping(); });
    m_housekeepingTimer.start(HousekeepingInterval);
    QObject::connect(
        &m_outsideTimer, &QTimer::timeout, &m_outsideTimer, [this] { AnnounceOutsideChanges(); });
    m_outsideTimer.start(OutsideInterval);
    m_lastLogged = LastAuditKey(m_database);
    if (settings.demo)
        ProvideDemo(m_database, m_accounts, m_jobs, Now());
    m_port = m_http.Start(settings.address, settings.port);
    m_scheduler.Nudge();
}

Farm::~Farm()
{
    // Renderers first: a client that keeps its connection open may delay the server until the process is forced to exit.
    m_scheduler.Stop();
    m_uploads.Interrupt();
    m_feed.Close();
    m_http.Stop();
    AnnounceOutsideChanges(); // logs the last changes
}

void Farm::TakeOver(const FarmSettings& settings)
{
    const QueueSettings limits = QueueSettingsOf(settings, ReadJobTypes(settings.jobTypesFile));
    m_terms.Change(m_database, settings.pricePerCoreSecond, settings.quota, Now());
    m_queue.TakeOverLimits(limits);
    m_reserve.Change(settings.diskReserve);
    m_executor->SetCapacity(settings.slurm ? settings.slurm->frames : settings.slotCount);
    m_scheduler.Nudge();
}

QString Farm::MakeFolder(const QString& path)
{
    if (path.isEmpty())
        throw std::runtime_error("the data folder has no name");
    if (!QDir().mkpath(path))
        throw std::runtime_error("cannot create the data folder " + path.toStdString() + ": "
            + std::strerror(storage::FolderError(path)));
    return QDir(path).absolutePath();
}

QString Farm::CheckedDatabaseFile() const
{
    DataMark::RequireDatabase(m_dataFolder, DatabaseFile(m_dataFolder), m_settings.acceptDatabase);
    return DatabaseFile(m_dataFolder);
}

QString Farm::Folder(const char* name) const
{
    return QDir(m_dataFolder).filePath(QLatin1String(name));
}

std::unique_ptr<Executor> Farm::MakeExecutor()
{
    const QString runner = QCoreApplication::applicationDirPath() + QStringLiteral("/quillstar-run-frame");
    if (!m_settings.slurm)
        return std::make_unique<LocalExecutor>(
            LocalExecutor::Settings {m_settings.slotCount, m_dataFolder, runner});
    SlurmSettings slurm = *m_settings.slurm;
    slurm.folder = Folder("batches");
    if (slurm.runner.isEmpty())
        slurm.runner = runner;
    return std::make_unique<SlurmExecutor>(slurm, m_types, m_nodes);
}

void Farm::DoHousekeeping()
{
    try {
        m_uploads.ForgetOld(Now());
        m_database.UpdateStatistics();
    } catch (const std::exception& error) {
        spdlog::error(
            "the hourly housekeeping has failed; the farm tries again in an hour: {}", error.what());
    }
}

/// Another process may have paid money into an account or ended a session.
void Farm::AnnounceOutsideChanges()
{
    try {
        LogChanges();
        if (m_feed.SubscriberCount() > 0 && m_database.WasChangedByOthers())
            m_feed.AnnounceToAll({{}, true, true});
    } catch (const std::exception& error) {
        spdlog::error("changes by other processes cannot be detected: {}", error.what());
    }
}

void Farm::LogChanges()
{
    ForEachAuditEntryAfter(m_database, m_lastLogged, [this](const AuditEntry& entry) {
        m_lastLogged = entry.key;
        spdlog::info(SentenceOf(entry).toStdString());
    });
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
