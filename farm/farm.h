#pragma once

#include "farm/accounts/account_store.h"
#include "farm/accounts/account_terms.h"
#include "farm/accounts/project_store.h"
#include "farm/base/change_feed.h"
#include "farm/base/schema.h"
#include "farm/data_lock.h"
#include "farm/data_mark.h"
#include "farm/housekeeping.h"
#include "farm/http/http_api.h"
#include "farm/jobs/farm_overview.h"
#include "farm/jobs/frame_store.h"
#include "farm/jobs/job_actions.h"
#include "farm/jobs/job_store.h"
#include "farm/jobs/job_submission.h"
#include "farm/rendering/executor.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/frames_in_work.h"
#include "farm/rendering/hindrances.h"
#include "farm/rendering/job_folders.h"
#include "farm/rendering/log_store.h"
#include "farm/rendering/picture_store.h"
#include "farm/rendering/render_queue.h"
#include "farm/rendering/renderer_user.h"
#include "farm/rendering/run_table.h"
#include "farm/rendering/scene_files.h"
#include "farm/rendering/scheduler.h"
#include "farm/slurm/slurm_settings.h"
#include "farm/uploads/content_store.h"
#include "farm/uploads/upload_store.h"

#include <chrono>
#include <memory>
#include <optional>

namespace farm {

struct FarmSettings
{
    /// Contains the database and all files; created when it is missing.
    QString dataFolder;
    /// Contains the scenes that come with the farm.
    QString sceneFolder;
    QString jobTypesFile;
    QString address = QStringLiteral("127.0.0.1");
    /// 0 chooses a free port.
    int port = 0;
    /// The number of frames that are rendered at a time.
    int slotCount = 1;
    /// Renders on a Slurm cluster instead of this machine. The folder is in the data folder.
    std::optional<SlurmSettings> slurm;
    /// The time after which the scheduler looks at the jobs even if nothing has told it of a change.
    std::chrono::milliseconds lookInterval {5000};
    Micros pricePerCoreSecond = DefaultPrice;
    /// See QueueSettings.
    std::chrono::seconds useHalfLife = QueueSettings().useHalfLife;
    std::chrono::seconds retryPause = QueueSettings().retryPause;
    int framesPerAccount = 0;
    std::int64_t sessionSeconds = std::int64_t {7} * 24 * 3600;
    /// Creates the demo accounts in an empty farm and keeps "demo" supplied with jobs.
    bool demo = true;
    /// The most bytes that the contents and unfinished uploads of an account may take, unless it has a quota of its own.
    std::int64_t quota = std::int64_t {20} * 1024 * 1024 * 1024;
    /// The farm takes nothing new when its disk would have less left than this. In bytes; 0 for no reserve.
    std::int64_t diskReserve = std::int64_t {1} << 30;
    /// The time for which contents are kept that no job needs.
    std::chrono::hours keepContents {24 * 7};
    /// The time for which entries of the audit are kept.
    std::chrono::hours keepAudit {24 * 365};
    /// Uses a database that is older than the other files in the data folder, or another farm's.
    bool acceptDatabase = false;
    /// Ignores a lock of the data folder that another machine holds.
    bool takeOver = false;
    /// The user of this machine who runs the renderers of a farm that runs as root; empty for the farm's own user.
    QString rendererUser;
    RequestLimits limits;
    /// The addresses of proxies through which clients come.
    QStringList proxies;
};

/// A running farm. It serves requests and renders from construction to destruction.
class Farm
{
public:
    /// Throws std::exception when the data folder or the port cannot be used or the job types cannot be read.
    explicit Farm(const FarmSettings& settings);
    /// Ends renderers at once and waits for the requests being served.
    ~Farm();

    /// Goes by the price, the quota and the limits of these settings from now on: frames at a time, also of accounts and
    /// job types, and the reserve of the disk. The others hold from the next start. Throws std::runtime_error, and changes
    /// nothing, when the job types cannot be read.
    void TakeOver(const FarmSettings& settings);

    /// The path of the database in a data folder.
    static QString DatabaseFile(const QString& dataFolder);

    /// The address at which clients reach the farm, for example "http://127.0.0.1:40123".
    QString Url() const;

private:
    static QString MakeFolder(const QString& path);
    QString CheckedDatabaseFile() const;
    QString Folder(const char* name) const;
    std::unique_ptr<Executor> MakeExecutor() const;
    void DoHousekeeping();
    void AnnounceOutsideChanges();
    void LogChanges();

    FarmSettings m_settings;
    QString m_dataFolder;
    DataLock m_lock;
    Database m_database;
    DataMark m_mark;
    DiskReserve m_reserve;
    ChangeFeed m_feed;
    AccountTerms m_terms;
    AccountStore m_accounts;
    ProjectStore m_projects;
    JobStore m_jobs;
    JobTypes m_types;
    ContentStore m_contents;
    UploadStore m_uploads;
    RenderQueue m_queue;
    RunTable m_runs;
    RendererUser m_rendererUser;
    SceneFiles m_scenes;
    FrameFiles m_files;
    PictureStore m_pictures;
    FrameStore m_frames;
    LogStore m_logs;
    FarmOverview m_overview;
    FramesInWork m_inWork;
    Hindrances m_hindrances;
    std::unique_ptr<Executor> m_executor;
    Scheduler m_scheduler;
    JobActions m_actions;
    JobSubmission m_submission;
    HttpApi m_http;
    JobFolders m_folders;
    Housekeeping m_housekeeping;
    QTimer m_housekeepingTimer;
    QTimer m_outsideTimer;
    int m_port = 0;
    std::int64_t m_lastLogged = 0; // the key of an audit entry
};

} // namespace farm
