#pragma once

#include "farm/accounts/account_store.h"
#include "farm/base/schema.h"
#include "farm/data_lock.h"
#include "farm/http/frame_routes.h"
#include "farm/http/http_server.h"
#include "farm/http/request_gate.h"
#include "farm/http/account_routes.h"
#include "farm/http/upload_routes.h"
#include "farm/jobs/job_actions.h"
#include "farm/jobs/job_store.h"
#include "farm/jobs/job_submission.h"
#include "farm/rendering/frame_files.h"
#include "farm/rendering/local_executor.h"
#include "farm/rendering/picture_store.h"
#include "farm/rendering/render_queue.h"
#include "farm/rendering/scene_files.h"
#include "farm/rendering/scheduler.h"
#include "farm/uploads/content_store.h"
#include "farm/uploads/upload_store.h"

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
    Micros pricePerCoreSecond = DefaultPrice;
    std::int64_t sessionSeconds = std::int64_t {7} * 24 * 3600;
    /// Makes the demo accounts in an empty farm and keeps them supplied with work.
    bool demo = true;
    /// What the contents and unfinished uploads of an account may take, in bytes.
    std::int64_t quota = std::int64_t {20} * 1024 * 1024 * 1024;
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
    QString Folder(const char* name) const;
    void ForgetOldUploads();

    FarmSettings m_settings;
    QString m_dataFolder;
    DataLock m_lock;
    Database m_database;
    AccountStore m_accounts;
    JobStore m_jobs;
    JobTypes m_types;
    ContentStore m_contents;
    UploadStore m_uploads;
    RenderQueue m_queue;
    SceneFiles m_scenes;
    FrameFiles m_files;
    PictureStore m_pictures;
    LocalExecutor m_executor;
    Scheduler m_scheduler;
    JobActions m_actions;
    JobSubmission m_submission;
    RequestGate m_gate;
    Routes m_routes;
    SubmissionRoutes m_submissionRoutes;
    FrameRoutes m_frameRoutes;
    QTimer m_forgetting;
    HttpServer m_server;
    int m_port = 0;
};

} // namespace farm
