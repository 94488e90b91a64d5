#pragma once

#include "farm/accounts/account_store.h"
#include "farm/accounts/account_terms.h"
#include "farm/accounts/project_store.h"
#include "farm/base/change_feed.h"
#include "farm/base/schema.h"
#include "farm/data_lock.h"
#include "farm/data_mark.h"
#include "farm/farm_settings.h"
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
#include "farm/rendering/node_board.h"
#include "farm/rendering/picture_store.h"
#include "farm/rendering/render_queue.h"
#include "farm/rendering/renderer_user.h"
#include "farm/rendering/run_table.h"
#include "farm/rendering/scene_files.h"
#include "farm/rendering/scheduler.h"
#include "farm/uploads/content_store.h"
#include "farm/uploads/upload_store.h"

#include <memory>

namespace farm {

/// A running farm. It serves requests and renders from construction to destruction.
class Farm
{
public:
    /// Throws std::exception when the data folder or the port cannot be used or the job types cannot be read.
    explicit Farm(const FarmSettings& settings);
    /// Ends renderers at once and waits for the requests being served.
    ~Farm();

    /// Applies some of these settings at once: price, quota, disk reserve, and the limits on frames at a time (in all,
    /// per account and per job type). The rest applies after a restart. Throws std::runtime_error, and changes nothing,
    /// when the job types cannot be read.
    void TakeOver(const FarmSettings& settings);

    /// The path of the database in a data folder.
    static QString DatabaseFile(const QString& dataFolder);

    /// The address at which clients reach the farm, for example "http://127.0.0.1:40123".
    QString Url() const;

private:
    static QString MakeFolder(const QString& path);
    QString CheckedDatabaseFile() const;
    QString Folder(const char* name) const;
    std::unique_ptr<Executor> MakeExecutor();
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
    NodeBoard m_nodes;
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
